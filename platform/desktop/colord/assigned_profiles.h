// The profile files of assignments: which may be assigned, and which have been, remembered for the user.
//
// colord stores which profile a device has, but of the profiles themselves only those in its own directories. The
// session must register any other file with a restarted colord. This is the list to do that from: in the user's state
// directory ($XDG_STATE_HOME, else ~/.local/state), in ostrevin/assigned-profiles, a symbolic link to each file, named
// after the profile's identifier.
//
// Any thread and several processes may call these functions at once. If the state directory cannot be written, nothing
// is remembered, and the assignment lasts until colord stops.
#pragma once

#include <string>
#include <vector>

namespace platform::desktop {

struct AssignedProfile {
  std::string id;    ///< colord's identifier of the profile
  std::string file;  ///< its POSIX path
};

/// Those whose file exists, and whose names are UTF-8, as colord requires.
std::vector<AssignedProfile> assignedProfiles();

/// Adds to the list, in place of an older entry with the same identifier.
void rememberAssignedProfile(const AssignedProfile& profile);

/// True for a complete, readable, regular file of at most 64 MiB that colord can load (it must have a description), and
/// whose profile class is the display class.
bool isDisplayProfileFile(const std::string& path);

}  // namespace platform::desktop
