#include "desktop/icc_cache.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using platform::desktop::FileIdentity;
using platform::desktop::FileTime;
using platform::desktop::IccCache;
using platform::desktop::InstalledProfile;

constexpr FileTime kChanged = {1000, 500};
constexpr FileTime kLater = {1000, 501};

FileIdentity identity(std::uint64_t size = 1) {
  FileIdentity made;
  made.size = size;
  made.changed = kChanged;
  return made;
}

std::shared_ptr<InstalledProfile> profile(std::string description) {
  auto made = std::make_shared<InstalledProfile>();
  made->description = std::move(description);
  return made;
}

TEST(IccCache, FindsAFileInTheStateInWhichItWasStored) {
  IccCache cache;
  const auto walk = cache.beginWalk();
  const auto content = profile("a");
  cache.store(walk, "/a", identity(), kLater, content);
  EXPECT_EQ(cache.find(walk, "/a", identity()), content);
  EXPECT_EQ(cache.find(walk, "/a", identity(2)), std::nullopt);
  EXPECT_EQ(cache.find(walk, "/b", identity()), std::nullopt);
}

TEST(IccCache, RemembersAFileThatIsNoProfile) {
  IccCache cache;
  const auto walk = cache.beginWalk();
  cache.store(walk, "/a", identity(), kLater, nullptr);
  EXPECT_EQ(cache.find(walk, "/a", identity()), IccCache::Content());
}

TEST(IccCache, DoesNotTrustAFileThatChangedInTheTickInWhichItWasRead) {
  IccCache cache;
  const auto walk = cache.beginWalk();
  cache.store(walk, "/a", identity(), kChanged, profile("a"));
  EXPECT_EQ(cache.find(walk, "/a", identity()), std::nullopt);
}

TEST(IccCache, DoesNotTrustATimeInTheFuture) {
  IccCache cache;
  const auto walk = cache.beginWalk();
  cache.store(walk, "/a", identity(), {999, 0}, profile("a"));
  EXPECT_EQ(cache.find(walk, "/a", identity()), std::nullopt);
}

TEST(IccCache, AllowsForFileSystemsThatCountInPairsOfSeconds) {
  IccCache cache;
  const auto walk = cache.beginWalk();
  FileIdentity whole = identity();
  whole.changed = {1000, 0};
  cache.store(walk, "/a", whole, {1002, 900}, profile("a"));
  EXPECT_EQ(cache.find(walk, "/a", whole), std::nullopt);
  cache.store(walk, "/a", whole, {1003, 0}, profile("a"));
  EXPECT_NE(cache.find(walk, "/a", whole), std::nullopt);
}

TEST(IccCache, ForgetsAtTheEndOfAWalkWhatTheWalkDidNotMeet) {
  IccCache cache;
  const auto first = cache.beginWalk();
  cache.store(first, "/a", identity(), kLater, profile("a"));
  cache.store(first, "/b", identity(), kLater, profile("b"));
  const auto second = cache.beginWalk();
  cache.find(second, "/a", identity());
  cache.endWalk(second);
  EXPECT_TRUE(cache.knows("/a"));
  EXPECT_FALSE(cache.knows("/b"));
}

TEST(IccCache, KeepsNoLongDescription) {
  IccCache cache;
  const auto walk = cache.beginWalk();
  cache.store(walk, "/a", identity(), kLater, profile(std::string(IccCache::kMaxDescription, 'x')));
  cache.store(walk, "/b", identity(), kLater, profile(std::string(IccCache::kMaxDescription + 1, 'x')));
  EXPECT_TRUE(cache.knows("/a"));
  EXPECT_FALSE(cache.knows("/b"));
}

TEST(IccCache, KeepsNoMoreFilesThanItsBound) {
  IccCache cache;
  const auto walk = cache.beginWalk();
  for (std::size_t i = 0; i <= IccCache::kMaxFiles; ++i) {
    cache.store(walk, std::to_string(i), identity(), kLater, nullptr);
  }
  EXPECT_TRUE(cache.knows(std::to_string(IccCache::kMaxFiles - 1)));
  EXPECT_FALSE(cache.knows(std::to_string(IccCache::kMaxFiles)));
}

TEST(IccCache, GivesARememberedProfileAPlaceForWhatIsMadeOfIt) {
  IccCache cache;
  const auto walk = cache.beginWalk();
  const auto kept = profile("a");
  const auto not_kept = profile("b");
  cache.store(walk, "/a", identity(), kLater, kept);
  cache.store(walk, "/b", identity(), kChanged, not_kept);
  EXPECT_TRUE(kept->kept);
  EXPECT_FALSE(not_kept->kept);
}

}  // namespace
