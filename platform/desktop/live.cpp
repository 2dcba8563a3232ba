#include <cstdlib>

#include "desktop/current.h"
#include "desktop/icc/icc_folders.h"
#include "desktop/parts.h"

namespace platform::desktop {
namespace {

bool isSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

/// The displays of the Wayland compositor, else of the X server. A compositor that is too old for exact areas and
/// connectors counts only without an X server. The library for each is loaded when its variable is set.
class LiveDisplays {
 public:
  explicit LiveDisplays(LiveSource source) : source_(source) {}

  std::shared_ptr<const Arrangement> arrangement() {
    auto found = source_ == LiveSource::kX11 ? nullptr : ofWayland(source_ == LiveSource::kAny);
    if (!found && source_ != LiveSource::kWayland) {
      found = ofX11();
    }
    if (!found && source_ == LiveSource::kAny) {
      found = ofWayland(false);
    }
    return found ? found : none_;
  }

 private:
  std::shared_ptr<const Arrangement> ofWayland(bool only_modern) {
    if (!isSet("WAYLAND_DISPLAY")) {
      return nullptr;
    }
    std::call_once(wayland_loaded_, [this] { wayland_ = waylandPart().displays(); });
    return wayland_(only_modern);
  }
  std::shared_ptr<const Arrangement> ofX11() {
    if (!isSet("DISPLAY")) {
      return nullptr;
    }
    std::call_once(x11_loaded_, [this] { x11_ = x11Part().displays(); });
    return x11_();
  }

  const LiveSource source_;
  const std::shared_ptr<const Arrangement> none_ = std::make_shared<const Arrangement>();
  std::once_flag wayland_loaded_;
  std::once_flag x11_loaded_;
  WaylandSource wayland_;
  ArrangementSource x11_;
};

class LiveDesktop final : public Desktop {
 public:
  explicit LiveDesktop(LiveSource source) : displays_(source) {}

  std::shared_ptr<const Arrangement> arrangement() override { return displays_.arrangement(); }
  void visitDeviceProfiles(const DeviceProfileVisitor& visit) override {
    colordPart().visit([this] { return arrangement(); }, visit);
  }
  void visitInstalledProfiles(const InstalledProfileVisitor& visit) override { profiles_.visit(visit); }
  bool setDeviceProfile(const Uuid& device, const std::string& profile_path) override {
    return colordPart().assign([this] { return arrangement(); }, device, profile_path);
  }

 private:
  IccFolders profiles_{installedProfileFolders()};
  LiveDisplays displays_;
};

}  // namespace

std::shared_ptr<Desktop> makeLiveDesktop(LiveSource source) { return std::make_shared<LiveDesktop>(source); }

}  // namespace platform::desktop
