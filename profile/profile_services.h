// ICC profiles: which are installed, which belong to a display, and what tags one of them has.
//
// The listing functions keep their maps for the life of the process, without a lock: one thread at a time, the host's,
// may call them, with an autorelease pool in place. ICCTagExists and QV02Read keep nothing; any thread may call them.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "base/interface.h"

namespace ProfileServices {

/// From a profile file's POSIX path to the profile's name, both UTF-8, in byte order of the paths.
using InstalledProfiles = std::map<std::string, std::string>;
/// From a profile file's POSIX path to the profile's name, whether it is the display's default profile, and whether it
/// is the display's current one.
using AssociatedProfiles = std::map<std::string, std::tuple<std::string, bool, bool>>;

/// Reads the installed display profiles at each call. A profile without a description or without a path is left out.
OSTREVIN_API InstalledProfiles ListAllInstalledProfiles();

/// The profiles that ColorSync associates with a display, by its CGDirectDisplayID. Installed profiles are read first
/// only when the list of them is empty: a profile installed since then has an empty name here. A display without a UUID
/// repeats the last display's result.
OSTREVIN_API AssociatedProfiles ListProfilesForDisplay(std::uint32_t displayID);

/// The number of listed installed profiles, including those that only a display's list has added. Reads nothing.
OSTREVIN_API std::size_t GetInstalledProfilesCount();

/// The number of profiles of the display listed last. `displayID` is used only when there are none, to list it.
OSTREVIN_API std::size_t GetAssociatedProfilesCount(std::uint32_t displayID);

/// Whether the profile file has a tag with this signature, which is four ASCII characters. Anything else is false, as
/// is a file that is not a profile, a null URL and a null signature.
OSTREVIN_API bool ICCTagExists(CFURLRef profile, CFStringRef signature);

/// Reads the document in the profile's private tag QV02: the tag element's bytes after the first eight, as they are,
/// with any NUL among them. Gives kQVINoError, or kQVIFailedToReadTag with `xml` absent; what `xml` held before is lost
/// either way. An element of less than eight bytes holds an empty document: `xml` is then present and empty.
OSTREVIN_API std::int32_t QV02Read(CFURLRef profile, std::optional<std::string>& xml);

}  // namespace ProfileServices
