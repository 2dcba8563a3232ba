// What the live desktop must answer, worked out from what xrandr says.
#pragma once

#include <memory>

#include "desktop/model/desktop.h"
#include "support/xorg_server.h"

namespace live_tests {

/// The live desktop of this process, with DISPLAY set to the server's.
std::shared_ptr<platform::desktop::Desktop> liveDesktopOf(const support::XServer& server);

/// Expects displays and screens as `xrandr` shows the monitors: the primary one first and at the origin, the others in
/// xrandr's order at their offsets from it, all divided by the scale; numbered by their outputs' identifiers.
void expectAgreement(support::XServer& server, const platform::desktop::Arrangement& arrangement, double scale = 1);

/// Calls until there are displays, for at most some seconds; what it got last.
std::shared_ptr<const platform::desktop::Arrangement> waitForDisplays(platform::desktop::Desktop& desktop);

}  // namespace live_tests
