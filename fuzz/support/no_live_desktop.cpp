// The fuzzers' frameworks have no live desktop behind them, and so neither X nor colord: fuzzers describe their own.
#include "desktop/current.h"
#include "desktop/script/scripted.h"

namespace platform::desktop {

std::shared_ptr<Desktop> makeLiveDesktop() { return std::make_shared<ScriptedDesktop>(); }

}  // namespace platform::desktop
