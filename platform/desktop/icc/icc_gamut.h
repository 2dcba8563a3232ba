// The colour space that a profile describes, and whether its gamut is wide. Called by way of desktop/parts.h, by any
// thread.
#pragma once

#include <optional>

#include "desktop/icc/icc_profile.h"

namespace platform::desktop {

struct ColorSpace {
  bool is_rgb = false;
  /// The triangle of the primaries in CIE 1931 xy has at least nine tenths of the area of Display P3's triangle, both
  /// taken relative to the D50 white of profiles. CoreGraphics calls a space wide whose gamut is about that of DCI-P3
  /// or wider. (sRGB's triangle has 0.74 of that area, Adobe RGB's 0.99.) Never true of a space that is not RGB.
  bool is_wide = false;
};

/// Nothing for a profile that does not describe a device's or an encoding's colour space (a link between two devices,
/// an abstract transformation, a named-colour list), or that cannot be read.
std::optional<ColorSpace> colorSpaceOf(const IccProfile& file);

}  // namespace platform::desktop
