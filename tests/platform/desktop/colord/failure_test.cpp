// A colord or a bus that is missing, hangs or dies.
#include <dlfcn.h>
#include <gio/gio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "platform/desktop/colord/displays.h"
#include "support/colord_calls.h"
#include "support/private_colord.h"
#include "support/process.h"

namespace {

/// How many more times GIO returns the error of a cancelled attempt whose connection it still holds.
std::atomic<int> abandoned_attempts = 0;

}  // namespace

/// Replaces GIO's function and calls it.
extern "C" __attribute__((visibility("default"))) GDBusConnection* g_bus_get_finish(GAsyncResult* result,
                                                                                    GError** error) {
  static auto* const original = reinterpret_cast<decltype(&g_bus_get_finish)>(dlsym(RTLD_NEXT, "g_bus_get_finish"));
  GDBusConnection* const connection = original(result, error);
  if (connection == nullptr || abandoned_attempts-- <= 0) {
    return connection;
  }
  g_object_unref(connection);
  g_set_error_literal(error, G_IO_ERROR, G_IO_ERROR_CANCELLED, "Operation was cancelled");
  return nullptr;
}

namespace colord_test {
namespace {

using namespace std::chrono_literals;
using platform::desktop::kAssignmentLimit;
using platform::desktop::kDeviceWalkLimit;
using support::PrivateColord;
using support::runSuccessfully;
using testing::IsEmpty;

/// The delay on a computer that is busy with other tests.
constexpr auto kSlack = 2s;
/// The same without a wait for colord.
constexpr auto kSoon = 2s;

template <typename Work>
std::chrono::steady_clock::duration timed(const Work& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::steady_clock::now() - begin;
}

class ColordFailure : public testing::Test {
 protected:
  void assignOnce() { ASSERT_TRUE(devices_.assign(*display_.uuid, kAdobe)); }
  void expectEmptyWalk(std::chrono::steady_clock::duration least, std::chrono::steady_clock::duration most) {
    const auto took = timed([&] { EXPECT_THAT(walk(devices_), IsEmpty()); });
    EXPECT_GE(took, least);
    EXPECT_LE(took, most);
  }
  void expectWorking() { EXPECT_EQ(currentFile(devices_, display_), kAdobe); }

  PrivateColord colord_;
  Display display_ = makeDisplay(1, "DP-1", firstEdid());
  ColordDevices devices_ = devicesFor({display_});
};

TEST(PrivateColord, ThrowsTheReasonWhenColordCannotStart) {
  PrivateColord colord;
  colord.stop();
  std::filesystem::remove_all(colord.directory() / "state");
  std::ofstream(colord.directory() / "state") << "a file where colord's directory was";
  EXPECT_LE(timed([&] {
              EXPECT_THAT([&] { colord.start(); }, testing::ThrowsMessage<std::runtime_error>(
                                                       testing::ContainsRegex("colord does not start: .")));
            }),
            kSoon);
}

TEST(ColordWithoutBus, HasNoEntriesAndRefusesAssignmentsAtOnce) {
  setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
  const Display display = makeDisplay(1, "DP-1", firstEdid());
  const ColordDevices devices = devicesFor({display});
  EXPECT_LE(timed([&] { EXPECT_THAT(walk(devices), IsEmpty()); }), kSoon);
  EXPECT_LE(timed([&] { EXPECT_FALSE(devices.assign(*display.uuid, kAdobe)); }), kSoon);
}

TEST_F(ColordFailure, GivesNoEntriesUntilColordStarts) {
  colord_.stop();
  expectEmptyWalk(0s, kSoon);
  EXPECT_LE(timed([&] { EXPECT_FALSE(devices_.assign(*display_.uuid, kAdobe)); }), kSoon);
  colord_.start();
  assignOnce();
  expectWorking();
}

TEST_F(ColordFailure, ReconnectsToARestartedColord) {
  assignOnce();
  for (int round = 0; round < 2; ++round) {
    colord_.stop();
    expectEmptyWalk(0s, kSoon);
    colord_.start();
    expectWorking();
  }
}

TEST_F(ColordFailure, LimitsAnAssignmentToAHungColord) {
  assignOnce();
  colord_.suspend();
  const auto took = timed([&] { EXPECT_FALSE(devices_.assign(*display_.uuid, kAdobe)); });
  EXPECT_GE(took, kAssignmentLimit);
  EXPECT_LE(took, kAssignmentLimit + kSlack);
  colord_.resume();
  assignOnce();
}

TEST_F(ColordFailure, LimitsEachOfSeveralWalksOverAHungColord) {
  assignOnce();
  colord_.suspend();
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([this] { expectEmptyWalk(kDeviceWalkLimit, kDeviceWalkLimit + kSlack); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  colord_.resume();
  expectWorking();
}

TEST_F(ColordFailure, EndsAWalkWhenColordDies) {
  assignOnce();
  colord_.suspend();
  support::ColordCalls calls;
  std::thread walker([this] { expectEmptyWalk(0s, kSoon); });
  calls.waitForOne();
  colord_.stop();
  walker.join();
  colord_.start();
  expectWorking();
}

TEST_F(ColordFailure, SurvivesTheDeathOfTheBus) {
  assignOnce();
  colord_.stopBus();
  expectEmptyWalk(0s, kSoon);
  colord_.startBus();
  colord_.start();
  expectWorking();
}

TEST_F(ColordFailure, SurvivesTheDeathOfABusThatTheProcessUsesItself) {
  GDBusConnection* own = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
  ASSERT_NE(own, nullptr);
  if (g_dbus_connection_is_closed(own)) {  // an earlier test's, when several run in one process
    g_object_unref(own);
    walk(devices_);
    own = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
  }
  assignOnce();
  std::atomic<bool> closed = false;
  const auto note =
      +[](GDBusConnection*, gboolean, GError*, gpointer noted) { *static_cast<std::atomic<bool>*>(noted) = true; };
  g_signal_connect(own, "closed", G_CALLBACK(note), &closed);
  colord_.stopBus();
  while (!closed) {
    g_main_context_iteration(nullptr, FALSE);
    std::this_thread::sleep_for(1ms);
  }
  expectEmptyWalk(0s, kSoon);
  g_object_unref(own);
  colord_.startBus();
  colord_.start();
  expectWorking();
}

TEST_F(ColordFailure, LimitsAWalkOverAHungBus) {
  colord_.suspendBus();
  expectEmptyWalk(kDeviceWalkLimit, kDeviceWalkLimit + kSlack);
  colord_.resumeBus();
  assignOnce();
  expectWorking();
}

TEST_F(ColordFailure, RetriesTheConnectionOfACancelledAttempt) {
  abandoned_attempts = 3;
  assignOnce();
  EXPECT_LT(abandoned_attempts, 0);
}

TEST_F(ColordFailure, LetsTheProcessExitDuringAWalk) {
  colord_.suspend();
  EXPECT_LE(timed([] { EXPECT_EQ(runSuccessfully({COLORD_DEVICE_TOOL, "exit-during-walk"}), ""); }), kSoon);
  colord_.resume();
}

}  // namespace
}  // namespace colord_test
