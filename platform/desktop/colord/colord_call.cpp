#include "desktop/colord/colord_call.h"

namespace platform::desktop {
namespace {

constexpr const char* kPropertiesInterface = "org.freedesktop.DBus.Properties";

/// The only value of a reply, taken out of its variant if it is in one.
Variant valueOf(const Variant& reply) {
  if (!reply || g_variant_n_children(reply.get()) != 1) {
    return nullptr;
  }
  Variant value(g_variant_get_child_value(reply.get(), 0));
  return g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT) != FALSE
             ? Variant(g_variant_get_variant(value.get()))
             : std::move(value);
}

}  // namespace

ColordCall::ColordCall(const Operation& operation, GDBusConnection* connection, const std::string& path,
                       const char* interface, const char* method, GVariant* arguments, GUnixFDList* files)
    : connection_(retained(connection)) {
  pending_ = operation.start([&](auto... rest) {
    g_dbus_connection_call_with_unix_fd_list(connection, kColordName, path.c_str(), interface, method, arguments,
                                             nullptr, G_DBUS_CALL_FLAGS_NONE, G_MAXINT /* the operation limits it */,
                                             files, rest...);
  });
}

ColordCall ColordCall::get(const Operation& operation, GDBusConnection* connection, const std::string& path,
                           const char* interface, const char* property) {
  return {operation, connection, path, kPropertiesInterface, "Get", g_variant_new("(ss)", interface, property)};
}

ColordCall ColordCall::getAll(const Operation& operation, GDBusConnection* connection, const std::string& path,
                              const char* interface) {
  return {operation, connection, path, kPropertiesInterface, "GetAll", g_variant_new("(s)", interface)};
}

Variant ColordCall::reply(const Operation& operation) const {
  if (operation.wait(pending_) == nullptr) {
    return nullptr;
  }
  ErrorSlot error;
  return Variant(g_dbus_connection_call_with_unix_fd_list_finish(connection_.get(), nullptr, pending_->result.get(),
                                                                 error.place()));
}

std::optional<std::string> ColordCall::text(const Operation& operation) const {
  const Variant value = valueOf(reply(operation));
  const bool is_text = value && (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING) != FALSE ||
                                 g_variant_is_of_type(value.get(), G_VARIANT_TYPE_OBJECT_PATH) != FALSE);
  return is_text ? std::optional<std::string>(g_variant_get_string(value.get(), nullptr)) : std::nullopt;
}

std::optional<std::vector<std::string>> ColordCall::paths(const Operation& operation) const {
  const Variant value = valueOf(reply(operation));
  return value && g_variant_is_of_type(value.get(), G_VARIANT_TYPE_OBJECT_PATH_ARRAY) != FALSE
             ? std::optional(textsOf(value.get()))
             : std::nullopt;
}

std::vector<std::string> textsOf(GVariant* list) {
  std::vector<std::string> texts;
  for (gsize i = 0; i < g_variant_n_children(list); ++i) {
    const Variant text(g_variant_get_child_value(list, i));
    texts.emplace_back(g_variant_get_string(text.get(), nullptr));
  }
  return texts;
}

}  // namespace platform::desktop
