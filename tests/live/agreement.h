// Compares the live desktop with what xrandr reports.
#pragma once

#include <memory>

#include "desktop/model/desktop.h"
#include "support/xorg_server.h"

namespace live {

/// The live desktop of this process, with DISPLAY set to the server's.
std::shared_ptr<platform::desktop::Desktop> liveDesktopOf(const support::XServer& server);

/// Expects displays and screens as `xrandr` shows the monitors: the primary one first and at the origin, the others in
/// xrandr's order at their offsets from it, all divided by the scale; numbered by their outputs' identifiers.
void expectAgreement(support::XServer& server, const platform::desktop::Arrangement& arrangement, double scale = 1);

/// Calls until there are displays, for at most some seconds; returns the last arrangement.
std::shared_ptr<const platform::desktop::Arrangement> waitForDisplays(platform::desktop::Desktop& desktop);

}  // namespace live
