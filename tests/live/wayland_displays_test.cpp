// The live desktop under sway: which source is chosen, and compositors that hang, die and restart.
#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "desktop/current.h"
#include "desktop/wayland/wayland_displays.h"
#include "desktop/x11/x11_displays.h"
#include "support/edid_maker.h"
#include "support/environment_variables.h"
#include "support/temporary_folder.h"
#include "support/wayland_session.h"
#include "support/x_proxy.h"
#include "support/xorg_server.h"

namespace {

using platform::desktop::Arrangement;
using platform::desktop::Desktop;
using platform::desktop::LiveSource;
using platform::desktop::makeLiveDesktop;
using platform::desktop::WaylandDisplays;
using platform::desktop::WaylandOptions;
using platform::desktop::X11Displays;
using std::chrono::milliseconds;
using support::EnvironmentVariables;
using support::SwaySession;
using support::XorgServer;
using support::XProxy;

using Clock = std::chrono::steady_clock;

std::vector<std::string> connectorsOf(const Arrangement& arrangement) {
  std::vector<std::string> connectors;
  for (const auto& display : arrangement.displays) {
    connectors.push_back(display.connector);
  }
  std::sort(connectors.begin(), connectors.end());
  return connectors;
}

/// Calls until there are these displays, for at most some seconds; returns the last ones.
template <typename Source>
std::vector<std::string> waitForConnectors(Source& source, const std::vector<std::string>& expected) {
  const auto deadline = Clock::now() + std::chrono::seconds(20);
  auto connectors = connectorsOf(*source.arrangement());
  while (connectors != expected && Clock::now() < deadline) {
    std::this_thread::sleep_for(milliseconds(2));
    connectors = connectorsOf(*source.arrangement());
  }
  return connectors;
}

using Connectors = std::vector<std::string>;

// --- the choice of the source

class LiveSourceChoice : public testing::Test {
 protected:
  static Connectors chosen(const std::string& display, const std::string& wayland, LiveSource source) {
    const EnvironmentVariables variables({{"DISPLAY", display}, {"WAYLAND_DISPLAY", wayland}});
    return connectorsOf(*makeLiveDesktop(source)->arrangement());
  }

