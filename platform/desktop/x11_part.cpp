#include "desktop/parts.h"
#include "desktop/x11/x11_displays.h"

namespace platform::desktop {
namespace {

ArrangementSource displays() {
  return [displays = std::make_shared<X11Displays>()] { return displays->find(); };
}

}  // namespace

extern "C" PLATFORM_API const X11Part ostrevin_x11_part{.displays = displays, .ask = askXServer};

}  // namespace platform::desktop
