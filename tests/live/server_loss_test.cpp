#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <thread>

#include "desktop/current.h"
#include "desktop/model/desktop.h"
#include "desktop/x11/x11_displays.h"
#include "live/agreement.h"
#include "support/x_proxy.h"
#include "support/xorg_server.h"

namespace {

using live::expectAgreement;
using live::liveDesktopOf;
using live::waitForDisplays;
using platform::desktop::Arrangement;
using platform::desktop::X11Displays;
using platform::desktop::X11Options;
using std::chrono::milliseconds;
using support::XorgServer;
using support::XProxy;

using Clock = std::chrono::steady_clock;

/// How long a function takes.
template <typename Function>
Clock::duration timeOf(Function function) {
  const auto begin = Clock::now();
  function();
  return Clock::now() - begin;
}

TEST(LostServer, LeavesNoDisplays) {
  XorgServer server(XorgServer::reservedDisplay());
  const auto desktop = liveDesktopOf(server);
  ASSERT_EQ(desktop->arrangement()->displays.size(), 1u);
  server.kill();
  for (int i = 0; i < 100; ++i) {
    const auto arrangement = desktop->arrangement();
    EXPECT_TRUE(arrangement->displays.empty());
    EXPECT_TRUE(arrangement->screens.empty());
    EXPECT_TRUE(arrangement->services.empty());
    EXPECT_EQ(arrangement->main_screen, std::nullopt);
  }
}

TEST(LostServer, IsReplacedByALaterOneAtTheSameDisplay) {
  const std::string display = XorgServer::reservedDisplay();
  std::optional<XorgServer> server(std::in_place, display);
  server->setMode("DUMMY0", 800, 600, 0, 0);
  const auto desktop = liveDesktopOf(*server);
  expectAgreement(*server, *desktop->arrangement());
  server->kill();
  EXPECT_TRUE(desktop->arrangement()->displays.empty());
  server.reset();
  server.emplace(display);
  server->place({{"DUMMY0", {1024, 768, 0, 0}}, {"DUMMY1", {640, 480, 1024, 0}}});
  waitForDisplays(*desktop);
  expectAgreement(*server, *desktop->arrangement());
}

TEST(MissingServer, HasNoDisplays) {
  for (const char* const display :
       {"", ":", ":59999", "nonsense", ":0:0", "/no/such/socket", ":18446744073709551616"}) {
    SCOPED_TRACE(display);
    setenv("DISPLAY", display, 1);
    const auto desktop = platform::desktop::makeLiveDesktop();
    EXPECT_TRUE(desktop->arrangement()->displays.empty());
    EXPECT_TRUE(desktop->arrangement()->displays.empty());
  }
}

TEST(MissingServer, IsFoundOnceDisplayIsSet) {
  unsetenv("DISPLAY");
  const auto desktop = platform::desktop::makeLiveDesktop();
  EXPECT_TRUE(desktop->arrangement()->displays.empty());
  XorgServer server;
  setenv("DISPLAY", server.display().c_str(), 1);
  waitForDisplays(*desktop);
  expectAgreement(server, *desktop->arrangement());
}

TEST(MissingServer, IsNotLookedForInEveryCall) {
  XorgServer server;
  XProxy proxy(server.socket());
  proxy.limit(0, XProxy::AtLimit::kClose);
  constexpr milliseconds kPause(60000);
  X11Displays displays({.display = proxy.display(), .pause_after_failure = kPause});
  for (int i = 0; i < 1000; ++i) {
    ASSERT_TRUE(displays.arrangement()->displays.empty());
  }
  EXPECT_EQ(proxy.connections(), 1u);
}

TEST(HungServer, LeavesTheKnownDisplays) {
  XorgServer server;
  const auto desktop = liveDesktopOf(server);
  const auto before = desktop->arrangement();
  server.pause();
  EXPECT_EQ(desktop->arrangement(), before);
  server.resume();
}

TEST(HungServer, HasNoDisplaysFromTheTimeLimitUntilItResumes) {
  XorgServer server;
  server.pause();
  const auto desktop = liveDesktopOf(server);
  const auto first = timeOf([&] { EXPECT_TRUE(desktop->arrangement()->displays.empty()); });
  EXPECT_GE(first, milliseconds(2000));
  EXPECT_LT(first, milliseconds(10000));
  const auto later = timeOf([&] { EXPECT_TRUE(desktop->arrangement()->displays.empty()); });
  EXPECT_LT(later, milliseconds(1000));
  server.resume();
  waitForDisplays(*desktop);
  expectAgreement(server, *desktop->arrangement());
}

/// Asks until there are as many displays, for at most some seconds; what it got last. While the computer is busy, a
/// reading may take longer than a test's short limit.
std::shared_ptr<const Arrangement> waitForDisplays(X11Displays& displays, std::size_t count) {
  const auto deadline = Clock::now() + std::chrono::seconds(20);
  auto arrangement = displays.arrangement();
  while (arrangement->displays.size() != count && Clock::now() < deadline) {
    std::this_thread::yield();
    arrangement = displays.arrangement();
  }
  return arrangement;
}

/// An X server that goes wrong in the middle of what it sends.
class BrokenServer : public testing::Test {
 protected:
  BrokenServer() {
    std::signal(SIGPIPE, SIG_DFL);  // ends the process, also where the tests inherited another action
    server.place({{"DUMMY0", {1024, 768, 0, 0}}, {"DUMMY1", {800, 600, 1024, 0}}});
  }