  XorgServer x;
  SwaySession sway;
};

TEST_F(LiveSourceChoice, PrefersTheCompositor) {
  EXPECT_EQ(chosen(x.display(), sway.socket(), LiveSource::kAny), Connectors{"HEADLESS-1"});
  EXPECT_EQ(chosen("", sway.socket(), LiveSource::kAny), Connectors{"HEADLESS-1"});
}

TEST_F(LiveSourceChoice, TakesTheXServerWithoutACompositor) {
  EXPECT_EQ(chosen(x.display(), "", LiveSource::kAny), Connectors{"DUMMY0"});
  EXPECT_EQ(chosen(x.display(), "/nowhere/wayland-0", LiveSource::kAny), Connectors{"DUMMY0"});
  EXPECT_EQ(chosen(x.display(), std::string(500, 'x'), LiveSource::kAny), Connectors{"DUMMY0"});
  EXPECT_EQ(chosen("", "", LiveSource::kAny), Connectors{});
}

TEST_F(LiveSourceChoice, IsForcedByTheSource) {
  EXPECT_EQ(chosen(x.display(), sway.socket(), LiveSource::kX11), Connectors{"DUMMY0"});
  EXPECT_EQ(chosen(x.display(), sway.socket(), LiveSource::kWayland), Connectors{"HEADLESS-1"});
  EXPECT_EQ(chosen(x.display(), "", LiveSource::kWayland), Connectors{});
}

TEST_F(LiveSourceChoice, IsForcedByTheVariable) {
  for (const auto& [word, expected] : {std::pair{"x11", "DUMMY0"}, {"wayland", "HEADLESS-1"}, {"live", "HEADLESS-1"}}) {
    SCOPED_TRACE(word);
    const EnvironmentVariables variables(
        {{"DISPLAY", x.display()}, {"WAYLAND_DISPLAY", sway.socket()}, {"OSTREVIN_DESKTOP", word}});
    platform::desktop::setCurrent(nullptr);
    EXPECT_EQ(connectorsOf(*platform::desktop::current()->arrangement()), Connectors{expected});
  }
  platform::desktop::setCurrent(nullptr);
}

TEST_F(LiveSourceChoice, FindsTheSocketInTheRuntimeFolder) {
  const std::string folder = std::filesystem::path(sway.socket()).parent_path();
  const EnvironmentVariables variables({{"XDG_RUNTIME_DIR", folder}});
  EXPECT_EQ(chosen(x.display(), "wayland-1", LiveSource::kAny), Connectors{"HEADLESS-1"});
  EXPECT_EQ(chosen(x.display(), "wayland-2", LiveSource::kAny), Connectors{"DUMMY0"});
}

TEST_F(LiveSourceChoice, ReturnsToTheXServerWhenTheCompositorDies) {
  const EnvironmentVariables variables({{"DISPLAY", x.display()}, {"WAYLAND_DISPLAY", sway.socket()}});
  const auto desktop = makeLiveDesktop();
  EXPECT_EQ(connectorsOf(*desktop->arrangement()), Connectors{"HEADLESS-1"});
  sway.kill();
  EXPECT_EQ(connectorsOf(*desktop->arrangement()), Connectors{"DUMMY0"});
  sway.restart(2);
  EXPECT_EQ(waitForConnectors(*desktop, {"HEADLESS-1", "HEADLESS-2"}), (Connectors{"HEADLESS-1", "HEADLESS-2"}));
}

// --- compositors that hang or die

TEST(HungCompositor, LeavesTheKnownDisplays) {
  const SwaySession sway;
  WaylandDisplays displays({.socket = sway.socket()});
  const auto before = displays.arrangement();
  ASSERT_EQ(before->displays.size(), 1u);
  sway.pause();
  EXPECT_EQ(displays.arrangement(), before);
  sway.resume();
}

TEST(HungCompositor, HasNoDisplaysFromTheTimeLimitUntilItResumes) {
  const SwaySession sway;
  sway.pause();
  WaylandDisplays displays({.socket = sway.socket()});
  const auto begin = Clock::now();
  EXPECT_TRUE(displays.arrangement()->displays.empty());
  const auto limit = Clock::now();
  EXPECT_GE(limit - begin, milliseconds(2000));
  EXPECT_LT(limit - begin, milliseconds(10000));
  EXPECT_TRUE(displays.arrangement()->displays.empty());
  EXPECT_LT(Clock::now() - limit, milliseconds(1000));
  sway.resume();
  EXPECT_EQ(waitForConnectors(displays, {"HEADLESS-1"}), Connectors{"HEADLESS-1"});
}

TEST(LostCompositor, HasNoDisplaysUntilTheNextOne) {
  SwaySession sway;
  WaylandDisplays displays({.socket = sway.socket()});
  ASSERT_EQ(displays.arrangement()->displays.size(), 1u);
  sway.kill();
  for (int i = 0; i < 100; ++i) {
    EXPECT_TRUE(displays.arrangement()->displays.empty());
  }
  sway.restart(2);
  EXPECT_EQ(waitForConnectors(displays, {"HEADLESS-1", "HEADLESS-2"}), (Connectors{"HEADLESS-1", "HEADLESS-2"}));
}

/// A compositor that goes wrong in the middle of what it sends.
class BrokenCompositor : public testing::Test {
 protected:
  BrokenCompositor() { std::signal(SIGPIPE, SIG_DFL); }  // ends the process, also where the tests inherited another

  WaylandOptions options(milliseconds time_limit) const {
    return {.socket = proxy.path(), .time_limit = time_limit, .pause_after_failure = milliseconds(0)};
  }

