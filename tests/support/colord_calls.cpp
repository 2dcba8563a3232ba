#include "support/colord_calls.h"

#include <gio/gio.h>

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace support {
namespace {

constexpr std::chrono::seconds kLimit{30};
constexpr std::string_view kRoot = "/org/freedesktop/ColorManager";
/// An object whose path begins with this one belongs to colord, under any bus name.
constexpr const char* kRule = "type='method_call',path_namespace='/org/freedesktop/ColorManager'";

std::shared_ptr<GDBusConnection> connectToBus() {
  const char* const address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
  const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                       G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  GDBusConnection* const connection =
      g_dbus_connection_new_for_address_sync(address == nullptr ? "" : address, flags, nullptr, nullptr, nullptr);
  if (connection == nullptr) {
    throw std::runtime_error("no bus to monitor");
  }
  return {connection, g_object_unref};
}

bool becomeMonitor(GDBusConnection* connection) {
  const char* const rules[] = {kRule, nullptr};
  GVariant* const result = g_dbus_connection_call_sync(
      connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Monitoring", "BecomeMonitor",
      g_variant_new("(^asu)", rules, 0U), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
  if (result != nullptr) {
    g_variant_unref(result);
  }
  return result != nullptr;
}

bool isAnotherOnesCall(GDBusMessage* message, gboolean incoming) {
  return incoming != FALSE && g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL;
}

}  // namespace

ColordCalls::ColordCalls() : seen_(g_async_queue_new_full(g_free), g_async_queue_unref), connection_(connectToBus()) {
  // The filter drops messages without a reply: the bus disconnects a monitor that sends anything.
  const auto filter = +[](GDBusConnection*, GDBusMessage* message, gboolean incoming, gpointer seen) -> GDBusMessage* {
    if (!isAnotherOnesCall(message, incoming)) {
      return message;
    }
    g_async_queue_push(
        static_cast<GAsyncQueue*>(seen),
        g_strconcat(g_dbus_message_get_member(message), " ", g_dbus_message_get_path(message) + kRoot.size(), nullptr));
    g_object_unref(message);
    return nullptr;
  };
  const auto forget = +[](gpointer seen) { g_async_queue_unref(static_cast<GAsyncQueue*>(seen)); };
  g_dbus_connection_add_filter(connection_.get(), filter, g_async_queue_ref(seen_.get()), forget);
  if (!becomeMonitor(connection_.get())) {
    throw std::runtime_error("the bus does not let itself be monitored");
  }
}

ColordCalls::~ColordCalls() { g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr); }

std::string ColordCalls::next() {
  const std::unique_ptr<char, decltype(&g_free)> call(
      static_cast<char*>(g_async_queue_timeout_pop(seen_.get(), std::chrono::microseconds(kLimit).count())), g_free);
  if (!call) {
    throw std::runtime_error("nobody has asked colord for anything in time");
  }
  return call.get();
}

void ColordCalls::waitForOne() { next(); }

std::vector<std::string> ColordCalls::take() {
  // The bus reports calls in their order, so those before this one have been reported when it is.
  const auto connection = connectToBus();
  const std::unique_ptr<GVariant, decltype(&g_variant_unref)> reply(
      g_dbus_connection_call_sync(connection.get(), "org.freedesktop.ColorManager", kRoot.data(),
                                  "org.freedesktop.DBus.Peer", "Ping", nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1,
                                  nullptr, nullptr),
      g_variant_unref);
  if (!reply) {
    throw std::runtime_error("colord does not reply");
  }
  std::vector<std::string> calls;
  for (std::string call = next(); call != "Ping "; call = next()) {
    calls.push_back(std::move(call));
  }
  return calls;
}

}  // namespace support
