// A scripted desktop for the length of a test, and short ways to describe its displays.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "desktop/current.h"
#include "desktop/script/scripted.h"
#include "frameworks/hooks/calls.h"

namespace support {

/// The current desktop is `desktop` while this lives; afterwards no hook is left and the next use chooses a desktop
/// anew.
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

/// Gives the nth call (from 1) this answer, the others none of a test's making.
inline void answerOnce(platform::calls::Call call, std::uint64_t nth, const platform::calls::Answer& answer) {
  platform::calls::setHook(
      call, [=](std::uint64_t this_one) { return this_one == nth ? answer : platform::calls::Answer{}; });
}

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
