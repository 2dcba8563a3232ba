// IOKit's handles of services and iterators, with reference counts. Any thread.
#pragma once

#include <IOKit/IOKitLib.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "desktop/model/desktop.h"

namespace platform {

/// A handle is never 0, and a released number is not reused soon. A service has one handle as long as it is held. An
/// iterator lists the services of the moment in which it was made.
class IoHandles {
 public:
  /// Over the first `count` services. The caller owns the one reference.
  io_iterator_t makeIterator(std::shared_ptr<const desktop::Arrangement> arrangement, std::size_t count);
  /// The next service, with a reference for the caller; 0 at the end and for anything but an iterator.
  io_service_t next(io_iterator_t iterator);
  /// False for an unknown handle.
  bool release(io_object_t handle);
  /// Null for anything but a service.
  std::shared_ptr<const desktop::DisplayService> service(io_object_t handle);

 private:
  struct Entry {
    std::shared_ptr<const desktop::Arrangement> arrangement;
    std::size_t index = 0;  ///< of the service; in an iterator, of the next one
    std::size_t end = 0;    ///< of an iterator
    bool is_iterator = false;
    std::uint64_t references = 1;
  };
  using ServiceKey = std::pair<const desktop::Arrangement*, std::size_t>;

  io_object_t insert(Entry entry);

  std::mutex mutex_;
  std::map<io_object_t, Entry> entries_;
  std::map<ServiceKey, io_object_t> services_;  ///< the services in entries_, which keep the keys' pointers alive
  io_object_t last_ = 0x1000;
};

}  // namespace platform
