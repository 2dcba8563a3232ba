// A place beside an entry of the desktop in which a framework keeps what it has made of the entry.
#pragma once

#include <atomic>

namespace platform::desktop {

/// Holds one object, from the first put on until it is itself destroyed. Any thread may call any function, several at
/// once.
class Kept {
 public:
  using Release = void (*)(const void* object);

  Kept() = default;
  Kept(const Kept&) = delete;
  Kept& operator=(const Kept&) = delete;
  ~Kept() {
    if (const void* const object = get()) {
      release_.load(std::memory_order_relaxed)(object);
    }
  }

  /// Borrowed; null until something has been put.
  const void* get() const { return object_.load(std::memory_order_acquire); }

  /// Takes over the object, which is not null; `release` is the same function in all calls. When there is an object
  /// already, the new one is released at once. Answers the object that is kept, borrowed.
  const void* put(const void* object, Release release) {
    release_.store(release, std::memory_order_relaxed);
    const void* before = nullptr;
    if (!object_.compare_exchange_strong(before, object, std::memory_order_acq_rel)) {
      release(object);
      return before;
    }
    return object;
  }

 private:
  std::atomic<const void*> object_ = nullptr;
  std::atomic<Release> release_ = nullptr;
};

}  // namespace platform::desktop
