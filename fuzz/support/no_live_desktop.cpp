// Replaces platform/desktop/live.cpp and parts.cpp, so that the fuzzers' frameworks need no display server and no
// colord.
#include "desktop/current.h"
#include "desktop/parts.h"
#include "desktop/script/scripted.h"

namespace platform::desktop {

std::shared_ptr<Desktop> makeLiveDesktop(LiveSource /*source*/) { return std::make_shared<ScriptedDesktop>(); }

const GamutPart& gamutPart() {
  static constexpr GamutPart kPart{.color_space = colorSpaceOf};
  return kPart;
}

}  // namespace platform::desktop
