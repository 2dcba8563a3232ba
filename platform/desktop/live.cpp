#include "desktop/live.h"

#include "desktop/icc_folders.h"

namespace platform::desktop {
namespace {

class LiveDesktop final : public Desktop {
 public:
  std::shared_ptr<const Arrangement> arrangement() override { return std::make_shared<const Arrangement>(); }
  void visitDeviceProfiles(const DeviceProfileVisitor&) override {}
  void visitInstalledProfiles(const InstalledProfileVisitor& visit) override { profiles_.visit(visit); }
  bool setDeviceProfile(const Uuid&, const std::string&) override { return false; }

 private:
  IccFolders profiles_{installedProfileFolders()};
};

}  // namespace

std::shared_ptr<Desktop> makeLiveDesktop() { return std::make_shared<LiveDesktop>(); }

}  // namespace platform::desktop
