// profile_probe: in a fresh process on the live desktop, prints nanoseconds.
//   profile_probe first FILE                 the bus time of the process's first walk over the displays' device
//   profiles,
//                                            which finds FILE: from the first message that the process sends, once it
//                                            is connected to the bus, to the last that it receives
//   profile_probe assign DISPLAY FILE FILE   a call of SetProfile, the files by turns, after the process's first two
#include <gio/gio.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "desktop/current.h"
#include "plugin_methods.h"
#include "suite.h"

namespace {

int fail(const char* message) {
  std::fprintf(stderr, "%s\n", message);
  return 1;
}

int print(double nanoseconds) {
  std::printf("%.0f\n", nanoseconds);
  return 0;
}

using Clock = std::chrono::steady_clock;

std::atomic<Clock::time_point> first_message;
std::atomic<Clock::time_point> last_message;

/// On the sender's thread for a message sent, on the connection's for one received.
GDBusMessage* note(GDBusConnection*, GDBusMessage* message, gboolean incoming, gpointer) {
  if (incoming != FALSE) {
    last_message = Clock::now();
  } else if (first_message.load() == Clock::time_point()) {
    first_message = Clock::now();
  }
  return message;
}

int walkFirst(const char* file) {
  const auto desktop = platform::desktop::current();
  // The connection that everything in the process shares, as long as it is held.
  GDBusConnection* const connection = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
  if (connection == nullptr) {
    return fail("no system bus");
  }
  g_dbus_connection_add_filter(connection, note, nullptr, nullptr);
  bool found = false;
  desktop->visitDeviceProfiles([&](const platform::desktop::DeviceProfile& profile) {
    found = found || profile.profile_path == file;
    return true;
  });
  const std::chrono::duration<double, std::nano> time = last_message.load() - first_message.load();
  return found ? print(time.count()) : fail("the first walk does not find the profile");
}

int assign(uint32_t display, const char* const files[2]) {
  constexpr int kCalls = 4;
  auto* const set_profile = bench::pluginMethod<bool(uint32_t, const char*)>("SetProfile");
  const devhost::AutoreleasePool pool;
  bool assigned = set_profile(display, files[0]) && set_profile(display, files[1]);
  const double time = bench::nanoseconds([&] {
    for (int call = 0; call < kCalls; ++call) {
      assigned = set_profile(display, files[call % 2]) && assigned;
    }
  });
  return assigned ? print(time / kCalls) : fail("a profile could not be assigned");
}

}  // namespace

int main(int count, char** arguments) {
  if (count == 3 && std::strcmp(arguments[1], "first") == 0) {
    return walkFirst(arguments[2]);
  }
  if (count == 5 && std::strcmp(arguments[1], "assign") == 0) {
    return assign(static_cast<uint32_t>(std::strtoul(arguments[2], nullptr, 10)), arguments + 3);
  }
  return fail("profile_probe first FILE | profile_probe assign DISPLAY FILE FILE");
}
