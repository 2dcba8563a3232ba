#include <string>

#include "profile/profile_fixture.h"

namespace {

using ProfileServices::GetInstalledProfilesCount;
using ProfileServices::ListAllInstalledProfiles;
using support::installed;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class InstalledList : public support::ProfileServicesTest {
 protected:
  /// The name under which a profile with this description is listed.
  std::string nameOf(const std::string& description) {
    setInstalled({installed("/a.icc", description)});
    const auto profiles = ListAllInstalledProfiles();
    return profiles.size() == 1 ? profiles.begin()->second : "(not listed)";
  }
};

TEST_F(InstalledList, IsInByteOrderOfThePaths) {
  setInstalled({installed("/b.icc", "1"), installed("/a.icc", "3"), installed("/a.ic", "2"), installed("/Z.icc", "4"),
                installed("/é.icc", "5"), installed("/a/z.icc", "6")});
  EXPECT_THAT(ListAllInstalledProfiles(), ElementsAre(Pair("/Z.icc", "4"), Pair("/a.ic", "2"), Pair("/a.icc", "3"),
                                                      Pair("/a/z.icc", "6"), Pair("/b.icc", "1"), Pair("/é.icc", "5")));
}

TEST_F(InstalledList, HoldsDisplayProfilesOnly) {
  setInstalled({installed("/p", "Printer", "prtr"), installed("/s", "Scanner", "scnr"), installed("/d", "Display"),
                installed("/a", "Abstract", "abst"), installed("/c", "Space", "spac"), installed("/l", "Link", "link"),
                installed("/n", "Names", "nmcl"), installed("/u", "Upper case", "MNTR"), installed("/e", "Empty", ""),
                installed("/m", "Longer", "mntr ")});
  EXPECT_THAT(ListAllInstalledProfiles(), ElementsAre(Pair("/d", "Display")));
}

TEST_F(InstalledList, HoldsTwoFilesWithOneDescription) {
  setInstalled({installed("/2.icc", "Same"), installed("/1.icc", "Same")});
  EXPECT_THAT(ListAllInstalledProfiles(), ElementsAre(Pair("/1.icc", "Same"), Pair("/2.icc", "Same")));
}

TEST_F(InstalledList, KeepsTheFirstOfTwoReportsOfAPath) {
  setInstalled({installed("/a.icc", "First"), installed("/b.icc", "B"), installed("/a.icc", "Second")});
  EXPECT_THAT(ListAllInstalledProfiles(), ElementsAre(Pair("/a.icc", "First"), Pair("/b.icc", "B")));
}

TEST_F(InstalledList, IsReadAtEachCall) {
  setInstalled({installed("/a.icc", "A")});
  EXPECT_THAT(ListAllInstalledProfiles(), ElementsAre(Pair("/a.icc", "A")));
  setInstalled({installed("/b.icc", "B")});
  EXPECT_THAT(ListAllInstalledProfiles(), ElementsAre(Pair("/b.icc", "B")));
  setInstalled({});
  EXPECT_THAT(ListAllInstalledProfiles(), IsEmpty());
}

TEST_F(InstalledList, IsTheCallersOwnCopy) {
  setInstalled({installed("/a.icc", "A")});
  auto copy = ListAllInstalledProfiles();
  copy.clear();
  EXPECT_THAT(Iterator::installed_profiles, ElementsAre(Pair("/a.icc", "A")));
}

TEST_F(InstalledList, SkipsIncompleteEntries) {
  setInstalled({installed("/a", std::nullopt),
                installed("/b", "B", std::nullopt),
                {"mntr", "no path", std::nullopt},
                installed("/c", "C")});
  EXPECT_THAT(ListAllInstalledProfiles(), ElementsAre(Pair("/c", "C")));
}

TEST_F(InstalledList, CountsWithoutReading) {
  setInstalled({installed("/a.icc", "A")});
  EXPECT_EQ(GetInstalledProfilesCount(), 0U);
  ListAllInstalledProfiles();
  EXPECT_EQ(GetInstalledProfilesCount(), 1U);
  setInstalled({});
  EXPECT_EQ(GetInstalledProfilesCount(), 1U);
}

// --- names

TEST_F(InstalledList, RemovesLeadingSpaces) {
  EXPECT_EQ(nameOf("   three before"), "three before");
  EXPECT_EQ(nameOf(" one"), "one");
}

TEST_F(InstalledList, KeepsInnerAndTrailingSpaces) { EXPECT_EQ(nameOf("  a  b  "), "a  b  "); }

TEST_F(InstalledList, KeepsALeadingTabAndTheSpacesAfterIt) {
  EXPECT_EQ(nameOf("\t  tab"), "\t  tab");
  EXPECT_EQ(nameOf("  \t tab"), "\t tab");
}

TEST_F(InstalledList, KeepsSpacesAtTheBeginningOfALaterLine) {
  EXPECT_EQ(nameOf("  first\n  second"), "first\n  second");
  EXPECT_EQ(nameOf("\n  second"), "\n  second");
}

TEST_F(InstalledList, KeepsOtherKindsOfSpace) { EXPECT_EQ(nameOf("\u00A0\u3000 x"), "\u00A0\u3000 x"); }

TEST_F(InstalledList, KeepsAProfileNamedWithSpacesOnly) {
  EXPECT_EQ(nameOf("     "), "");
  EXPECT_EQ(nameOf(""), "");
}

TEST_F(InstalledList, RemovesAMillionLeadingSpaces) {
  EXPECT_EQ(nameOf(std::string(1'000'000, ' ')), "");
  EXPECT_EQ(nameOf(std::string(1'000'000, ' ') + "x"), "x");
}

TEST_F(InstalledList, KeepsANameOf16MiB) {
  const std::string name(16 << 20, 'x');
  EXPECT_TRUE(nameOf("  " + name) == name);
}

TEST_F(InstalledList, EndsANameAtItsFirstNul) {
  EXPECT_EQ(nameOf(std::string("  a\0b", 5)), "a");
  EXPECT_EQ(nameOf(std::string("\0  b", 4)), "");
}

TEST_F(InstalledList, KeepsEveryCharacterOfAName) { EXPECT_EQ(nameOf(" Büro 色 \U0001F600"), "Büro 色 \U0001F600"); }

// --- paths

TEST_F(InstalledList, HoldsPathsOfAnyCharacters) {
  const std::string path = "/a b/%41?#;ü色\U0001F600/" + std::string(300, 'x') + ".icc";
  setInstalled({installed(path, "A")});
  EXPECT_THAT(ListAllInstalledProfiles(), ElementsAre(Pair(path, "A")));
}

// --- the call-backs themselves

TEST_F(InstalledList, CallbackContinuesForAnyEntry) {
  EXPECT_TRUE(Iterator::profileListIterator(nullptr, nullptr));
  const CFDictionaryRef empty = CFDictionaryCreate(nullptr, nullptr, nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                                   &kCFTypeDictionaryValueCallBacks);
  EXPECT_TRUE(Iterator::profileListIterator(empty, nullptr));
  CFRelease(empty);
  EXPECT_THAT(Iterator::installed_profiles, IsEmpty());
}

TEST_F(InstalledList, CallbackSkipsValuesOfAnotherType) {
  const CFStringRef keys[] = {kColorSyncProfileClass, kColorSyncProfileDescription, kColorSyncProfileURL};
  const CFURLRef url = CFURLCreateWithFileSystemPath(nullptr, CFSTR("/a.icc"), kCFURLPOSIXPathStyle, false);
  const CFTypeRef sound[] = {kColorSyncSigDisplayClass, CFSTR("Name"), url};
  for (int wrong = -1; wrong < 3; ++wrong) {
    Iterator::clearInstalledArray();
    const CFMutableDictionaryRef info =
        CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    for (int i = 0; i < 3; ++i) {
      CFDictionarySetValue(info, keys[i], i == wrong ? static_cast<CFTypeRef>(kCFBooleanTrue) : sound[i]);
    }
    EXPECT_TRUE(Iterator::profileListIterator(info, nullptr));
    EXPECT_EQ(GetInstalledProfilesCount(), wrong == -1 ? 1U : 0U) << wrong;
    CFRelease(info);
  }
  CFRelease(url);
}

}  // namespace
