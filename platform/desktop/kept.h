// A place beside an entry of the desktop in which a framework keeps what it has made of the entry.
#pragma once

#include <memory>
#include <mutex>
#include <utility>

namespace platform::desktop {

/// Any thread may call any function, several at once.
class Kept {
 public:
  /// Null until something is put.
  std::shared_ptr<const void> get() const {
    const std::lock_guard lock(mutex_);
    return object_;
  }
  void put(std::shared_ptr<const void> object) {
    const std::lock_guard lock(mutex_);
    object_ = std::move(object);
  }

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<const void> object_;
};

}  // namespace platform::desktop
