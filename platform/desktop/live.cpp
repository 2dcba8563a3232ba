#include "desktop/current.h"
#include "desktop/icc/icc_folders.h"
#include "desktop/parts.h"

namespace platform::desktop {
namespace {

class LiveDesktop final : public Desktop {
 public:
  std::shared_ptr<const Arrangement> arrangement() override {
    std::call_once(loaded_, [this] { displays_ = x11Part().displays(); });
    return displays_();
  }
  void visitDeviceProfiles(const DeviceProfileVisitor& visit) override {
    colordPart().visit([this] { return arrangement(); }, visit);
  }
  void visitInstalledProfiles(const InstalledProfileVisitor& visit) override { profiles_.visit(visit); }
  bool setDeviceProfile(const Uuid& device, const std::string& profile_path) override {
    return colordPart().assign([this] { return arrangement(); }, device, profile_path);
  }

 private:
  IccFolders profiles_{installedProfileFolders()};
  std::once_flag loaded_;
  ArrangementSource displays_;
};

}  // namespace

std::shared_ptr<Desktop> makeLiveDesktop() { return std::make_shared<LiveDesktop>(); }

}  // namespace platform::desktop
