#include "desktop/colord/colord_library.h"

#include <dlfcn.h>

#include "desktop/colord/colord_factory.h"

namespace platform::desktop {
namespace {

/// The path of a library in the folder of the one that this code is in; just its name when that is not known.
std::string besideThis(const std::string& name) {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&besideThis), &info) == 0 || info.dli_fname == nullptr) {
    return name;
  }
  const std::string path = info.dli_fname;
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? name : path.substr(0, slash + 1) + name;
}

/// A function of the library; null when it is not there. It stays loaded for the life of the process.
template <typename Function>
Function* find(const char* name) {
  void* const library = dlopen(besideThis(kColordLibrary).c_str(), RTLD_NOW | RTLD_LOCAL);
  return library == nullptr ? nullptr : reinterpret_cast<Function*>(dlsym(library, name));
}

}  // namespace

const DeviceProfiles* ColordLibrary::loaded() const {
  std::call_once(once_, [this] {
    if (auto* const make = find<MakeColordDevices>(kMakeColordDevices)) {
      devices_.reset(make(arrangement_));
    }
  });
  return devices_.get();
}

void ColordLibrary::visit(const DeviceProfileVisitor& visit) const {
  if (const DeviceProfiles* const devices = loaded()) {
    devices->visit(visit);
  }
}

bool ColordLibrary::assign(const Uuid& device, const std::string& profile_path) const {
  const DeviceProfiles* const devices = loaded();
  return devices != nullptr && devices->assign(device, profile_path);
}

ColordReport askColord(const std::vector<Display>& displays) {
  auto* const report = find<ReportOnColord>(kReportOnColord);
  if (report == nullptr) {
    return {.state = ColordState::kNoLibrary};
  }
  return *std::unique_ptr<ColordReport>(report(displays));
}

}  // namespace platform::desktop
