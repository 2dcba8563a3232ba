// Owners for GLib's references, and for a call's error.
#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>

namespace platform::desktop {

struct ObjectUnref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
/// Owns one reference to a GObject, or none.
template <typename T>
using ObjectRef = std::unique_ptr<T, ObjectUnref>;

/// Takes a reference of its own.
template <typename T>
ObjectRef<T> retained(T* object) {
  return ObjectRef<T>(object == nullptr ? nullptr : static_cast<T*>(g_object_ref(object)));
}

struct VariantUnref {
  void operator()(GVariant* value) const { g_variant_unref(value); }
};
/// Owns one reference to a GVariant, or none.
using Variant = std::unique_ptr<GVariant, VariantUnref>;

/// The text of a GLib string, empty for null.
inline std::string textOf(const char* value) { return value == nullptr ? std::string() : std::string(value); }

/// Owns the error of a call that takes a GError**.
class ErrorSlot {
 public:
  ErrorSlot() = default;
  ErrorSlot(const ErrorSlot&) = delete;
  ErrorSlot& operator=(const ErrorSlot&) = delete;
  ~ErrorSlot() { g_clear_error(&error_); }

  /// For the next call; clears the last error.
  GError** place() {
    g_clear_error(&error_);
    return &error_;
  }
  bool is(GQuark domain, int code) const { return g_error_matches(error_, domain, code) != FALSE; }

 private:
  GError* error_ = nullptr;
};

}  // namespace platform::desktop
