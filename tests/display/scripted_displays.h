// What the tests of DisplayServices share: a scripted desktop under the frameworks, a wait that takes no time, and
// small makers and readers of CoreFoundation values.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "base/owned_ref.h"
#include "desktop/current.h"
#include "desktop/script/scripted.h"
#include "display/display_services.h"
#include "frameworks/hooks/calls.h"

namespace display_tests {

using platform::calls::Call;
using platform::calls::Fault;
using platform::desktop::DeviceProfile;
using platform::desktop::Display;
using platform::desktop::DisplayService;
using platform::desktop::Script;
using platform::desktop::ScriptedDesktop;
using platform::desktop::Uuid;

/// Happens once, and other threads wait for it; a wait without end fails the test.
class Event {
 public:
  void happen();
  void wait();

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool happened_ = false;
};

/// Display `number` with a UUID of its own, vendor 1, model 2 and the number as serial number.
Display display(std::uint32_t number);
Uuid uuidOf(std::uint32_t number);
/// The service of that display, with this name under "en".
DisplayService service(std::uint32_t number, const std::string& name);
/// An entry of that display: its default and current profile by default.
DeviceProfile entry(std::uint32_t number, const std::string& path, bool is_default = true, bool is_current = true);

OwnedRef<CFStringRef> makeString(const std::string& utf8);
OwnedRef<CFURLRef> makeUrl(const std::string& path);
OwnedRef<CFUUIDRef> makeUuid(std::uint32_t number);
/// "(null)" for null.
std::string text(CFStringRef string);
std::string path(CFURLRef url);

/// A desktop with the displays 1, 2 and 3, their services ("Name 1", ...) and their profiles ("/profiles/1.icc", ...;
/// the description of the device is "ColorSync 1", ...).
class DisplayTest : public testing::Test {
 protected:
  DisplayTest();
  ~DisplayTest() override;

  void edit(const std::function<void(Script&)>& change) { desktop_->change(change); }

  /// From now on a query's wait takes no time: it runs `meanwhile`, then returns whether the result is there, and
  /// records its limit in limits().
  void waitInNoTime(std::function<void()> meanwhile = {});
  /// From now on a query waits in real time, as it does without a test.
  void waitInRealTime();
  static const std::vector<std::chrono::seconds>& limits();

  /// Waits until `number` walks have begun: what is edited afterwards does not concern them.
  void waitForBegunWalks(unsigned number);
  /// Waits until `number` walks are over.
  void waitForWalks(unsigned number);

  static std::uint64_t count(Call call) { return platform::calls::count(call); }
  /// Makes the nth call (from 1) fail, or all of them (0).
  void fail(Call call, std::uint64_t nth = 0);

  std::shared_ptr<ScriptedDesktop> desktop_;

 private:
  struct Walks;
  void waitFor(unsigned Walks::*counter, unsigned number);
  std::shared_ptr<Walks> walks_;
  const std::uint64_t dispatched_before_;
  bool dispatch_fails_ = false;
};

}  // namespace display_tests
