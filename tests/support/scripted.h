// Desktops for tests: a scripted one for the length of a test, one of a folder's profiles, and makers of displays.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "desktop/current.h"
#include "desktop/icc/icc_folders.h"
#include "desktop/script/scripted.h"
#include "frameworks/hooks/calls.h"

namespace support {

/// Makes `desktop` the current desktop. The destructor removes it and all hooks.
class ScriptedSession {
 public:
  explicit ScriptedSession(platform::desktop::Script script = {})
      : desktop(std::make_shared<platform::desktop::ScriptedDesktop>(std::move(script))) {
    platform::desktop::setCurrent(desktop);
  }
  ~ScriptedSession() {
    platform::calls::removeAllHooks();
    desktop->releaseWalks();
    platform::desktop::setCurrent(nullptr);
  }
  ScriptedSession(const ScriptedSession&) = delete;
  ScriptedSession& operator=(const ScriptedSession&) = delete;

  const std::shared_ptr<platform::desktop::ScriptedDesktop> desktop;
};

/// Gives the nth call (from 1) this result and leaves the others alone.
inline void faultOnce(platform::calls::Call call, std::uint64_t nth, const platform::calls::Fault& result) {
  platform::calls::setHook(call,
                           [=](std::uint64_t this_one) { return this_one == nth ? result : platform::calls::Fault{}; });
}

/// A desktop without displays whose installed profiles are those of one folder.
class FolderDesktop final : public platform::desktop::Desktop {
 public:
  explicit FolderDesktop(const std::string& folder) : folders_({folder}) {}
  std::shared_ptr<const platform::desktop::Arrangement> arrangement() override {
    return std::make_shared<const platform::desktop::Arrangement>();
  }
  void visitDeviceProfiles(const platform::desktop::DeviceProfileVisitor&) override {}
  void visitInstalledProfiles(const platform::desktop::InstalledProfileVisitor& visit) override {
    folders_.visit(visit);
  }
  bool setDeviceProfile(const platform::desktop::Uuid&, const std::string&) override { return false; }

 private:
  platform::desktop::IccFolders folders_;
};

/// The UUID whose last byte is `last` and whose others are zero.
inline platform::desktop::Uuid uuid(std::uint8_t last) {
  platform::desktop::Uuid bytes{};
  bytes.back() = last;
  return bytes;
}

/// A display with a UUID made from its number.
inline platform::desktop::Display display(std::uint32_t number, platform::desktop::Rect bounds) {
  platform::desktop::Display made;
  made.number = number;
  made.bounds = bounds;
  made.uuid = uuid(static_cast<std::uint8_t>(number));
  return made;
}

inline platform::desktop::Screen screen(platform::desktop::Rect frame, double scale) { return {frame, scale}; }

}  // namespace support
