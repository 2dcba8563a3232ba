#include "desktop/current.h"
#include "desktop/icc/icc_folders.h"
#include "desktop/parts.h"

namespace platform::desktop {
namespace {

ArrangementSource liveDisplays() {
  if (const X11Part* const part = x11Part()) {
    return part->displays();
  }
  return [none = std::make_shared<const Arrangement>()] { return none; };
}

class LiveDesktop final : public Desktop {
 public:
  std::shared_ptr<const Arrangement> arrangement() override {
    std::call_once(loaded_, [this] { displays_ = liveDisplays(); });
    return displays_();
  }
  void visitDeviceProfiles(const DeviceProfileVisitor& visit) override {
    if (const ColordPart* const part = colordPart()) {
      part->visit([this] { return arrangement(); }, visit);
    }
  }
  void visitInstalledProfiles(const InstalledProfileVisitor& visit) override { profiles_.visit(visit); }
  bool setDeviceProfile(const Uuid& device, const std::string& profile_path) override {
    const ColordPart* const part = colordPart();
    return part != nullptr && part->assign([this] { return arrangement(); }, device, profile_path);
  }

 private:
  IccFolders profiles_{installedProfileFolders()};
  std::once_flag loaded_;
  ArrangementSource displays_;
};

}  // namespace

std::shared_ptr<Desktop> makeLiveDesktop() { return std::make_shared<LiveDesktop>(); }

}  // namespace platform::desktop
