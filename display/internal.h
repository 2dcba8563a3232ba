// What the sources of DisplayServices share, and the functions for the facade that are not exported.
//
// Host's thread, unless a function says otherwise.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <IOKit/IOKitLib.h>

#include <chrono>
#include <cstdint>
#include <future>
#include <span>

namespace DisplayServices::internal {

// --- for the facade

/// The edges of a rectangle, in points; the origin is the upper left corner of the main display.
struct Edges {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
};

/// The display's bounds in points; the empty rectangle for an unknown display.
CGRect boundsOf(CGDirectDisplayID displayID);

/// The same as edges, each truncated toward zero after right and bottom were summed. An edge that is not a 32-bit
/// number is the least one.
Edges edgesOf(CGDirectDisplayID displayID);

/// Position among the active displays, from 0, or kQVIDisplayNotFound.
std::uint32_t indexOf(CGDirectDisplayID displayID);

/// The first display under a window (points, y down); 0 when there is none.
CGDirectDisplayID displayUnderWindow(double left, double top, double width, double height);

/// Whether the display's current profile describes a wide-gamut RGB space; false without a profile.
bool isWideGamut(CGDirectDisplayID displayID);

// --- lists of displays

/// A zeroed buffer, which is never freed: 4 bytes a display are lost per call. Null without memory. Any thread.
CGDirectDisplayID* leakedDisplayList(std::uint32_t capacity);

/// The active displays in CoreGraphics' order; none when CoreGraphics cannot list them. Any thread.
std::span<const CGDirectDisplayID> activeDisplays();

// --- waiting for ColorSync

using WalkWait = std::future_status (*)(const std::future<bool>& result, std::chrono::seconds limit);

/// How a query waits for its walk: in real time, unless a test sets another wait before any query.
extern WalkWait walk_wait;

// --- names and references

/// The name of a display that has none. Borrowed; one constant object. Any thread.
inline CFStringRef unknownName() { return CFSTR("UNKNOWN"); }

/// Keeps the caller's reference for the life of the process and returns the object, borrowed. Each use says why. Any
/// thread.
template <typename Ref>
__attribute__((annotate("rc_ownership_trusted_implementation"))) Ref leakOnPurpose(__attribute__((cf_consumed))
                                                                                   Ref ref) {
  return ref;
}

/// An owned IOKit handle, or none (0), released when it goes out of scope. One thread at a time.
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
