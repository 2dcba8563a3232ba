#include "desktop/colord/display_profile_file.h"

#include <colord.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "desktop/colord/glib_refs.h"
#include "desktop/model/regular_file.h"

namespace platform::desktop {
namespace {

/// Profiles of displays have some kilobytes, with large tables a few megabytes.
constexpr off_t kMostBytes = 64 << 20;
/// An ICC header, and the tag count after it.
constexpr off_t kFewestBytes = 132;

std::optional<std::vector<std::uint8_t>> readProfile(const std::string& path) {
  const RegularFile file(path);
  if (!file || file.size() < kFewestBytes || file.size() > kMostBytes) {
    return std::nullopt;
  }
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(file.size()));
  const bool is_whole = file.read(bytes.data(), bytes.size()) == file.size();
  return is_whole ? std::optional(std::move(bytes)) : std::nullopt;
}

/// The size that an ICC header states: its first four bytes, the most significant first.
std::size_t statedSize(const std::vector<std::uint8_t>& bytes) {
  return std::size_t{bytes[0]} << 24 | std::size_t{bytes[1]} << 16 | std::size_t{bytes[2]} << 8 | bytes[3];
}

}  // namespace

bool isDisplayProfileFile(const std::string& path) {
  const auto bytes = readProfile(path);
  if (!bytes || statedSize(*bytes) > bytes->size()) {
    return false;
  }
  const ObjectRef<CdIcc> profile(cd_icc_new());
  ErrorSlot error;
  // What colord itself does with a file; a file that it fails to load leaves an unusable profile behind in it.
  return cd_icc_load_data(profile.get(), bytes->data(), bytes->size(), CD_ICC_LOAD_FLAGS_METADATA, error.place()) &&
         cd_icc_get_description(profile.get(), nullptr, error.place()) != nullptr &&
         cd_icc_get_kind(profile.get()) == CD_PROFILE_KIND_DISPLAY_DEVICE;
}

}  // namespace platform::desktop