  /// How many bytes the compositor sends until the first arrangement is there.
  std::uint64_t bytesOfAReading() {
    WaylandDisplays displays(options(milliseconds(20000)));
    EXPECT_EQ(displays.arrangement()->displays.size(), 2u);
    return proxy.mostBytesFromServer();
  }

  const SwaySession sway{2};
  XProxy proxy{sway.socket(), XProxy::Kind::kFile};
};

TEST_F(BrokenCompositor, CutAnywhereHasNoDisplays) {
  const std::uint64_t whole = bytesOfAReading();
  constexpr std::uint64_t kStep = 12;
  for (std::uint64_t bytes = 0; bytes + kStep < whole; bytes += kStep) {
    SCOPED_TRACE(bytes);
    proxy.limit(bytes, XProxy::AtLimit::kClose);
    WaylandDisplays displays(options(milliseconds(20000)));
    ASSERT_TRUE(displays.arrangement()->displays.empty());
  }
  proxy.resume();
  WaylandDisplays displays(options(milliseconds(20000)));
  EXPECT_EQ(displays.arrangement()->displays.size(), 2u);
}

TEST_F(BrokenCompositor, CutWithinAnEventIsConnectedToAnew) {
  WaylandDisplays displays(options(milliseconds(20000)));
  ASSERT_EQ(displays.arrangement()->displays.size(), 2u);
  proxy.limit(proxy.mostBytesFromServer() + 6, XProxy::AtLimit::kClose);
  sway.swaymsg({"output", "HEADLESS-2", "position", "0", "2000"});
  const auto deadline = Clock::now() + std::chrono::seconds(20);
  while (proxy.connections() < 2 && Clock::now() < deadline) {
    displays.arrangement();
  }
  EXPECT_EQ(proxy.connections(), 2u);
}

TEST_F(BrokenCompositor, StoppedListeningDoesNotEndTheProcess) {
  const std::uint64_t whole = bytesOfAReading();
  constexpr std::uint64_t kSteps = 30;
  int without_displays = 0;
  for (std::uint64_t step = 1; step < kSteps; ++step) {
    const std::uint64_t bytes = whole * step / kSteps;
    SCOPED_TRACE(bytes);
    proxy.limit(bytes, XProxy::AtLimit::kDeaf);
    WaylandDisplays displays(options(milliseconds(20000)));
    const std::size_t found = displays.arrangement()->displays.size();
    ASSERT_TRUE(found == 0 || found == 2) << found;  // 2: every request had been made
    without_displays += found == 0 ? 1 : 0;
  }
  EXPECT_GT(without_displays, 0);
}

TEST_F(BrokenCompositor, HungAnywhereHasNoDisplaysUntilItResumes) {
  const std::uint64_t whole = bytesOfAReading();
  constexpr std::uint64_t kSteps = 30;
  for (std::uint64_t step = 0; step < kSteps; ++step) {
    const std::uint64_t bytes = whole * step / kSteps;
    SCOPED_TRACE(bytes);
    proxy.limit(bytes, XProxy::AtLimit::kStall);
    WaylandDisplays displays(options(milliseconds(20)));
    ASSERT_TRUE(displays.arrangement()->displays.empty());
    ASSERT_TRUE(displays.arrangement()->displays.empty());
    proxy.resume();
    ASSERT_EQ(waitForConnectors(displays, {"HEADLESS-1", "HEADLESS-2"}).size(), 2u);
  }
}

TEST_F(BrokenCompositor, GetsNoByteWhileNothingChanges) {
  WaylandDisplays displays(options(milliseconds(20000)));
  const auto first = displays.arrangement();
  ASSERT_EQ(first->displays.size(), 2u);
  const std::uint64_t before = proxy.bytesFromClients();
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(displays.arrangement(), first);
  }
  EXPECT_EQ(proxy.bytesFromClients(), before);
}

