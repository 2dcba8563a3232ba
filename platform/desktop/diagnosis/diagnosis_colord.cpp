#include <gio/gio.h>

#include <atomic>
#include <memory>

#include "desktop/colord/colord_client.h"
#include "desktop/colord/colord_matching.h"
#include "desktop/colord/glib_thread.h"
#include "desktop/diagnosis/diagnosis.h"

namespace platform::desktop {
namespace {

constexpr const char* kColordName = "org.freedesktop.ColorManager";

struct Answer {
  ColordState state = ColordState::kNoBus;
  ColordClient::Devices devices;
};

struct VariantUnref {
  void operator()(GVariant* variant) const { g_variant_unref(variant); }
};

ObjectRef<GDBusConnection> systemBus(const Operation& operation) {
  const auto got = operation.start([](auto... rest) { g_bus_get(G_BUS_TYPE_SYSTEM, rest...); });
  ErrorSlot error;
  if (operation.wait(got) == nullptr) {
    return nullptr;
  }
  ObjectRef<GDBusConnection> bus(g_bus_get_finish(got->result.get(), error.place()));
  if (bus) {
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
  }
  return bus;
}

/// Whether colord is among the names that the bus lists; nothing when the bus does not answer.
std::optional<bool> listsColord(const Operation& operation, GDBusConnection* bus, const char* list) {
  const auto called = operation.start([&](GCancellable* cancellable, GAsyncReadyCallback ready, gpointer data) {
    g_dbus_connection_call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", list, nullptr,
                           G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NONE, -1, cancellable, ready, data);
  });
  ErrorSlot error;
  if (operation.wait(called) == nullptr) {
    return std::nullopt;
  }
  const std::unique_ptr<GVariant, VariantUnref> reply(
      g_dbus_connection_call_finish(bus, called->result.get(), error.place()));
  if (!reply) {
    return std::nullopt;
  }
  const std::unique_ptr<GVariant, VariantUnref> names(g_variant_get_child_value(reply.get(), 0));
  const std::unique_ptr<const gchar*, decltype(&g_free)> texts(g_variant_get_strv(names.get(), nullptr), g_free);
  return g_strv_contains(texts.get(), kColordName) != FALSE;
}

Answer ask(const Operation& operation, ColordClient& client, std::atomic<bool>& bus_answers) {
  Answer answer;
  const auto bus = systemBus(operation);
  const std::optional<bool> runs = bus ? listsColord(operation, bus.get(), "ListNames") : std::nullopt;
  const std::optional<bool> starts = runs ? listsColord(operation, bus.get(), "ListActivatableNames") : std::nullopt;
  if (!starts) {
    return answer;
  }
  bus_answers = true;
  if (!*runs && !*starts) {
    answer.state = ColordState::kNotInstalled;
    return answer;
  }
  answer.devices = client.devices(operation);
  answer.state = answer.devices ? ColordState::kAnswers : ColordState::kSilent;
  return answer;
}

/// A conversation with colord beside that of the desktop.
struct Session {
  ColordClient client;
  GlibThread& thread = *new GlibThread([](GMainContext*) {});
};

}  // namespace

ColordReport askColord(const std::vector<Display>& displays) {
  // Kept for the life of the process, as its thread is.
  static auto* const session = new Session;
  // Where time runs out although the bus has answered, it is colord that is silent.
  const auto bus_answers = std::make_shared<std::atomic<bool>>(false);
  const auto answer = session->thread.call<Answer>(kColordLimit, [bus_answers](const Operation& operation) {
    return ask(operation, session->client, *bus_answers);
  });
  if (!answer) {
    return {.state = *bus_answers ? ColordState::kSilent : ColordState::kNoBus};
  }
  ColordReport report{.state = answer->state};
  if (answer->devices) {
    report.devices = *answer->devices;
    report.matches = matchDevices(displays, report.devices);
  }
  return report;
}

}  // namespace platform::desktop
