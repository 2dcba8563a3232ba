#include "frameworks/IOKit/io_handles.h"

namespace platform {

io_iterator_t IoHandles::makeIterator(std::shared_ptr<const desktop::Arrangement> arrangement, std::size_t count) {
  const std::lock_guard lock(mutex_);
  return insert({.arrangement = std::move(arrangement), .end = count, .is_iterator = true});
}

io_service_t IoHandles::next(io_iterator_t iterator) {
  const std::lock_guard lock(mutex_);
  const auto found = entries_.find(iterator);
  if (found == entries_.end() || !found->second.is_iterator || found->second.index == found->second.end) {
    return 0;
  }
  Entry& entry = found->second;
  const ServiceKey key{entry.arrangement.get(), entry.index++};
  const auto service = services_.find(key);
  if (service != services_.end()) {
    ++entries_.at(service->second).references;
    return service->second;
  }
  const io_service_t handle = insert({.arrangement = entry.arrangement, .index = key.second});
  services_[key] = handle;
  return handle;
}

bool IoHandles::release(io_object_t handle) {
  const std::lock_guard lock(mutex_);
  const auto found = entries_.find(handle);
  if (found == entries_.end()) {
    return false;
  }
  const Entry& entry = found->second;
  if (--found->second.references > 0) {
    return true;
  }
  if (!entry.is_iterator) {
    services_.erase({entry.arrangement.get(), entry.index});
  }
  entries_.erase(found);
  return true;
}

std::shared_ptr<const desktop::DisplayService> IoHandles::service(io_object_t handle) {
  const std::lock_guard lock(mutex_);
  const auto found = entries_.find(handle);
  if (found == entries_.end() || found->second.is_iterator) {
    return nullptr;
  }
  const Entry& entry = found->second;
  return {entry.arrangement, &entry.arrangement->services[entry.index]};
}

io_object_t IoHandles::insert(Entry entry) {
  do {
    ++last_;
  } while (last_ == 0 || entries_.count(last_) != 0);
  entries_.emplace(last_, std::move(entry));
  return last_;
}

}  // namespace platform
