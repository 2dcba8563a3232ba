// Replaces platform/desktop/live.cpp, so that the fuzzers' frameworks need neither X nor colord.
#include "desktop/current.h"
#include "desktop/script/scripted.h"

namespace platform::desktop {

std::shared_ptr<Desktop> makeLiveDesktop() { return std::make_shared<ScriptedDesktop>(); }

}  // namespace platform::desktop
