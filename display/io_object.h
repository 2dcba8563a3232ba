// IoObject: an owned IOKit handle, released when it goes out of scope. One thread at a time.
#pragma once

#include <IOKit/IOKitLib.h>

namespace DisplayServices::internal {

/// Owns one handle, or none (0).
class IoObject {
 public:
  IoObject(const IoObject&) = delete;
  IoObject& operator=(const IoObject&) = delete;
  ~IoObject() {
    if (handle_ != 0) {
      IOObjectRelease(handle_);
    }
  }

  /// Takes over a handle that the caller owns; 0 owns nothing.
  static IoObject adopt(io_object_t handle) { return IoObject(handle); }

  /// Borrowed; valid while this lives.
  io_object_t get() const { return handle_; }
  explicit operator bool() const { return handle_ != 0; }

 private:
  explicit IoObject(io_object_t handle) : handle_(handle) {}
  io_object_t handle_;
};

}  // namespace DisplayServices::internal
