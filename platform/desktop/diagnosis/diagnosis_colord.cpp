#include <atomic>
#include <memory>

#include "desktop/colord/colord_client.h"
#include "desktop/colord/colord_matching.h"
#include "desktop/colord/glib_thread.h"
#include "desktop/diagnosis/diagnosis.h"

namespace platform::desktop {
namespace {

struct Result {
  ColordState state = ColordState::kNoBus;
  ColordClient::Devices devices;
};

/// Whether the bus lists colord's name; nothing when the bus does not reply.
std::optional<bool> listsColord(const Operation& operation, GDBusConnection* bus, const char* list) {
  const auto called = operation.start([&](GCancellable* cancellable, GAsyncReadyCallback ready, gpointer data) {
    g_dbus_connection_call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", list, nullptr,
                           G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NONE, -1, cancellable, ready, data);
  });
  ErrorSlot error;
  if (operation.wait(called) == nullptr) {
    return std::nullopt;
  }
  const Variant reply(g_dbus_connection_call_finish(bus, called->result.get(), error.place()));
  if (!reply) {
    return std::nullopt;
  }
  const Variant names(g_variant_get_child_value(reply.get(), 0));
  const std::unique_ptr<const gchar*, decltype(&g_free)> texts(g_variant_get_strv(names.get(), nullptr), g_free);
  return g_strv_contains(texts.get(), kColordName) != FALSE;
}

Result ask(const Operation& operation, ColordClient& client, std::atomic<bool>& bus_replies) {
  Result result;
  const auto bus = systemBus(operation);
  const std::optional<bool> runs = bus ? listsColord(operation, bus.get(), "ListNames") : std::nullopt;
  const std::optional<bool> starts = runs ? listsColord(operation, bus.get(), "ListActivatableNames") : std::nullopt;
  if (!starts) {
    return result;
  }
  bus_replies = true;
  if (!*runs && !*starts) {
    result.state = ColordState::kNotInstalled;
    return result;
  }
  result.devices = client.allDevices(operation);
  result.state = result.devices ? ColordState::kReady : ColordState::kSilent;
  return result;
}

/// A client beside that of the desktop.
struct Session {
  ColordClient client;
  GlibThread& thread = *new GlibThread([](GMainContext*) {});
};

}  // namespace

ColordReport askColord(const std::vector<Display>& displays) {
  // Never freed, because its thread runs until the process ends.
  static auto* const session = new Session;
  // Tells a silent colord from a silent bus when time runs out.
  const auto bus_replies = std::make_shared<std::atomic<bool>>(false);
  const auto result = session->thread.call<Result>(kColordLimit, [bus_replies](const Operation& operation) {
    return ask(operation, session->client, *bus_replies);
  });
  if (!result) {
    return {.state = *bus_replies ? ColordState::kSilent : ColordState::kNoBus};
  }
  ColordReport report{.state = result->state};
  if (result->devices) {
    report.devices = *result->devices;
    report.matches = matchDevices(displays, report.devices);
  }
  return report;
}

}  // namespace platform::desktop
