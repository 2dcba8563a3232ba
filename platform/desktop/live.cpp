#include "desktop/live.h"

namespace platform::desktop {
namespace {

class LiveDesktop final : public Desktop {
 public:
  std::shared_ptr<const Arrangement> arrangement() override { return std::make_shared<const Arrangement>(); }
  void visitDeviceProfiles(const DeviceProfileVisitor&) override {}
  void visitInstalledProfiles(const InstalledProfileVisitor&) override {}
  bool setDeviceProfile(const Uuid&, const std::string&) override { return false; }
};

}  // namespace

std::shared_ptr<Desktop> makeLiveDesktop() { return std::make_shared<LiveDesktop>(); }

}  // namespace platform::desktop