  X11Options options(milliseconds time_limit) const {
    return {.display = proxy.display(), .time_limit = time_limit, .pause_after_failure = milliseconds(0)};
  }

  /// How many bytes the server sends until the first arrangement is there.
  std::uint64_t bytesOfAReading() {
    X11Displays displays(options(milliseconds(20000)));
    EXPECT_EQ(displays.arrangement()->displays.size(), 2u);
    return proxy.mostBytesFromServer();
  }

  XorgServer server;
  XProxy proxy{server.socket()};
};

TEST_F(BrokenServer, CutAnywhereHasNoDisplays) {
  const std::uint64_t whole = bytesOfAReading();
  constexpr std::uint64_t kStep = 4;
  for (std::uint64_t bytes = 0; bytes < whole; bytes += kStep) {
    SCOPED_TRACE(bytes);
    proxy.limit(bytes, XProxy::AtLimit::kClose);
    X11Displays displays(options(milliseconds(20000)));
    ASSERT_TRUE(displays.arrangement()->displays.empty());
  }
  proxy.resume();
  X11Displays displays(options(milliseconds(20000)));
  EXPECT_EQ(displays.arrangement()->displays.size(), 2u);
}

TEST_F(BrokenServer, StoppedListeningDoesNotEndTheProcess) {
  const std::uint64_t whole = bytesOfAReading();
  constexpr std::uint64_t kStep = 4;
  int without_displays = 0;
  for (std::uint64_t bytes = kStep; bytes < whole; bytes += kStep) {
    SCOPED_TRACE(bytes);
    proxy.limit(bytes, XProxy::AtLimit::kDeaf);
    X11Displays displays(options(milliseconds(20000)));
    const std::size_t found = displays.arrangement()->displays.size();
    ASSERT_TRUE(found == 0 || found == 2) << found;  // 2: every request had been made
    without_displays += found == 0 ? 1 : 0;
  }
  EXPECT_GT(without_displays, 0);
}

TEST_F(BrokenServer, HungAnywhereHasNoDisplaysUntilItResumes) {
  const std::uint64_t whole = bytesOfAReading();
  constexpr std::uint64_t kSteps = 40;
  for (std::uint64_t step = 0; step < kSteps; ++step) {
    const std::uint64_t bytes = whole * step / kSteps;
    SCOPED_TRACE(bytes);
    proxy.limit(bytes, XProxy::AtLimit::kStall);
    X11Displays displays(options(milliseconds(20)));
    ASSERT_TRUE(displays.arrangement()->displays.empty());
    ASSERT_TRUE(displays.arrangement()->displays.empty());
    proxy.resume();
    ASSERT_EQ(waitForDisplays(displays, 2)->displays.size(), 2u);
  }
}

TEST_F(BrokenServer, HungDuringAChangeHasNoDisplaysUntilItResumes) {
  X11Displays displays(options(milliseconds(50)));
  ASSERT_EQ(waitForDisplays(displays, 2)->displays.size(), 2u);
  const std::uint64_t known = proxy.mostBytesFromServer();
  constexpr std::uint64_t kEventSize = 32;
  proxy.limit(known + kEventSize, XProxy::AtLimit::kStall);
  server.off("DUMMY1");
  ASSERT_TRUE(waitForDisplays(displays, 0)->displays.empty());
  proxy.resume();
  expectAgreement(server, *waitForDisplays(displays, 1));
}

TEST_F(BrokenServer, HungDoesNotBlockTheDesktopsDestruction) {
  proxy.limit(100, XProxy::AtLimit::kStall);
  {
    X11Displays displays(options(milliseconds(10)));
    EXPECT_TRUE(displays.arrangement()->displays.empty());
  }
  const auto before = platform::desktop::x11RoundTrips();
  proxy.resume();
  const auto deadline = Clock::now() + std::chrono::seconds(20);
  while (platform::desktop::x11RoundTrips() == before && Clock::now() < deadline) {
    std::this_thread::yield();
  }
  EXPECT_GT(platform::desktop::x11RoundTrips(), before) << "the reading goes on by itself";
}

TEST_F(BrokenServer, GetsNoByteWhileNothingChanges) {
  X11Displays displays(options(milliseconds(20000)));
  const auto first = displays.arrangement();
  ASSERT_EQ(first->displays.size(), 2u);
  const std::uint64_t before = proxy.bytesFromClients();
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(displays.arrangement(), first);
  }
  EXPECT_EQ(proxy.bytesFromClients(), before);
}

}  // namespace
