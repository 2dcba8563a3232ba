// A desktop that a JSON file or a test describes.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// How a walk behaves.
struct WalkBehaviour {
  std::function<void()> before;        ///< runs on the walking thread; may block, to simulate a hung walk
  std::chrono::milliseconds delay{0};  ///< before the first entry
  bool hang = false;                   ///< waits until releaseWalks() is called
  unsigned repeat = 1;                 ///< how many times all entries are visited
  std::function<void()> after;         ///< runs on the walking thread after the walk
};

struct Script {
  Arrangement arrangement;
  std::vector<DeviceProfile> device_profiles;
  std::vector<InstalledProfile> installed_profiles;
  bool accepts_profiles = true;  ///< whether setDeviceProfile succeeds for a known device
  WalkBehaviour device_walk;
  WalkBehaviour installed_walk;
};

/// Any thread may call any function, several at once.
class PLATFORM_API ScriptedDesktop final : public Desktop {
 public:
  explicit ScriptedDesktop(Script script = {});

  /// Changes the script; walks that have begun are not affected.
  void change(const std::function<void(Script&)>& edit);
  /// Ends the waiting of all hung walks, present and future.
  void releaseWalks();

  std::shared_ptr<const Arrangement> arrangement() override;
  void visitDeviceProfiles(const DeviceProfileVisitor& visit) override;
  void visitInstalledProfiles(const InstalledProfileVisitor& visit) override;
  /// Makes the file the device's only default and current entry, in place of its first default entry, else of its first
  /// one.
  bool setDeviceProfile(const Uuid& device, const std::string& profile_path) override;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

/// Reads the description of a desktop from a JSON file (docs/desktop-file.md). Throws std::runtime_error with one line:
/// "FILE: REASON" when the file cannot be read, "FILE:LINE: REASON" when it does not describe a desktop.
PLATFORM_API Script readScript(const std::string& path);

}  // namespace platform::desktop
