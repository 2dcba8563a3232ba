#include "desktop/colord/assigned_profiles.h"

#include <glib.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace platform::desktop {
namespace {

namespace fs = std::filesystem;

fs::path directory() { return fs::path(g_get_user_state_dir()) / "ostrevin" / "assigned-profiles"; }

}  // namespace

std::vector<AssignedProfile> assignedProfiles() {
  std::vector<AssignedProfile> found;
  std::error_code error;
  for (fs::directory_iterator entry(directory(), error), end; !error && entry != end; entry.increment(error)) {
    std::error_code unreadable;
    const fs::path file = fs::read_symlink(entry->path(), unreadable);
    g_autofree char* id = g_uri_unescape_string(entry->path().filename().c_str(), nullptr);
    if (!unreadable && id != nullptr && fs::is_regular_file(file, unreadable)) {
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
  // Made beside and moved into place, so that a reader finds the old entry or the new one. Names of entries have no "%"
  // followed by anything but two digits, so this one cannot be taken for an entry.
  const fs::path made = directory() / (std::string(name) + "%new" + std::to_string(getpid()));
  fs::remove(made, error);
  fs::create_symlink(profile.file, made, error);
  if (!error) {
    fs::rename(made, link, error);
  }
}

}  // namespace platform::desktop
