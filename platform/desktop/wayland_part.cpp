#include "desktop/parts.h"
#include "desktop/wayland/wayland_displays.h"

namespace platform::desktop {
namespace {

WaylandSource displays() {
  return [displays = std::make_shared<WaylandDisplays>()](bool only_modern) {
    const auto found = displays->find();
    const bool counts = !only_modern || found == nullptr || found->displays.empty() || displays->isModern();
    return counts ? found : nullptr;
  };
}

}  // namespace

extern "C" PLATFORM_API const WaylandPart ostrevin_wayland_part{.displays = displays, .ask = askWayland};

}  // namespace platform::desktop
