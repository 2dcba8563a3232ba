// ColordCall: one message to colord and its reply. Calls are sent when they are made, so that several can be under way
// before the first reply is awaited: a row of calls costs one round trip. colord carries them out in that order.
//
// For the operation's thread. libcolord's own calls are not used: before the first, they read the properties of every
// object and have the bus send them each object's signals.
#pragma once

#include <gio/gunixfdlist.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/colord/glib_operation.h"

namespace platform::desktop {

/// colord's name on the system bus, which is its main interface too.
inline constexpr const char* kColordName = "org.freedesktop.ColorManager";
inline constexpr const char* kColordPath = "/org/freedesktop/ColorManager";
inline constexpr const char* kDeviceInterface = "org.freedesktop.ColorManager.Device";
inline constexpr const char* kProfileInterface = "org.freedesktop.ColorManager.Profile";

class ColordCall {
 public:
  /// `arguments` is a floating reference to a tuple, and is consumed. `files` are passed with the message.
  ColordCall(const Operation& operation, GDBusConnection* connection, const std::string& path, const char* interface,
             const char* method, GVariant* arguments, GUnixFDList* files = nullptr);
  /// Of one property, or of all of an interface.
  static ColordCall get(const Operation& operation, GDBusConnection* connection, const std::string& path,
                        const char* interface, const char* property);
  static ColordCall getAll(const Operation& operation, GDBusConnection* connection, const std::string& path,
                           const char* interface);

  // One of these, once:

  /// Waits for the reply, a tuple. Null for an error, and when the operation expired first.
  Variant reply(const Operation& operation) const;
  /// Waits for a reply that is a text or an object path, of itself or as a property's value; nullopt without one.
  std::optional<std::string> text(const Operation& operation) const;
  /// The same for a list of object paths.
  std::optional<std::vector<std::string>> paths(const Operation& operation) const;

 private:
  ObjectRef<GDBusConnection> connection_;
  std::shared_ptr<PendingCall> pending_;
};

/// The strings of a GVariant of the type "as" or "ao".
std::vector<std::string> textsOf(GVariant* list);

}  // namespace platform::desktop
