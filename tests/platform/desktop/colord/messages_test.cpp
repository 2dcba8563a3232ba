// What is asked of colord: as little as is needed, and at once.
#include <gio/gio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/desktop/colord/displays.h"
#include "support/colord_calls.h"
#include "support/private_colord.h"

namespace colord_test {
namespace {

using support::ColordCalls;
using support::PrivateColord;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// The calls that read devices.
std::vector<std::string> devicesRead(const std::vector<std::string>& calls) {
  std::vector<std::string> read;
  for (const std::string& call : calls) {
    if (call.starts_with("GetAll ")) {
      read.push_back(call);
    }
  }
  return read;
}

/// Three displays, each with a device and the same profile.
class ColordMessages : public testing::Test {
 protected:
  ColordMessages() {
    for (const std::string& name : names_) {
      reads_.push_back(registerDevice(name, name));
      setProfile(name, kAdobe);
    }
  }

  /// Returns the call that reads the device. Its path ends in the user's name and number for users other than root.
  std::string registerDevice(const std::string& id, const std::string& connector) {
    constexpr std::string_view kColord = "/org/freedesktop/ColorManager";
    return "GetAll " + colord_.registerDevice(id, {{"XRANDR_name", connector}}).substr(kColord.size());
  }

  void setProfile(const std::string& device, const std::string& file) {
    const std::string profile =
        PrivateColord::fields(colord_.colormgr({"find-profile-by-filename", file}), "Profile ID").at(0);
    colord_.colormgr({"device-add-profile", device, profile});
  }

  std::vector<std::string> names_{"A", "B", "C"};
  std::vector<std::string> reads_;
  PrivateColord colord_;
  std::vector<Display> displays_{makeDisplay(1, "A", {}), makeDisplay(2, "B", {}), makeDisplay(3, "C", {})};
  ColordDevices devices_ = devicesFor(displays_);
};

TEST_F(ColordMessages, StartAsksForEachDeviceAndProfileOnce) {
  ColordCalls calls;
  EXPECT_EQ(walk(devices_).size(), 3U);
  EXPECT_THAT(calls.take(),
              ElementsAre("GetDevicesByKind ", reads_[0], reads_[1], reads_[2], StartsWith("Get /profiles/")));
}

TEST_F(ColordMessages, PreparationAsksForNothing) {
  ColordCalls calls;
  platform::desktop::prepareColord();
  EXPECT_EQ(walk(devices_).size(), 3U);
  EXPECT_THAT(calls.take(),
              ElementsAre("GetDevicesByKind ", reads_[0], reads_[1], reads_[2], StartsWith("Get /profiles/")));
}

TEST_F(ColordMessages, WalkWithoutChangesMakesOneCall) {
  walk(devices_);
  ColordCalls calls;
  EXPECT_EQ(walk(devices_).size(), 3U);
  EXPECT_THAT(calls.take(), ElementsAre("Get "));
}

TEST_F(ColordMessages, DevicesOfOtherDisplaysAreNotRead) {
  registerDevice("absent-1", "absent-1");
  registerDevice("absent-2", "absent-2");
  ColordCalls calls;
  EXPECT_EQ(walk(devices_).size(), 3U);
  EXPECT_THAT(devicesRead(calls.take()), ElementsAreArray(reads_));
}

TEST_F(ColordMessages, EveryDeviceIsReadForADisplayWithoutADeviceOfItsName) {
  registerDevice("any", "VGA-1");
  setProfile("any", kApple);
  displays_.push_back(makeDisplay(4, "VGA-1", {}));
  EXPECT_EQ(currentFile(devicesFor(displays_), displays_.back()), kApple);
}

TEST_F(ColordMessages, ChangeOfOneDeviceReadsThatDeviceAlone) {
  walk(devices_);
  setProfile("B", kApple);
  ColordCalls calls;
  EXPECT_EQ(currentFile(devices_, displays_[1]), kApple);
  const auto read = devicesRead(calls.take());
  EXPECT_THAT(read, Not(IsEmpty()));
  EXPECT_THAT(read, Each(reads_[1]));
}

TEST_F(ColordMessages, AssignmentReadsItsDeviceAlone) {
  walk(devices_);
  ASSERT_TRUE(devices_.assign(*displays_[2].uuid, kApple));
  ColordCalls calls;
  ASSERT_TRUE(devices_.assign(*displays_[2].uuid, kAdobe));
  EXPECT_EQ(currentFile(devices_, displays_[2]), kAdobe);
  EXPECT_THAT(devicesRead(calls.take()), Each(reads_[2]));
}

TEST_F(ColordMessages, NewDeviceIsReadAlone) {
  walk(devices_);
  const std::string newer = registerDevice("newer", "A");
  setProfile("newer", kApple);
  ColordCalls calls;
  EXPECT_EQ(currentFile(devices_, displays_[0]), kApple);
  const auto read = devicesRead(calls.take());
  EXPECT_THAT(read, Not(IsEmpty()));
  EXPECT_THAT(read, Each(newer));
}

/// A service with colord's name and a device for each of three displays. It replies about devices, and about profiles,
/// only when it has been asked for all three.
class PatientColord {
 public:
  static constexpr int kDevices = 3;