TEST(MissingCompositor, IsNotLookedForInEveryCall) {
  const SwaySession sway;
  XProxy proxy(sway.socket(), XProxy::Kind::kFile);
  proxy.limit(0, XProxy::AtLimit::kClose);
  WaylandDisplays displays({.socket = proxy.path(), .pause_after_failure = milliseconds(60000)});
  for (int i = 0; i < 1000; ++i) {
    ASSERT_TRUE(displays.arrangement()->displays.empty());
  }
  EXPECT_EQ(proxy.connections(), 1u);
}

// --- EDIDs from Linux's connectors

class Xwayland final : public support::XServer {
 public:
  explicit Xwayland(const SwaySession& sway) { start({"Xwayland"}, {}, sway.environment()); }
};

class ConnectorEdids : public testing::Test {
 protected:
  void plugIn(const std::string& connector, const support::EdidBytes& edid) const {
    folder.write("card0-" + connector + "/edid", {reinterpret_cast<const char*>(edid.data()), edid.size()});
  }

  const support::TemporaryFolder folder;
  const EnvironmentVariables variables{{{"OSTREVIN_DRM", folder.path()}}};
  const SwaySession sway;
};

TEST_F(ConnectorEdids, NameTheDisplaysAsEdidDecodeDoes) {
  const auto edid = support::makeEdid({.vendor = "DEL", .product = 0xA0B1, .serial = 77, .name = "Exactly13Char"});
  plugIn("HEADLESS-1", edid);
  WaylandDisplays displays({.socket = sway.socket()});
  const auto arrangement = displays.arrangement();
  ASSERT_EQ(arrangement->displays.size(), 1u);
  EXPECT_EQ(arrangement->displays[0].vendor, 0x10ACu);
  EXPECT_EQ(arrangement->displays[0].model, 0xA0B1u);
  EXPECT_EQ(arrangement->displays[0].serial, 77u);
  EXPECT_EQ(arrangement->displays[0].edid, edid);
  ASSERT_EQ(arrangement->services.size(), 1u);
  EXPECT_EQ(arrangement->services[0].product_names.value().at(0).second, support::decodedName(edid));
}

TEST_F(ConnectorEdids, AreReadAnewForAMonitorThatIsPluggedIn) {
  plugIn("HEADLESS-1", support::makeEdid({.name = "First"}));
  WaylandDisplays displays({.socket = sway.socket()});
  EXPECT_EQ(displays.arrangement()->services.at(0).product_names.value().at(0).second, "First");
  plugIn("HEADLESS-1", support::makeEdid({.name = "Second"}));
  plugIn("HEADLESS-2", support::makeEdid({.name = "Third"}));
  sway.createOutput();
  const Connectors both = {"HEADLESS-1", "HEADLESS-2"};
  EXPECT_EQ(waitForConnectors(displays, both), both);
  EXPECT_EQ(displays.arrangement()->services.at(0).product_names.value().at(0).second, "Second");
  EXPECT_EQ(displays.arrangement()->services.at(1).product_names.value().at(0).second, "Third");
}

TEST_F(ConnectorEdids, IdentifyTheMonitorUnderXwaylandToo) {
  plugIn("HEADLESS-1", support::makeEdid({.name = "Known"}));
  Xwayland server(sway);
  WaylandDisplays displays({.socket = sway.socket()});
  X11Displays of_x({.display = server.display()});
  ASSERT_EQ(of_x.arrangement()->displays.size(), 1u);
  EXPECT_EQ(of_x.arrangement()->displays[0].uuid, displays.arrangement()->displays.at(0).uuid);
  EXPECT_EQ(of_x.arrangement()->services.at(0).product_names.value().at(0).second, "Known");
}

TEST_F(ConnectorEdids, DoNotCountForAnotherXServersOutputs) {
  plugIn("DUMMY0", support::makeEdid({.name = "Known"}));
  const XorgServer server;
  X11Displays displays({.display = server.display()});
  ASSERT_EQ(displays.arrangement()->displays.size(), 1u);
  EXPECT_TRUE(displays.arrangement()->services.empty());
}

}  // namespace
