#include "support/private_colord.h"

#include <gio/gio.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace support {
namespace {

namespace fs = std::filesystem;

constexpr const char* kBusProgram = "/usr/bin/dbus-daemon";
constexpr const char* kColordProgram = "/usr/libexec/colord";
constexpr const char* kColordName = "org.freedesktop.ColorManager";
constexpr const char* kColordPath = "/org/freedesktop/ColorManager";
constexpr std::chrono::seconds kStartLimit{30};
constexpr std::chrono::milliseconds kPollInterval{10};
constexpr int kCallTimeoutMs = 30000;

struct VariantUnref {
  void operator()(GVariant* value) const { g_variant_unref(value); }
};
using Variant = std::unique_ptr<GVariant, VariantUnref>;

void waitFor(const std::string& what, const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + kStartLimit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("no " + what + " in time");
    }
    std::this_thread::sleep_for(kPollInterval);
  }
}

/// Waits until a server that was just started is ready. Throws as soon as its process ends, with what it printed.
void waitForServer(const std::string& name, ChildProcess& server, const std::function<bool()>& ready) {
  waitFor(name, [&] {
    if (server.hasEnded()) {
      throw std::runtime_error(name + " does not start: " + server.output());
    }
    return ready();
  });
}

std::string takeMessage(GError* error) {
  const std::string message = error == nullptr ? "no message" : error->message;
  g_clear_error(&error);
  return message;
}

void writeBusConfiguration(const fs::path& file, const std::string& address) {
  std::ofstream(file) << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN\"\n"
                         " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
                         "<busconfig><listen>"
                      << address
                      << "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow user=\"*\"/>"
                         "<allow own=\"*\"/><allow send_type=\"method_call\"/><allow send_destination=\"*\"/>"
                         "<allow eavesdrop=\"false\"/></policy></busconfig>\n";
}

}  // namespace

PrivateColord::PrivateColord() {
  fs::create_directory(directory() / "state");
  fs::create_directory(directory() / "no-plugins");
  address_ = "unix:path=" + (directory() / "bus").string();
  setenv("DBUS_SYSTEM_BUS_ADDRESS", address_.c_str(), 1);
  setenv("XDG_STATE_HOME", (directory() / "user-state").c_str(), 1);
  startBus();
  start();
}

PrivateColord::~PrivateColord() {
  connection_.reset();
  if (colord_) {
    colord_->kill();
  }
  if (bus_) {
    bus_->kill();
  }
}

fs::path PrivateColord::copyOfProfile(const std::string& colord_profile, const std::string& name) const {
  const fs::path copy = directory() / name;
  fs::copy_file(fs::path("/usr/share/color/icc/colord") / colord_profile, copy);
  return copy;
}

void PrivateColord::startBus() {
  fs::remove(directory() / "bus");
  writeBusConfiguration(directory() / "bus.conf", address_);
  bus_ = std::make_unique<ChildProcess>(
      std::vector<std::string>{kBusProgram, "--nofork", "--config-file=" + (directory() / "bus.conf").string()},
      Environment{}, directory() / "bus.log");
  waitForServer("dbus-daemon", *bus_, [&] {
    connect();
    return connection_ != nullptr;
  });
}

void PrivateColord::stopBus() { bus_->kill(); }

void PrivateColord::connect() {
  const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                       G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  connection_.reset(g_dbus_connection_new_for_address_sync(address_.c_str(), flags, nullptr, nullptr, nullptr),
                    [](GDBusConnection* connection) {
                      if (connection != nullptr) {
                        g_object_unref(connection);
                      }
                    });
}

bool PrivateColord::colordHasName() const {
  const Variant result(g_dbus_connection_call_sync(connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                   "org.freedesktop.DBus", "NameHasOwner",
                                                   g_variant_new("(s)", kColordName), G_VARIANT_TYPE("(b)"),
                                                   G_DBUS_CALL_FLAGS_NONE, kCallTimeoutMs, nullptr, nullptr));
  gboolean has = FALSE;
  if (result) {
    g_variant_get(result.get(), "(b)", &has);
  }
  return has != FALSE;
}

void PrivateColord::start() {
  const Environment redirected{"LD_PRELOAD=" OSTREVIN_COLORD_REDIRECT,
                               "OSTREVIN_COLORD_DIRECTORY=" + directory().string()};
  colord_ =
      std::make_unique<ChildProcess>(std::vector<std::string>{kColordProgram}, redirected, directory() / "colord.log");
  waitForServer("colord", *colord_, [&] { return colordHasName(); });
  if (!fs::exists(directory() / "state" / "storage.db")) {
    throw std::runtime_error("colord does not keep its state where " OSTREVIN_COLORD_REDIRECT " redirects it to");
  }
  colormgr({"get-devices"});
}

void PrivateColord::stop() {
  colord_->kill();
  waitFor("end of colord", [&] { return !colordHasName(); });
}

void PrivateColord::restart() {
  stop();
  start();
}

std::string PrivateColord::registerDevice(const std::string& id, const std::map<std::string, std::string>& metadata,
                                          const std::string& kind) {
  GVariantBuilder properties;
  g_variant_builder_init(&properties, G_VARIANT_TYPE("a{ss}"));
  g_variant_builder_add(&properties, "{ss}", "Kind", kind.c_str());
  g_variant_builder_add(&properties, "{ss}", "Mode", "physical");
  g_variant_builder_add(&properties, "{ss}", "Colorspace", "rgb");
  for (const auto& [key, value] : metadata) {
    g_variant_builder_add(&properties, "{ss}", key.c_str(), value.c_str());
  }
  GError* error = nullptr;
  const Variant result(
      g_dbus_connection_call_sync(connection_.get(), kColordName, kColordPath, kColordName, "CreateDevice",
                                  g_variant_new("(ssa{ss})", id.c_str(), "normal", &properties), G_VARIANT_TYPE("(o)"),
                                  G_DBUS_CALL_FLAGS_NONE, kCallTimeoutMs, nullptr, &error));
  if (!result) {
    throw std::runtime_error("CreateDevice: " + takeMessage(error));
  }
  const char* path = nullptr;
  g_variant_get(result.get(), "(&o)", &path);
  return path;
}

void PrivateColord::deleteDevice(const std::string& object_path) {
  GError* error = nullptr;
  const Variant result(g_dbus_connection_call_sync(connection_.get(), kColordName, kColordPath, kColordName,
                                                   "DeleteDevice", g_variant_new("(o)", object_path.c_str()), nullptr,
                                                   G_DBUS_CALL_FLAGS_NONE, kCallTimeoutMs, nullptr, &error));
  if (!result) {
    throw std::runtime_error("DeleteDevice: " + takeMessage(error));
  }
}

std::string PrivateColord::colormgr(const std::vector<std::string>& arguments) const {
  std::vector<std::string> command{"colormgr"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return runSuccessfully(command, {"LC_ALL=C.UTF-8"});
}

std::string PrivateColord::defaultProfileFile(const std::string& device_id) const {
  // colormgr fails for a device without profiles.
  const std::string device = colormgr({"find-device", device_id});
  if (fields(device, "Profile 1").empty()) {
    return "";
  }
  const auto files = fields(colormgr({"device-get-default-profile", device_id}), "Filename");
  return files.empty() ? "" : files.front();
}

std::vector<std::string> PrivateColord::fields(const std::string& output, const std::string& name) {
  std::vector<std::string> values;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(name + ":")) {
      const auto begin = line.find_first_not_of(' ', name.size() + 1);
      values.push_back(begin == std::string::npos ? "" : line.substr(begin));
    }
  }
  return values;
}

}  // namespace support
