#include "desktop/icc/icc_cache.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using platform::desktop::FileIdentity;
using platform::desktop::FileTime;
using platform::desktop::IccCache;
using platform::desktop::KnownFolder;
using platform::desktop::laterChangesShow;

FileIdentity changedAt(FileTime time) {
  FileIdentity identity;
  identity.changed = time;
  return identity;
}

TEST(LaterChangesShow, OnceTheClockHasTickedSinceTheLastChange) {
  EXPECT_TRUE(laterChangesShow(changedAt({1000, 500}), {1000, 501}));
  EXPECT_TRUE(laterChangesShow(changedAt({1000, 500}), {1001, 0}));
  EXPECT_FALSE(laterChangesShow(changedAt({1000, 500}), {1000, 500}));
}

TEST(LaterChangesShow, NotWhenTheLastChangeLiesInTheFuture) {
  EXPECT_FALSE(laterChangesShow(changedAt({1000, 500}), {999, 999}));
}

TEST(LaterChangesShow, OnAFileSystemThatCountsInPairsOfSecondsOnlyAfterThese) {
  EXPECT_FALSE(laterChangesShow(changedAt({1000, 0}), {1002, 900}));
  EXPECT_TRUE(laterChangesShow(changedAt({1000, 0}), {1003, 0}));
}

std::shared_ptr<const KnownFolder> folderOf(std::size_t files) {
  auto folder = std::make_shared<KnownFolder>();
  folder->files.resize(files);
  return folder;
}

TEST(IccCache, GivesWhatWasStoredLast) {
  IccCache cache;
  const auto walk = cache.beginWalk();
  EXPECT_EQ(cache.find(walk, "/a"), nullptr);
  cache.store(walk, "/a", folderOf(1));
  const auto folder = folderOf(2);
  cache.store(walk, "/a", folder);
  EXPECT_EQ(cache.find(walk, "/a"), folder);
  EXPECT_EQ(cache.find(walk, "/b"), nullptr);
}

TEST(IccCache, ForgetsAtTheEndOfAWalkWhatTheWalkDidNotMeet) {
  IccCache cache;
  const auto first = cache.beginWalk();
  cache.store(first, "/found", folderOf(1));
  cache.store(first, "/gone", folderOf(1));
  const auto second = cache.beginWalk();
  cache.find(second, "/found");
  cache.store(second, "/new", folderOf(1));
  cache.endWalk(second);
  EXPECT_TRUE(cache.find(second, "/found"));
  EXPECT_TRUE(cache.find(second, "/new"));
  EXPECT_FALSE(cache.find(second, "/gone"));
}

TEST(IccCache, KeepsNoMoreFilesThanItsBound) {
  IccCache cache;
  const auto walk = cache.beginWalk();
  cache.store(walk, "/a", folderOf(IccCache::kMaxFiles - 1));
  cache.store(walk, "/b", folderOf(2));
  EXPECT_TRUE(cache.find(walk, "/a"));
  EXPECT_FALSE(cache.find(walk, "/b"));
  cache.store(walk, "/c", folderOf(1));
  EXPECT_TRUE(cache.find(walk, "/c"));
}

TEST(IccCache, ForgetsAFolderThatHasGrownAboveTheBound) {
  IccCache cache;
  const auto walk = cache.beginWalk();
  cache.store(walk, "/a", folderOf(1));
  cache.store(walk, "/a", folderOf(IccCache::kMaxFiles + 1));
  EXPECT_FALSE(cache.find(walk, "/a"));
  cache.store(walk, "/b", folderOf(IccCache::kMaxFiles));
  EXPECT_TRUE(cache.find(walk, "/b"));
}

TEST(IccCache, HasRoomAgainForAsManyFilesAsItHasForgotten) {
  IccCache cache;
  cache.store(cache.beginWalk(), "/a", folderOf(IccCache::kMaxFiles));
  const auto second = cache.beginWalk();
  cache.endWalk(second);
  cache.store(second, "/b", folderOf(IccCache::kMaxFiles));
  EXPECT_TRUE(cache.find(second, "/b"));
}

}  // namespace
