#include "desktop/current.h"

#include "desktop/colord/colord_devices.h"
#include "desktop/icc/icc_folders.h"
#include "desktop/x11/x11_displays.h"

namespace platform::desktop {
namespace {

class LiveDesktop final : public Desktop {
 public:
  std::shared_ptr<const Arrangement> arrangement() override { return displays_.arrangement(); }
  void visitDeviceProfiles(const DeviceProfileVisitor& visit) override { devices_.visit(visit); }
  void visitInstalledProfiles(const InstalledProfileVisitor& visit) override { profiles_.visit(visit); }
  bool setDeviceProfile(const Uuid& device, const std::string& profile_path) override {
    return devices_.assign(device, profile_path);
  }

 private:
  IccFolders profiles_{installedProfileFolders()};
  X11Displays displays_;
  ColordDevices devices_{[this] { return displays_.arrangement(); }};
};

}  // namespace

std::shared_ptr<Desktop> makeLiveDesktop() { return std::make_shared<LiveDesktop>(); }

}  // namespace platform::desktop
