#include "desktop/icc/icc_folders.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "desktop/diagnosis/diagnosis.h"
#include "desktop/icc/icc_walk.h"
#include "support/environment_variables.h"
#include "support/icc_maker.h"
#include "support/temporary_folder.h"

namespace {

using platform::desktop::CacheSlot;
using platform::desktop::FileIdentity;
using platform::desktop::FileTime;
using platform::desktop::IccFolders;
using platform::desktop::identityOf;
using platform::desktop::InstalledProfile;
using platform::desktop::installedProfileFolders;
using platform::desktop::KnownFolder;
using platform::desktop::KnownFolders;
using platform::desktop::laterChangesShow;
using platform::desktop::ProfileFault;
using platform::desktop::ProfileFolder;
using support::displayProfile;
using support::IccMaker;
using support::TemporaryFolder;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;
using testing::Ne;
using testing::NotNull;
using testing::Pair;

/// "PATH below the folder: DESCRIPTION" of each entry, in the order of the visits.
std::vector<std::string> listOf(IccFolders& folders, const TemporaryFolder& base) {
  std::vector<std::string> list;
  folders.visit([&](const InstalledProfile& profile) {
    list.push_back(profile.path->substr(base.path().size() + 1) + ": " + profile.description.value_or("(none)"));
    return true;
  });
  return list;
}

std::vector<std::string> listOf(const TemporaryFolder& base) {
  IccFolders folders({base.path()});
  return listOf(folders, base);
}

// --- which files

TEST(IccFolders, VisitsProfilesByNameThenSubfoldersByName) {
  const TemporaryFolder base;
  base.write("z.icc", displayProfile("Z"));
  base.write("B.icc", displayProfile("B"));
  base.write("a.icc", displayProfile("A"));
  base.write("sub/deep/er/d.icc", displayProfile("D"));
  base.write("sub/c.icc", displayProfile("C"));
  base.write("also/e.icc", displayProfile("E"));
  EXPECT_THAT(listOf(base),
              ElementsAre("B.icc: B", "a.icc: A", "z.icc: Z", "also/e.icc: E", "sub/c.icc: C", "sub/deep/er/d.icc: D"));
}

TEST(IccFolders, VisitsFoldersInTheOrderGivenAndEachOnce) {
  const TemporaryFolder base;
  base.write("1/a.icc", displayProfile("A"));
  base.write("2/b.icc", displayProfile("B"));
  IccFolders folders({base.path("2"), base.path("1"), base.path("missing"), base.path("2"), base.path("1/../2")});
  EXPECT_THAT(listOf(folders, base), ElementsAre("2/b.icc: B", "1/a.icc: A"));
}

TEST(IccFolders, TakesBothExtensionsInAnyCase) {
  const TemporaryFolder base;
  for (const char* const name : {"a.icc", "b.ICC", "c.Icm", "d.icM", ".icc", "f.icc.bak", "g.iccx", "icc", "h.ic"}) {
    base.write(name, displayProfile(name));
  }
  EXPECT_THAT(listOf(base), ElementsAre(".icc: .icc", "a.icc: a.icc", "b.ICC: b.ICC", "c.Icm: c.Icm", "d.icM: d.icM"));
}

TEST(IccFolders, ReturnsClassDescriptionAndPath) {
  const TemporaryFolder base;
  base.write("a.icc", IccMaker().deviceClass("prtr").description("Printer").bytes());
  IccFolders folders({base.path()});
  int visits = 0;
  folders.visit([&](const InstalledProfile& profile) {
    ++visits;
    EXPECT_EQ(profile.profile_class, "prtr");
    EXPECT_EQ(profile.description, "Printer");
    EXPECT_EQ(profile.path, base.path("a.icc"));
    return true;
  });
  EXPECT_EQ(visits, 1);
}

TEST(IccFolders, ReturnsNoDescriptionWithoutAValidOne) {
  const TemporaryFolder base;
  base.write("a.icc", IccMaker().bytes());
  base.write("b.icc", IccMaker().tag("desc", "nonsense").bytes());
  EXPECT_THAT(listOf(base), ElementsAre("a.icc: (none)", "b.icc: (none)"));
}

TEST(IccFolders, EndsWhenTheVisitorReturnsFalse) {
  const TemporaryFolder base;
  base.write("a.icc", displayProfile("A"));
  base.write("b.icc", displayProfile("B"));
  base.write("sub/c.icc", displayProfile("C"));
  std::filesystem::create_symlink("sub", base.path("link"));
  IccFolders folders({base.path()});
  int visits = 0;
  folders.visit([&](const InstalledProfile&) { return ++visits < 2; });
  EXPECT_EQ(visits, 2);
}

TEST(IccFolders, IgnoresPathsThatAreNotFolders) {
  const TemporaryFolder base;
  const std::string file = base.write("a.icc", displayProfile("A"));
  IccFolders folders({base.path("missing"), file, "/dev/null", ""});
  EXPECT_THAT(listOf(folders, base), IsEmpty());
}

// --- links

TEST(IccFolders, FollowsALinkToAFileOutside) {
  const TemporaryFolder base;
  base.write("outside/a.icc", displayProfile("A"));
  std::filesystem::create_directory(base.path("in"));
  std::filesystem::create_symlink("../outside/a.icc", base.path("in/link.icc"));
  IccFolders folders({base.path("in")});
  EXPECT_THAT(listOf(folders, base), ElementsAre("in/link.icc: A"));
}

TEST(IccFolders, FollowsALinkToAFolderOutside) {
  const TemporaryFolder base;
  base.write("outside/sub/a.icc", displayProfile("A"));
  std::filesystem::create_directory(base.path("in"));
  std::filesystem::create_directory_symlink("../outside", base.path("in/link"));
  IccFolders folders({base.path("in")});
  EXPECT_THAT(listOf(folders, base), ElementsAre("in/link/sub/a.icc: A"));
}

TEST(IccFolders, ListsALinkedFileOnceUnderItsOwnPath) {
  const TemporaryFolder base;
  base.write("m/a.icc", displayProfile("A"));
  std::filesystem::create_symlink("m/a.icc", base.path("1.icc"));
  std::filesystem::create_symlink("1.icc", base.path("2.icc"));
  std::filesystem::create_directory_symlink("m", base.path("a-link"));
  std::filesystem::create_directory_symlink(base.path(), base.path("m/up"));
  EXPECT_THAT(listOf(base), ElementsAre("m/a.icc: A"));
}

TEST(IccFolders, ListsAFileOutsideOnceForSeveralLinks) {
  const TemporaryFolder base;
  base.write("outside/a.icc", displayProfile("A"));
  std::filesystem::create_directory(base.path("in"));
  std::filesystem::create_symlink("../outside/a.icc", base.path("in/1.icc"));
  std::filesystem::create_symlink("../outside/a.icc", base.path("in/2.icc"));
  IccFolders folders({base.path("in")});
  EXPECT_EQ(listOf(folders, base).size(), 1U);
}

TEST(IccFolders, EndsInLoopsOfLinks) {
  const TemporaryFolder base;
  base.write("a/a.icc", displayProfile("A"));
  std::filesystem::create_directory_symlink("..", base.path("a/up"));
  std::filesystem::create_directory_symlink(".", base.path("a/here"));
  std::filesystem::create_symlink("self.icc", base.path("self.icc"));
  std::filesystem::create_symlink("there", base.path("back"));
  std::filesystem::create_symlink("back", base.path("there"));
  EXPECT_THAT(listOf(base), ElementsAre("a/a.icc: A"));
}

TEST(IccFolders, ListsBothNamesOfAHardLink) {
  const TemporaryFolder base;
  std::filesystem::create_hard_link(base.write("a.icc", displayProfile("A")), base.path("b.icc"));
  EXPECT_THAT(listOf(base), ElementsAre("a.icc: A", "b.icc: A"));
}

TEST(IccFolders, JudgesALinkByItsOwnName) {
  const TemporaryFolder base;
  base.write("outside/a.txt", displayProfile("A"));
  base.write("outside/b.icc", displayProfile("B"));
  std::filesystem::create_directory(base.path("in"));
  std::filesystem::create_symlink("../outside/a.txt", base.path("in/a.icc"));
  std::filesystem::create_symlink("../outside/b.icc", base.path("in/b.txt"));
  IccFolders folders({base.path("in")});
  EXPECT_THAT(listOf(folders, base), ElementsAre("in/a.icc: A"));
}

// --- one bad file never hides the others

TEST(IccFolders, IgnoresFilesThatAreNotProfiles) {
  const TemporaryFolder base;
  base.write("a.icc", displayProfile("A"));
  base.write("empty.icc", "");
  base.write("short.icc", displayProfile("short").substr(0, 100));
  base.write("truncated.icc", displayProfile("truncated").substr(0, 140));
  base.write("text.icc", std::string(5000, 'x'));
  base.write("liar.icc", IccMaker().declaredTagCount(0xFFFFFFFF).bytes());
  const std::string huge = base.write("huge.icc", displayProfile("huge"));
  ASSERT_EQ(truncate(huge.c_str(), off_t{1} << 40), 0);
  ASSERT_EQ(mkfifo(base.path("pipe.icc").c_str(), 0600), 0);
  std::filesystem::create_directory(base.path("folder.icc"));
  std::filesystem::create_symlink("/dev/zero", base.path("zero.icc"));
  std::filesystem::create_symlink("missing", base.path("dangling.icc"));
  base.write("z.icc", displayProfile("Z"));
  EXPECT_THAT(listOf(base), ElementsAre("a.icc: A", "z.icc: Z"));
}

TEST(IccFolders, ReturnsNoDescriptionThatIsCutOff) {
  const TemporaryFolder base;
  const std::string whole = displayProfile("whole");
  base.write("a.icc", whole.substr(0, 150));
  base.write("z.icc", whole);
  EXPECT_THAT(listOf(base), ElementsAre("a.icc: (none)", "z.icc: whole"));
}

TEST(IccFolders, VisitsAFolderThatIsNamedLikeAProfile) {
  const TemporaryFolder base;
  base.write("folder.icc/a.icc", displayProfile("A"));
  EXPECT_THAT(listOf(base), ElementsAre("folder.icc/a.icc: A"));
}

TEST(IccFolders, IgnoresWhatMayNotBeRead) {
  const TemporaryFolder base;
  chmod(base.path().c_str(), 0755);
  base.write("a.icc", displayProfile("A"));
  chmod(base.write("b.icc", displayProfile("B")).c_str(), 0);
  base.write("closed/c.icc", displayProfile("C"));
  chmod(base.path("closed").c_str(), 0);
  base.write("z.icc", displayProfile("Z"));
  EXPECT_TRUE(support::holdsUnprivileged([&] {
    return listOf(base) == std::vector<std::string>{"a.icc: A", "z.icc: Z"};
  }));
  chmod(base.path("closed").c_str(), 0700);
}

TEST(IccFolders, VisitsDeeplyNestedFolders) {
  const TemporaryFolder base;
  std::string deep;
  for (int i = 0; i < 200; ++i) {
    deep += "d/";
  }
  base.write(deep + "a.icc", displayProfile("A"));
  base.write("z.icc", displayProfile("Z"));
  EXPECT_THAT(listOf(base), ElementsAre("z.icc: Z", deep + "a.icc: A"));
}

TEST(IccFolders, ReturnsNamesThatAreNotUtf8) {
  const TemporaryFolder base;
  base.write("\xFF.icc", displayProfile("A"));
  EXPECT_THAT(listOf(base), ElementsAre("\xFF.icc: A"));
}

// --- what is remembered

/// Waits until a change that is made now shows in the file's times. These may be ahead of the clock: the system takes a
/// finer one for a file whose times have been read.
void letTheClockTick(const std::string& path) {
  struct stat before {};
  ASSERT_EQ(stat(path.c_str(), &before), 0);
  timespec now{};
  do {
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
  } while (identityOf(before).changed >= FileTime{now.tv_sec, now.tv_nsec});
}

class RememberedFolders : public testing::Test {
 protected:
  RememberedFolders() {
    base_.write("a.icc", displayProfile("A"));
    letTheClockTick(base_.write("b.icc", displayProfile("B")));
    EXPECT_THAT(list(), ElementsAre("a.icc: A", "b.icc: B"));
  }
  std::vector<std::string> list() { return listOf(folders_, base_); }
  std::map<std::string, std::shared_ptr<CacheSlot>> slots() {
    std::map<std::string, std::shared_ptr<CacheSlot>> slots;
    folders_.visit([&](const InstalledProfile& entry) {
      slots[entry.path->substr(base_.path().size() + 1)] = entry.slot;
      return true;
    });
    return slots;
  }

