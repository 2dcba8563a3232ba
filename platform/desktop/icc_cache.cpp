#include "desktop/icc_cache.h"

namespace platform::desktop {
namespace {

/// Whether any later change of the file shows in its times. A file system's clock ticks: two changes within one tick
/// look alike, so a file that was last changed in the tick in which it was read may change again unseen. Some file
/// systems count in whole seconds or pairs of them.
bool laterChangesShow(const FileIdentity& identity, FileTime now) {
  constexpr std::int64_t kCoarsestTick = 2;
  if (identity.changed.nanoseconds == 0) {
    return identity.changed.seconds + kCoarsestTick < now.seconds;
  }
  return identity.changed < now;
}

}  // namespace

std::uint64_t IccCache::beginWalk() {
  const std::lock_guard lock(mutex_);
  return ++walks_;
}

void IccCache::endWalk(std::uint64_t walk) {
  const std::lock_guard lock(mutex_);
  std::erase_if(slots_, [&](const auto& slot) { return slot.second.last_walk < walk; });
}

bool IccCache::knows(const std::string& path) {
  const std::lock_guard lock(mutex_);
  return slots_.contains(path);
}

std::optional<IccCache::Content> IccCache::find(std::uint64_t walk, const std::string& path,
                                                const FileIdentity& identity) {
  const std::lock_guard lock(mutex_);
  const auto found = slots_.find(path);
  if (found == slots_.end() || found->second.identity != identity) {
    return std::nullopt;
  }
  found->second.last_walk = walk;
  return found->second.content;
}

void IccCache::store(std::uint64_t walk, const std::string& path, const FileIdentity& identity, FileTime now,
                     const std::shared_ptr<InstalledProfile>& content) {
  const bool small = !content || content->description.value_or("").size() <= kMaxDescription;
  const bool keep = small && laterChangesShow(identity, now);
  const std::lock_guard lock(mutex_);
  if (!keep) {
    slots_.erase(path);
    return;
  }
  if (slots_.size() >= kMaxFiles && !slots_.contains(path)) {
    return;
  }
  if (content) {
    content->kept = std::make_shared<Kept>();
  }
  slots_.insert_or_assign(path, Slot{identity, content, walk});
}

}  // namespace platform::desktop
