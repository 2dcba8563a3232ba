#include "desktop/live.h"

#include "desktop/icc_folders.h"
#include "desktop/x11_displays.h"

namespace platform::desktop {
namespace {

class LiveDesktop final : public Desktop {
 public:
  std::shared_ptr<const Arrangement> arrangement() override { return displays_.arrangement(); }
  void visitDeviceProfiles(const DeviceProfileVisitor&) override {}
  void visitInstalledProfiles(const InstalledProfileVisitor& visit) override { profiles_.visit(visit); }
  bool setDeviceProfile(const Uuid&, const std::string&) override { return false; }

 private:
  X11Displays displays_;
  IccFolders profiles_{installedProfileFolders()};
  X11Displays displays_;
};

}  // namespace

std::shared_ptr<Desktop> makeLiveDesktop() { return std::make_shared<LiveDesktop>(); }

}  // namespace platform::desktop
