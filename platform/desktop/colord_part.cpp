#include "desktop/colord/colord_devices.h"
#include "desktop/parts.h"

namespace platform::desktop {
namespace {

void visitDevices(const ArrangementSource& displays, const DeviceProfileVisitor& visit) {
  ColordDevices(displays).visit(visit);
}

bool assignToDevice(const ArrangementSource& displays, const Uuid& device, const std::string& profile_path) {
  return ColordDevices(displays).assign(device, profile_path);
}

}  // namespace

extern "C" PLATFORM_API const ColordPart ostrevin_colord_part{
    .visit = visitDevices, .assign = assignToDevice, .prepare = prepareColord, .ask = askColord};

}  // namespace platform::desktop