  TemporaryFolder base_;
  IccFolders folders_{{base_.path()}};
};

TEST_F(RememberedFolders, KeepTheSlotOfAnUnchangedFile) {
  const auto before = slots();
  EXPECT_THAT(before, ElementsAre(Pair("a.icc", NotNull()), Pair("b.icc", NotNull())));
  EXPECT_NE(before.at("a.icc"), before.at("b.icc"));
  EXPECT_EQ(slots(), before);
}

TEST_F(RememberedFolders, ChangeTheSlotWithTheFile) {
  const auto before = slots();
  letTheClockTick(base_.write("a.icc", displayProfile("A")));
  const auto after = slots();
  EXPECT_THAT(after.at("a.icc"), AllOf(NotNull(), Ne(before.at("a.icc"))));
  EXPECT_EQ(after.at("b.icc"), before.at("b.icc"));
}

TEST_F(RememberedFolders, GiveNoSlotToALongDescription) {
  letTheClockTick(base_.write("a.icc", displayProfile(std::string(5000, 'x'))));
  for (int i = 0; i < 2; ++i) {
    EXPECT_THAT(slots(), ElementsAre(Pair("a.icc", IsNull()), Pair("b.icc", NotNull())));
  }
  EXPECT_THAT(list(), ElementsAre("a.icc: " + std::string(5000, 'x'), "b.icc: B"));
}

TEST_F(RememberedFolders, SeeAChangeBehindALink) {
  base_.write("outside/1", displayProfile("One"));
  std::filesystem::create_symlink("outside/1", base_.path("l.icc"));
  letTheClockTick(base_.path("outside/1"));
  for (int i = 0; i < 3; ++i) {
    EXPECT_THAT(list(), ElementsAre("a.icc: A", "b.icc: B", "l.icc: One"));
  }
  base_.write("outside/1", displayProfile("Two"));
  EXPECT_THAT(list(), ElementsAre("a.icc: A", "b.icc: B", "l.icc: Two"));
  std::filesystem::remove(base_.path("outside/1"));
  EXPECT_THAT(list(), ElementsAre("a.icc: A", "b.icc: B"));
}

TEST_F(RememberedFolders, MayBeVisitedByAVisitor) {
  std::vector<std::string> inner;
  folders_.visit([&](const InstalledProfile&) {
    base_.write("a.icc", displayProfile("X"));
    inner = list();
    return true;
  });
  EXPECT_THAT(inner, ElementsAre("a.icc: X", "b.icc: B"));
}

TEST_F(RememberedFolders, MayBeVisitedByManyThreads) {
  std::vector<std::thread> threads;
  std::atomic<int> right = 0;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 50; ++round) {
        right += list() == std::vector<std::string>{"a.icc: A", "b.icc: B"} ? 1 : 0;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(right, 200);
}

TEST_F(RememberedFolders, SeeAddedFiles) {
  base_.write("aa.icc", displayProfile("AA"));
  base_.write("sub/c.icc", displayProfile("C"));
  EXPECT_THAT(list(), ElementsAre("a.icc: A", "aa.icc: AA", "b.icc: B", "sub/c.icc: C"));
}

TEST_F(RememberedFolders, SeeThatAFileIsGone) {
  std::filesystem::remove(base_.path("a.icc"));
  EXPECT_THAT(list(), ElementsAre("b.icc: B"));
}

TEST_F(RememberedFolders, SeeAChangeWithTheTimeSetBack) {
  const auto time = std::filesystem::last_write_time(base_.path("a.icc"));
  base_.write("a.icc", displayProfile("X"));
  std::filesystem::last_write_time(base_.path("a.icc"), time);
  EXPECT_THAT(list(), ElementsAre("a.icc: X", "b.icc: B"));
}

TEST_F(RememberedFolders, SeeAReplacedFile) {
  std::filesystem::rename(base_.write("new", displayProfile("X")), base_.path("a.icc"));
  EXPECT_THAT(list(), ElementsAre("a.icc: X", "b.icc: B"));
}

TEST_F(RememberedFolders, SeeExchangedFiles) {
  std::filesystem::rename(base_.path("a.icc"), base_.path("c"));
  std::filesystem::rename(base_.path("b.icc"), base_.path("a.icc"));
  std::filesystem::rename(base_.path("c"), base_.path("b.icc"));
  EXPECT_THAT(list(), ElementsAre("a.icc: B", "b.icc: A"));
}

TEST_F(RememberedFolders, SeeAFileBecomeAProfile) {
  base_.write("b.icc", "no profile");
  EXPECT_THAT(list(), ElementsAre("a.icc: A"));
  base_.write("b.icc", displayProfile("B again"));
  EXPECT_THAT(list(), ElementsAre("a.icc: A", "b.icc: B again"));
}

TEST_F(RememberedFolders, SeeEachOfManyRapidChanges) {
  for (int i = 0; i < 100; ++i) {
    const std::string name = std::to_string(1000 + i);
    base_.write("a.icc", displayProfile(name));
    ASSERT_THAT(list(), ElementsAre("a.icc: " + name, "b.icc: B"));
  }
}

TEST_F(RememberedFolders, SeeALinkThatLeadsElsewhere) {
  base_.write("outside/1", displayProfile("One"));
  letTheClockTick(base_.write("outside/2", displayProfile("Two")));
  std::filesystem::create_symlink("outside/1", base_.path("l.icc"));
  EXPECT_THAT(list(), ElementsAre("a.icc: A", "b.icc: B", "l.icc: One"));
  std::filesystem::remove(base_.path("l.icc"));
  std::filesystem::create_symlink("outside/2", base_.path("l.icc"));
  EXPECT_THAT(list(), ElementsAre("a.icc: A", "b.icc: B", "l.icc: Two"));
}

TEST_F(RememberedFolders, FollowTheUsersLanguage) {
  letTheClockTick(base_.write(
      "m.icc", IccMaker().tag("desc", support::mlucElement({{"enUS", u"English"}, {"deDE", u"Deutsch"}})).bytes()));
  const auto english = support::userLanguage({{"LC_ALL", "en_US.UTF-8"}});
  EXPECT_THAT(list(), Contains("m.icc: English"));
  const auto german = support::userLanguage({{"LC_ALL", "en_US.UTF-8"}, {"LANGUAGE", "de:en"}});
  EXPECT_THAT(list(), Contains("m.icc: Deutsch"));
}

FileIdentity changedAt(FileTime time) { return {.changed = time}; }

TEST(LaterChangesShow, IsTrueOnceTheClockHasTickedSinceTheLastChange) {
  EXPECT_TRUE(laterChangesShow(changedAt({1000, 500}), {1000, 501}));
  EXPECT_TRUE(laterChangesShow(changedAt({1000, 500}), {1001, 0}));
  EXPECT_FALSE(laterChangesShow(changedAt({1000, 500}), {1000, 500}));
}

TEST(LaterChangesShow, IsFalseForAChangeInTheFuture) {
  EXPECT_FALSE(laterChangesShow(changedAt({1000, 500}), {999, 999}));
}

TEST(LaterChangesShow, WaitsForThreeSecondsOnAFileSystemThatCountsInSeconds) {
  EXPECT_FALSE(laterChangesShow(changedAt({1000, 0}), {1002, 900}));
  EXPECT_TRUE(laterChangesShow(changedAt({1000, 0}), {1003, 0}));
}

TEST(KnownFolders, KeepsNoMoreFilesThanTheBound) {
  const auto folder_of = [](std::size_t files) {
    auto folder = std::make_shared<KnownFolder>();
    folder->files.resize(files);
    return folder;
  };
  KnownFolders known;
  known.add("/a", folder_of(KnownFolders::kMaxFiles - 1));
  known.add("/b", folder_of(2));
  known.add("/c", folder_of(1));
  EXPECT_TRUE(known.find("/a"));
  EXPECT_FALSE(known.find("/b"));
  EXPECT_TRUE(known.find("/c"));
}

// --- where profiles are

/// Without the variables that name a user's folders.
class Environment : support::EnvironmentVariables {
 public:
  Environment() : EnvironmentVariables({{"HOME", {}}, {"XDG_DATA_HOME", {}}, {"XDG_DATA_DIRS", {}}}) {}
};

TEST(InstalledProfileFolders, ReturnsTheSystemsAndTheUsers) {
  const Environment environment;
  setenv("HOME", "/home/ada", 1);
  EXPECT_THAT(
      installedProfileFolders(),
      ElementsAre("/usr/share/color/icc", "/usr/local/share/color/icc", "/var/lib/color/icc", "/var/lib/colord/icc",
                  "/home/ada/.local/share/icc", "/home/ada/.local/share/color/icc", "/home/ada/.color/icc"));
}

TEST(InstalledProfileFolders, FollowsTheDataDirectories) {
  const Environment environment;
  setenv("HOME", "/home/ada", 1);
  setenv("XDG_DATA_HOME", "/data/", 1);
  setenv("XDG_DATA_DIRS", "/opt/share::relative:/usr/share/:/opt/share:/", 1);
  EXPECT_THAT(
      installedProfileFolders(),
      ElementsAre("/usr/share/color/icc", "/usr/local/share/color/icc", "/opt/share/color/icc", "/color/icc",
                  "/var/lib/color/icc", "/var/lib/colord/icc", "/data/icc", "/data/color/icc", "/home/ada/.color/icc"));
}

TEST(InstalledProfileFolders, ReturnsTheSystemsWithoutAHome) {
  const Environment environment;
  setenv("XDG_DATA_HOME", "relative", 1);
  EXPECT_THAT(installedProfileFolders(), ElementsAre("/usr/share/color/icc", "/usr/local/share/color/icc",
                                                     "/var/lib/color/icc", "/var/lib/colord/icc"));
}

TEST(ExamineProfileFolders, AgreesWithTheListing) {
  const TemporaryFolder base;
  const Environment environment;
  setenv("XDG_DATA_HOME", base.path().c_str(), 1);
  base.write("icc/a.icc", displayProfile("A"));
  base.write("icc/sub/b.ICM", displayProfile("B"));
  base.write("icc/cut.icc", displayProfile("C").substr(0, 150));
  base.write("icc/text.icc", "text");
  base.write("icc/other.txt", displayProfile("D"));
  base.write("outside/e.icc", displayProfile("E"));
  base.write("outside/deep/f.icc", displayProfile("F"));
  ASSERT_EQ(mkfifo(base.path("icc/pipe.icc").c_str(), 0600), 0);
  std::filesystem::create_directory_symlink("../outside", base.path("icc/link"));
  std::filesystem::create_symlink("a.icc", base.path("icc/same.icc"));
  std::filesystem::create_symlink("nowhere", base.path("icc/dangling.icc"));

  const auto folders = platform::desktop::examineProfileFolders();
  const auto found = std::find_if(folders.begin(), folders.end(),
                                  [&](const ProfileFolder& folder) { return folder.path == base.path("icc"); });
  ASSERT_NE(found, folders.end());
  IccFolders listing({base.path("icc")});
  EXPECT_THAT(listOf(listing, base), ElementsAre("icc/a.icc: A", "icc/cut.icc: (none)", "icc/sub/b.ICM: B",
                                                 "icc/link/e.icc: E", "icc/link/deep/f.icc: F"));
  EXPECT_EQ(found->profiles, 4U);  // all of the listing but the incomplete one
  EXPECT_THAT(found->faults, ElementsAre(Pair(base.path("icc/cut.icc"), ProfileFault::kIncomplete),
                                         Pair(base.path("icc/dangling.icc"), ProfileFault::kMissing),
                                         Pair(base.path("icc/pipe.icc"), ProfileFault::kNotRegular),
                                         Pair(base.path("icc/text.icc"), ProfileFault::kNotAProfile)));
}

}  // namespace
