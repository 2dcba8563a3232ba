#include "desktop/colord/display_profile_file.h"

#include <colord.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "desktop/colord/glib_refs.h"
#include "desktop/icc/icc_profile.h"
#include "desktop/model/regular_file.h"

namespace platform::desktop {
namespace {

/// Profiles of displays have some kilobytes, with large tables a few megabytes.
constexpr std::uint64_t kMostBytes = 64 << 20;
/// An ICC header, and the tag count after it.
constexpr std::uint64_t kFewestBytes = 132;

std::optional<std::vector<std::uint8_t>> readProfile(const std::string& path) {
  const RegularFile file(path);
  if (!file || file.size() < kFewestBytes || file.size() > kMostBytes) {
    return std::nullopt;
  }
  std::vector<std::uint8_t> bytes(file.size());
  const bool is_whole = file.read(0, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
  return is_whole ? std::optional(std::move(bytes)) : std::nullopt;
}

}  // namespace

bool isDisplayProfileFile(const std::string& path) {
  const auto bytes = readProfile(path);
  // The header begins with the size of the profile.
  if (!bytes || bigEndian32(bytes->data()) > bytes->size()) {
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
