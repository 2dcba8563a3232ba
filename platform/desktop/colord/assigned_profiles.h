// The profile files that were assigned to devices, remembered for the user.
//
// colord remembers which profile a device has, but of the profiles themselves only those in its own directories: any
// other file must be made known to it again after it has restarted, by the session. This is the list to do that from:
// in the user's state directory ($XDG_STATE_HOME, else ~/.local/state), in ostrevin/assigned-profiles, one symbolic
// link to each file, which has the profile's identifier as its name.
//
// Any thread and several processes may call these functions at once. Where the state directory cannot be written,
// nothing is remembered, and the assignment lasts until colord stops.
#pragma once

#include <string>
#include <vector>

namespace platform::desktop {

struct AssignedProfile {
  std::string id;    ///< colord's identifier of the profile
  std::string file;  ///< its POSIX path
};

/// Those whose file is there.
std::vector<AssignedProfile> assignedProfiles();

/// Adds to the list, in place of an older entry with the same identifier.
void rememberAssignedProfile(const AssignedProfile& profile);

}  // namespace platform::desktop
