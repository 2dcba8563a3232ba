// The facade: displays and their profiles, for the host's methods and for C++ programs.
//
// Call it from one thread at a time, the main thread where a function reads screens (GetMonitorRect, GetScale), with
// an autorelease pool in place. Texts are UTF-8. A text that is returned belongs to the platform's string object: copy
// it before the pool drains. Display numbers are CoreGraphics' (CGDirectDisplayID); 0 stands for no display. Rectangles
// are in points, in global display coordinates: the origin is the upper left corner of the main display and y grows
// downwards.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "base/interface.h"

namespace Display {

// --- geometry

/// The display's edges, each truncated toward zero after right and bottom were summed; a value beyond
/// 32 bits, or NaN, is -2147483648. For an unknown display, those of the empty rectangle that CGDisplayBounds returns.
OSTREVIN_API void GetMonitorRect(std::uint32_t displayID, std::int32_t* left, std::int32_t* top, std::int32_t* right,
                                 std::int32_t* bottom);
/// The display's origin and size as CGDisplayBounds returns them.
OSTREVIN_API void GetMonitorRect(std::uint32_t displayID, double* x, double* y, double* width, double* height);
/// Position among the active displays, from 0, or kQVIDisplayNotFound.
OSTREVIN_API std::uint32_t GetIndex(std::uint32_t displayID);
/// Pixels per point of the screen that shows the display, of the main screen when none does, 0 without any screen.
OSTREVIN_API double GetScale(std::uint32_t displayID);
/// The first display that CoreGraphics lists under the rectangle as high and wide as the window that begins at the
/// window's lower edge; 0 when there is none.
OSTREVIN_API std::uint32_t DisplayIDForWindow(double left, double top, double width, double height);

// --- name and profile of a display

/// The user-visible name, cached per display from the first call on; "UNKNOWN" without one. May wait up to 10
/// seconds at the first call. Never null.
OSTREVIN_API const char* GetName(std::uint32_t displayID);
/// POSIX path of the profile file in use; empty when there is none, after up to 2 seconds. Never null.
OSTREVIN_API const char* GetProfilePath(std::uint32_t displayID);
/// Makes the file at a POSIX path the display's profile; false when ColorSync refuses, and for a null path.
OSTREVIN_API bool SetProfile(std::uint32_t displayID, const char* path);
/// Whether CoreGraphics calls the display's current profile a wide-gamut RGB space; false without a profile.
OSTREVIN_API bool IsWideGamut(std::uint32_t displayID);

// --- lists of profiles

/// Every installed display profile: name by POSIX path. Read at each call.
OSTREVIN_API std::map<std::string, std::string> ListAllInstalledProfiles();
/// The profiles associated with a display: (name, is default, is current) by POSIX path. The name is empty for a
/// profile that was not among the installed ones when they were last listed. For a display without a UUID, the list of
/// the display before.
OSTREVIN_API std::map<std::string, std::tuple<std::string, bool, bool>> ListProfilesForDisplay(std::uint32_t displayID);

// --- inside a profile file

/// Whether the profile file has a tag; `tag` is its four-character signature, taken as it stands.
OSTREVIN_API bool ICCTagExists(std::string path, std::string tag);
/// Reads the text document in the profile's `QV02` tag. kQVINoError and the document in `xml`, or kQVIFailedToReadTag
/// and no value. A null path names no profile.
OSTREVIN_API std::int32_t QV02Read(const char* path, std::optional<std::string>& xml);

}  // namespace Display
