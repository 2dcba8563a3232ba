// What libOstrevinColord exports to libOstrevinPlatform, which finds it by name.
#pragma once

#include <vector>

#include "desktop/diagnosis/diagnosis.h"
#include "desktop/model/device_profiles.h"

namespace platform::desktop {

inline constexpr const char* kColordLibrary = "libOstrevinColord.so";
inline constexpr const char* kMakeColordDevices = "ostrevinMakeColordDevices";
inline constexpr const char* kReportOnColord = "ostrevinReportOnColord";

/// The caller owns the result.
using MakeColordDevices = DeviceProfiles*(const ArrangementSource& arrangement);
/// As askColord(); the caller owns the result.
using ReportOnColord = ColordReport*(const std::vector<Display>& displays);

}  // namespace platform::desktop
