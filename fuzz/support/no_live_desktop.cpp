// Replaces platform/desktop/live.cpp and parts.cpp, so that the fuzzers' frameworks need neither X nor colord.
#include "desktop/current.h"
#include "desktop/icc/icc_gamut.h"
#include "desktop/script/scripted.h"

namespace platform::desktop {

std::shared_ptr<Desktop> makeLiveDesktop() { return std::make_shared<ScriptedDesktop>(); }

std::optional<ColorSpace> colorSpaceOf(const IccProfile& file) { return part::colorSpaceOf(file); }

}  // namespace platform::desktop
