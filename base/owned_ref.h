// OwnedRef: an owned reference to a CoreFoundation object, released when it goes out of scope.
//
// Any thread may use one; one OwnedRef belongs to one thread at a time.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

/// Owns one reference, or none. `Ref` is a CoreFoundation reference type such as CFStringRef.
template <typename Ref>
class OwnedRef {
 public:
  OwnedRef() = default;
  OwnedRef(OwnedRef&& other) noexcept : ref_(std::exchange(other.ref_, nullptr)) {}
  OwnedRef& operator=(OwnedRef&& other) noexcept {
    std::swap(ref_, other.ref_);
    return *this;
  }
  OwnedRef(const OwnedRef&) = delete;
  OwnedRef& operator=(const OwnedRef&) = delete;
  ~OwnedRef() {
    if (ref_ != nullptr) {
      CFRelease(ref_);
    }
  }

  /// Takes over the reference that a function named Create or Copy returned; null owns nothing.
  static OwnedRef adopt(Ref ref) { return OwnedRef(ref); }

  /// Borrowed; valid while this lives.
  Ref get() const { return ref_; }
  explicit operator bool() const { return ref_ != nullptr; }
  /// Hands the reference to the caller, who releases it or keeps it on purpose.
  [[nodiscard]] Ref release() { return std::exchange(ref_, nullptr); }

 private:
  explicit OwnedRef(Ref ref) : ref_(ref) {}
  Ref ref_ = nullptr;
};
