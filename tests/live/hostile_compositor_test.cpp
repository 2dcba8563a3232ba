// Compositors that are old, wrong or hostile: libwayland-server with impossible descriptions, and raw bytes.
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <limits>
#include <random>
#include <thread>

#include "desktop/current.h"
#include "desktop/wayland/wayland_displays.h"
#include "support/environment_variables.h"
#include "support/fake_compositor.h"
#include "support/temporary_folder.h"
#include "support/xorg_server.h"

namespace {

using platform::desktop::Arrangement;
using platform::desktop::Rect;
using platform::desktop::WaylandDisplays;
using std::chrono::milliseconds;
using support::FakeCompositor;
using support::FakeGlobals;
using support::FakeOutput;
using testing::IsEmpty;

using Clock = std::chrono::steady_clock;

FakeOutput named(const std::string& name, std::int32_t x = 0) {
  FakeOutput output;
  output.name = name;
  output.x = x;
  output.logical_x = x;
  return output;
}

/// Calls until the condition holds, for at most some seconds; returns the last arrangement.
template <typename Condition>
std::shared_ptr<const Arrangement> waitFor(WaylandDisplays& displays, Condition condition) {
  const auto deadline = Clock::now() + std::chrono::seconds(20);
  auto arrangement = displays.arrangement();
  while (!condition(*arrangement) && Clock::now() < deadline) {
    std::this_thread::sleep_for(milliseconds(2));
    arrangement = displays.arrangement();
  }
  return arrangement;
}

// --- versions

class CompositorVersions : public testing::TestWithParam<std::pair<std::uint32_t, std::uint32_t>> {};

TEST_P(CompositorVersions, ShowWhatTheyCanDescribe) {
  const auto [output_version, manager_version] = GetParam();
  FakeOutput second = named("DP-2", 1920);
  second.mode_width = 2560;
  second.mode_height = 1440;
  second.scale = 2;
  second.logical_width = 1707;
  second.logical_height = 960;
  const FakeCompositor compositor(FakeGlobals{{named("DP-1"), second}, output_version, manager_version});
  WaylandDisplays displays({.socket = compositor.socket()});
  const auto arrangement = displays.arrangement();
  ASSERT_EQ(arrangement->displays.size(), 2u);
  const bool has_names = output_version >= 4 || manager_version >= 2;
  EXPECT_EQ(arrangement->displays[0].connector, has_names ? "DP-1" : "");
  EXPECT_EQ(arrangement->displays[1].connector, has_names ? "DP-2" : "");
  EXPECT_EQ(displays.isModern(), has_names && manager_version != 0);
  const double whole_scale = output_version >= 2 ? 2 : 1;
  EXPECT_EQ(arrangement->displays[1].bounds, manager_version != 0
                                                 ? (Rect{1920, 0, 1707, 960})
                                                 : (Rect{1920, 0, 2560 / whole_scale, 1440 / whole_scale}));
  EXPECT_EQ(arrangement->screens[1].backing_scale, manager_version != 0 ? 1.5 : whole_scale);
}

INSTANTIATE_TEST_SUITE_P(OutputAndManager, CompositorVersions,
                         testing::Values(std::pair{1u, 0u}, std::pair{1u, 1u}, std::pair{2u, 0u}, std::pair{2u, 2u},
                                         std::pair{3u, 1u}, std::pair{3u, 3u}, std::pair{4u, 0u}, std::pair{4u, 2u},
                                         std::pair{4u, 3u}),
                         [](const auto& info) {
                           return std::to_string(info.param.first) + "And" + std::to_string(info.param.second);
                         });

TEST(OldCompositor, CountsOnlyWithoutAnXServer) {
  const FakeCompositor compositor(FakeGlobals{{named("DP-1")}, 2, 0});
  support::XorgServer x;
  const auto shown = [&](const std::string& display) {
    const support::EnvironmentVariables variables({{"DISPLAY", display}, {"WAYLAND_DISPLAY", compositor.socket()}});
    return platform::desktop::makeLiveDesktop()->arrangement();
  };
  ASSERT_EQ(shown(x.display())->displays.size(), 1u);
  EXPECT_EQ(shown(x.display())->displays[0].connector, "DUMMY0");
  ASSERT_EQ(shown("")->displays.size(), 1u);
  EXPECT_EQ(shown("")->displays[0].connector, "");
}

// --- impossible descriptions

TEST(HostileCompositor, WithoutDoneEventsHasNoDisplays) {
  FakeOutput output = named("DP-1");
  output.done = false;
  FakeCompositor compositor(FakeGlobals{{output}});
  WaylandDisplays displays({.socket = compositor.socket()});
  EXPECT_THAT(displays.arrangement()->displays, IsEmpty());
  compositor.describe(0, named("DP-1"));
  EXPECT_EQ(waitFor(displays, [](const auto& now) { return now.displays.size() == 1; })->displays.size(), 1u);
}

TEST(HostileCompositor, LosesOutputsOfImpossibleSizesOnly) {
  constexpr auto kLeast = std::numeric_limits<std::int32_t>::min();
  constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
  FakeOutput negative = named("DP-2");
  negative.logical_width = -1920;
  FakeOutput empty = named("DP-3");
  empty.mode_height = 0;
  FakeOutput least = named("DP-4", kLeast);
  least.mode_width = least.logical_height = least.scale = least.transform = kLeast;
  FakeOutput most = named("DP-5", kMost);
  most.logical_width = most.logical_height = most.mode_width = most.mode_height = most.transform = kMost;
  most.scale = kMost;
  const FakeCompositor compositor(FakeGlobals{{named("DP-1"), negative, empty, least, most}});
  WaylandDisplays displays({.socket = compositor.socket()});
  const auto arrangement = displays.arrangement();
  ASSERT_EQ(arrangement->displays.size(), 2u);
  EXPECT_EQ(arrangement->displays[0].connector, "DP-1");
  EXPECT_EQ(arrangement->displays[1].connector, "DP-5");
}

TEST(HostileCompositor, WithAThousandOutputsShowsThemAll) {
  FakeGlobals globals;
  for (int i = 0; i < 1000; ++i) {
    globals.outputs.push_back(named("DP-" + std::to_string(i), i * 1920));
  }
  const FakeCompositor compositor(globals);
  WaylandDisplays displays({.socket = compositor.socket(), .time_limit = milliseconds(20000)});
  EXPECT_EQ(displays.arrangement()->displays.size(), 1000u);
}

TEST(HostileCompositor, WithNamesThatAreNotUtf8HasReplacedOnes) {
  FakeOutput output = named("DP\xFF\xFE");
  output.make = "\xC0\x80";
  output.model = std::string(3000, '\xED');
  output.description = "\n\x1B[31m";
  const FakeCompositor compositor(FakeGlobals{{output}});
  WaylandDisplays displays({.socket = compositor.socket()});
  const auto arrangement = displays.arrangement();
  ASSERT_EQ(arrangement->displays.size(), 1u);
  EXPECT_EQ(arrangement->displays[0].connector, "DP\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(HostileCompositor, WithTwoOutputsOfOneNameNumbersBoth) {
  const FakeCompositor compositor(FakeGlobals{{named("DP-1"), named("DP-1")}});
  WaylandDisplays displays({.socket = compositor.socket()});
  const auto arrangement = displays.arrangement();
  ASSERT_EQ(arrangement->displays.size(), 2u);
  EXPECT_NE(arrangement->displays[0].number, arrangement->displays[1].number);
}

TEST(HostileCompositor, ThatFloodsIsFollowed) {
  FakeCompositor compositor(FakeGlobals{{named("DP-1"), named("DP-2", 1920)}});
  WaylandDisplays displays({.socket = compositor.socket(), .time_limit = milliseconds(20000)});
  ASSERT_EQ(displays.arrangement()->displays.size(), 2u);
  compositor.flood(0, 20);
  compositor.remove(1);
  EXPECT_EQ(waitFor(displays, [](const auto& now) { return now.displays.size() == 1; })->displays.size(), 1u);
}

TEST(ChangingCompositor, KeepsTheNumberOfAnOutputThatStays) {
  FakeCompositor compositor(FakeGlobals{{named("DP-1"), named("DP-2", 1920)}});
  WaylandDisplays displays({.socket = compositor.socket()});
  const auto before = displays.arrangement();
  ASSERT_EQ(before->displays.size(), 2u);
  FakeOutput moved = named("DP-2", -1920);
  compositor.describe(1, moved);
  compositor.remove(0);
  compositor.add(named("DP-3"));
  const auto after = waitFor(displays, [](const auto& now) {
    return now.displays.size() == 2 && now.displays[0].connector == "DP-3" && now.displays[1].bounds.x == -1920;
  });
  ASSERT_EQ(after->displays.size(), 2u);
  EXPECT_EQ(after->displays[0].connector, "DP-3") << "at the origin";
  EXPECT_EQ(after->displays[1].connector, "DP-2");
  EXPECT_EQ(after->displays[1].number, before->displays[1].number);
  EXPECT_EQ(after->displays[1].uuid, before->displays[1].uuid);
  EXPECT_NE(after->displays[0].number, before->displays[0].number);
}

// --- raw bytes

/// Sends these bytes to one client at once, and closes the connection with the object.
class RawCompositor {
 public:
  explicit RawCompositor(std::string bytes) : bytes_(std::move(bytes)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socket().copy(address.sun_path, sizeof(address.sun_path) - 1);
    listener_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    EXPECT_EQ(bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(listener_, 8), 0);
    thread_ = std::thread([this] {
      client_ = accept(listener_, nullptr, nullptr);
      if (client_ >= 0) {
        [[maybe_unused]] const ssize_t ignored = send(client_, bytes_.data(), bytes_.size(), MSG_NOSIGNAL);
        shutdown(client_, SHUT_WR);
      }
    });
  }
  ~RawCompositor() {
    shutdown(listener_, SHUT_RDWR);
    thread_.join();
    close(client_);
    close(listener_);
  }
  RawCompositor(const RawCompositor&) = delete;
  RawCompositor& operator=(const RawCompositor&) = delete;

  std::string socket() const { return folder_.path("wayland"); }

 private:
  support::TemporaryFolder folder_;
  std::string bytes_;
  int listener_ = -1;
  int client_ = -1;
  std::thread thread_;
};

std::string words(const std::vector<std::uint32_t>& values) {
  return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(std::uint32_t)};
}

constexpr std::uint32_t kDisplay = 1;
constexpr std::uint32_t kRegistry = 2;

std::uint32_t sizeAndOpcode(std::uint32_t size, std::uint32_t opcode) { return size << 16 | opcode; }

TEST(HostileCompositor, ThatSendsMalformedMessagesHasNoDisplays) {
  const std::pair<const char*, std::string> cases[] = {
      {"nothing", ""},
      {"text", "HTTP/1.1 400 Bad Request\r\n\r\n"},
      {"a size of 0", words({kRegistry, sizeAndOpcode(0, 0), 0, 0})},
      {"a size below the header's", words({kRegistry, sizeAndOpcode(4, 0), 0, 0})},
      {"a size beyond what is sent", words({kRegistry, sizeAndOpcode(0xFFFC, 0), 1})},
      {"an unknown opcode", words({kRegistry, sizeAndOpcode(8, 77)})},
      {"an unknown object", words({4711, sizeAndOpcode(8, 0)})},
      {"a string beyond the message", words({kRegistry, sizeAndOpcode(20, 0), 1, 0xFFFFFFFF, 4})},
      {"a string without an end", words({kRegistry, sizeAndOpcode(24, 0), 1, 4, 0x41414141, 4})},
      {"a missing string", words({kRegistry, sizeAndOpcode(20, 0), 1, 0, 4})},
      {"an error", words({kDisplay, sizeAndOpcode(28, 0), kDisplay, 0, 5, 0x41414141, 0})},
      {"an error about nothing", words({kDisplay, sizeAndOpcode(28, 0), 0, 0, 5, 0x41414141, 0})},
      {"a deletion of the display", words({kDisplay, sizeAndOpcode(12, 1), kDisplay})},
      {"a deletion of what is not there", words({kDisplay, sizeAndOpcode(12, 1), 0xFEFFFFFF})},
  };
  for (const auto& [what, bytes] : cases) {
    SCOPED_TRACE(what);
    const RawCompositor compositor(bytes);
    WaylandDisplays displays({.socket = compositor.socket(), .time_limit = milliseconds(20000)});
    EXPECT_THAT(displays.arrangement()->displays, IsEmpty());
  }
}

TEST(HostileCompositor, ThatSendsRandomMessagesHasNoDisplays) {
  constexpr int kRuns = 200;
  std::mt19937 random(20240607);
  for (int run = 0; run < kRuns; ++run) {
    SCOPED_TRACE(run);
    std::string bytes;
    while (bytes.size() < 3000) {
      std::vector<std::uint32_t> message{static_cast<std::uint32_t>(random() % 5), 0};
      const std::size_t arguments = random() % 6;
      for (std::size_t i = 0; i < arguments; ++i) {
        message.push_back(random() % 3 == 0 ? static_cast<std::uint32_t>(random())
                                            : static_cast<std::uint32_t>(random() % 16));
      }
      message[1] =
          sizeAndOpcode(static_cast<std::uint32_t>(message.size() * 4), static_cast<std::uint32_t>(random() % 3));
      bytes += words(message);
    }
    const RawCompositor compositor(bytes);
    WaylandDisplays displays({.socket = compositor.socket(), .time_limit = milliseconds(20000)});
    ASSERT_THAT(displays.arrangement()->displays, IsEmpty());
  }
}

}  // namespace
