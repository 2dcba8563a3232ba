#include "desktop/colord/assigned_profiles.h"

#include <colord.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

#include "desktop/colord/glib_refs.h"
#include "desktop/icc/icc_profile.h"
#include "desktop/model/regular_file.h"

namespace platform::desktop {
namespace {

namespace fs = std::filesystem;

fs::path directory() { return fs::path(g_get_user_state_dir()) / "ostrevin" / "assigned-profiles"; }

/// Display profiles have some kilobytes, with large tables a few megabytes.
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

std::vector<AssignedProfile> assignedProfiles() {
  std::vector<AssignedProfile> found;
  std::error_code error;
  for (fs::directory_iterator entry(directory(), error), end; !error && entry != end; entry.increment(error)) {
    std::error_code unreadable;
    const fs::path file = fs::read_symlink(entry->path(), unreadable);
    g_autofree char* id = g_uri_unescape_string(entry->path().filename().c_str(), nullptr);
    const bool is_text = id != nullptr && g_utf8_validate(id, -1, nullptr) != FALSE &&
                         g_utf8_validate(file.c_str(), -1, nullptr) != FALSE;
    if (!unreadable && is_text && fs::is_regular_file(file, unreadable)) {
      found.push_back({id, file.string()});
    }
  }
  return found;
}

void rememberAssignedProfile(const AssignedProfile& profile) {
  std::error_code error;
  fs::create_directories(directory(), error);
  g_autofree char* name = g_uri_escape_string(profile.id.c_str(), nullptr, FALSE);
  const fs::path link = directory() / name;
  // Made under another name and renamed, so that a reader finds the old entry or the new one. In names of entries two
  // digits follow each "%", so this name is never an entry's.
  const fs::path made = directory() / (std::string(name) + "%new" + std::to_string(getpid()));
  fs::remove(made, error);
  fs::create_symlink(profile.file, made, error);
  if (!error) {
    fs::rename(made, link, error);
  }
}

bool isDisplayProfileFile(const std::string& path) {
  const auto bytes = readProfile(path);
  // The header begins with the size of the profile.
  if (!bytes || bigEndian32(bytes->data()) > bytes->size()) {
    return false;
  }
  const ObjectRef<CdIcc> profile(cd_icc_new());
  ErrorSlot error;
  // colord loads the file in the same way; one that it fails to load would leave an unusable profile in it.
  return cd_icc_load_data(profile.get(), bytes->data(), bytes->size(), CD_ICC_LOAD_FLAGS_METADATA, error.place()) &&
         cd_icc_get_description(profile.get(), nullptr, error.place()) != nullptr &&
         cd_icc_get_kind(profile.get()) == CD_PROFILE_KIND_DISPLAY_DEVICE;
}

}  // namespace platform::desktop
