#include "desktop/icc/icc_cache.h"

namespace platform::desktop {

bool laterChangesShow(const FileIdentity& identity, FileTime now) {
  // Some file systems count in whole seconds, or in pairs of them.
  constexpr std::int64_t kCoarsestTick = 2;
  if (identity.changed.second == 0) {
    return identity.changed.first + kCoarsestTick < now.first;
  }
  return identity.changed < now;
}

std::uint64_t IccCache::beginWalk() {
  const std::lock_guard lock(mutex_);
  return ++walks_;
}

void IccCache::endWalk(std::uint64_t walk) {
  const std::lock_guard lock(mutex_);
  std::erase_if(slots_, [&](const auto& slot) {
    const bool forgotten = slot.second.last_walk < walk;
    files_ -= forgotten ? slot.second.folder->files.size() : 0;
    return forgotten;
  });
}

std::shared_ptr<const KnownFolder> IccCache::find(std::uint64_t walk, const std::string& path) {
  const std::lock_guard lock(mutex_);
  const auto found = slots_.find(path);
  if (found == slots_.end()) {
    return nullptr;
  }
  found->second.last_walk = walk;
  return found->second.folder;
}

void IccCache::store(std::uint64_t walk, const std::string& path, std::shared_ptr<const KnownFolder> folder) {
  const std::lock_guard lock(mutex_);
  const auto found = slots_.find(path);
  const std::size_t replaced = found == slots_.end() ? 0 : found->second.folder->files.size();
  const std::size_t files = files_ - replaced + folder->files.size();
  if (files <= kMaxFiles) {
    files_ = files;
    slots_.insert_or_assign(path, Slot{std::move(folder), walk});
  } else if (found != slots_.end()) {
    files_ -= replaced;
    slots_.erase(found);
  }
}

}  // namespace platform::desktop
