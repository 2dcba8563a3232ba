// A desktop that is described instead of found: by a JSON file, or by a test, piece by piece.
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

/// What a walk does besides visiting the entries, and how often it visits them all.
struct WalkBehaviour {
  std::function<void()> before;        ///< runs on the walking thread; may block, which is a walk that hangs
  std::chrono::milliseconds delay{0};  ///< waits this long first
  bool hang = false;                   ///< waits until releaseWalks() is called
  unsigned repeat = 1;                 ///< visits the entries this many times
  std::function<void()> after;         ///< runs on the walking thread when the walk is over
};

/// Everything that a scripted desktop answers.
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

  /// Changes the script; what is being walked at the moment is not affected.
  void change(const std::function<void(Script&)>& edit);
  /// Lets every walk that hangs go on, now and later.
  void releaseWalks();

  std::shared_ptr<const Arrangement> arrangement() override;
  void visitDeviceProfiles(const DeviceProfileVisitor& visit) override;
  void visitInstalledProfiles(const InstalledProfileVisitor& visit) override;
  /// Makes the file the device's one default and current entry, in place of its first default entry if it has one; its
  /// other entries are no longer default or current.
  bool setDeviceProfile(const Uuid& device, const std::string& profile_path) override;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

/// Reads the description of a desktop from a JSON file (docs/desktop-file.md). Throws std::runtime_error with one line:
/// "FILE: REASON" when the file cannot be read, "FILE:LINE: REASON" when it does not describe a desktop.
PLATFORM_API Script readScript(const std::string& path);

}  // namespace platform::desktop