  PatientColord() {
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    connection_ = g_dbus_connection_new_for_address_sync(std::getenv("DBUS_SYSTEM_BUS_ADDRESS"), flags, nullptr,
                                                         nullptr, nullptr);
    g_dbus_connection_add_filter(connection_, receive, this, nullptr);
    GVariant* const named = g_dbus_connection_call_sync(connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                        "org.freedesktop.DBus", "RequestName",
                                                        g_variant_new("(su)", "org.freedesktop.ColorManager", 0U),
                                                        nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    EXPECT_NE(named, nullptr);
    g_variant_unref(named);
  }
  PatientColord(const PatientColord&) = delete;
  PatientColord& operator=(const PatientColord&) = delete;
  ~PatientColord() {
    g_dbus_connection_close_sync(connection_, nullptr, nullptr);
    g_object_unref(connection_);
  }

 private:
  static std::string path(const char* kind, int number) {
    return std::string("/org/freedesktop/ColorManager/") + kind + "/" + std::to_string(number);
  }

  static GVariant* list() {
    GVariantBuilder paths;
    g_variant_builder_init(&paths, G_VARIANT_TYPE("ao"));
    for (int i = 0; i < kDevices; ++i) {
      g_variant_builder_add(&paths, "o", path("devices", i).c_str());
    }
    return g_variant_new("(ao)", &paths);
  }

  static GVariant* device(const std::string& number) {
    return g_variant_new_parsed("({'Metadata': <{'XRANDR_name': %s}>, 'Profiles': <[%o]>},)", ("DP-" + number).c_str(),
                                path("profiles", std::stoi(number)).c_str());
  }

  /// On the connection's own thread.
  static GDBusMessage* receive(GDBusConnection*, GDBusMessage* message, gboolean incoming, gpointer self) {
    if (incoming == FALSE || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
      return message;
    }
    static_cast<PatientColord*>(self)->take(message);
    return nullptr;
  }

  void take(GDBusMessage* call) {
    const std::string member = g_dbus_message_get_member(call);
    if (member == "GetDevicesByKind") {
      reply(call, list());
      return;
    }
    held_.push_back(call);
    if (held_.size() < kDevices) {
      return;
    }
    for (GDBusMessage* const held : std::exchange(held_, {})) {
      const std::string path = g_dbus_message_get_path(held);
      const std::string number = path.substr(path.rfind('/') + 1);
      reply(held, member == "GetAll" ? device(number)
                                     : g_variant_new("(v)", g_variant_new_string(("/" + number + ".icc").c_str())));
    }
  }

  void reply(GDBusMessage* call, GVariant* body) {
    GDBusMessage* const message = g_dbus_message_new_method_reply(call);
    g_dbus_message_set_body(message, body);
    g_dbus_connection_send_message(connection_, message, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    g_object_unref(message);
    g_object_unref(call);
  }

  GDBusConnection* connection_;
  std::vector<GDBusMessage*> held_;
};

TEST(ColordRoundTrips, RepliesAreAwaitedTogether) {
  PrivateColord colord;
  colord.stop();
  const PatientColord patient;
  const auto entries =
      walk(devicesFor({makeDisplay(1, "DP-0", {}), makeDisplay(2, "DP-1", {}), makeDisplay(3, "DP-2", {})}));
  ASSERT_EQ(entries.size(), 3U);
  EXPECT_EQ(entries[0].profile_path, "/0.icc");
  EXPECT_EQ(entries[2].profile_path, "/2.icc");
}

}  // namespace
}  // namespace colord_test
