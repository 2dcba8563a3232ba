// Strings, URLs and paths through the platform, besides tests/conformance.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "base/owned_ref.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/Foundation/system_version.h"
#include "strings/other_foundation.h"
#include "strings/string_services.h"
#include "support/temporary_folder.h"

namespace {

/// A test works inside an autorelease pool of its own.
class Strings : public testing::Test {
 protected:
  ~Strings() override { platform::setSystemVersion(platform::kSystemVersion); }

 private:
  const platform::ScopedPool pool_;
};

class Paths : public Strings {
 protected:
  const support::TemporaryFolder temporary_;
  const std::string& folder_ = temporary_.path();
};

CFStringRef string(const char* utf8) { return StringServices::UTF8StringToCFString(utf8); }

std::string textOf(CFStringRef value) {
  const char* const utf8 = StringServices::CFStringRefToUTF8String(value);
  return utf8 != nullptr ? utf8 : "(null)";
}

std::string textOf(CFURLRef url) { return url != nullptr ? textOf(CFURLGetString(url)) : "(null)"; }

std::string pathOf(CFURLRef url) {
  const char* const path = StringServices::CFURLRefToPOSIXPath(url);
  return path != nullptr ? path : "(null)";
}

// --- strings

TEST_F(Strings, AreNullForNull) {
  EXPECT_EQ(string(nullptr), nullptr);
  EXPECT_EQ(StringServices::CFStringRefToUTF8String(nullptr), nullptr);
}

TEST_F(Strings, BelongToThePool) {
  CFStringRef made = nullptr;
  {
    const platform::ScopedPool pool;
    made = string("a string that outlives its pool only because it is retained");
    CFRetain(made);
    EXPECT_EQ(CFGetRetainCount(made), 2);
  }
  EXPECT_EQ(CFGetRetainCount(made), 1);
  CFRelease(made);
}

// --- data

TEST_F(Strings, EncodersRequestLossyAsciiAndMacRomanOnly) {
  other_foundation::Notes notes;
  const CFStringRef string = other_foundation::notingString(notes);
  EXPECT_EQ(StringServices::CFStringRefToUTF16BE(string), nullptr);
  EXPECT_EQ(StringServices::CFStringRefToASCII(string), nullptr);
  EXPECT_EQ(StringServices::CFStringRefToMac(string), nullptr);
  EXPECT_TRUE((notes.data == std::vector<other_foundation::DataRequest>{{0x90000100, false}, {1, true}, {30, true}}));
}

TEST_F(Strings, EncodersReturnNullForNull) {
  EXPECT_EQ(StringServices::CFStringRefToUTF16BE(nullptr), nullptr);
  EXPECT_EQ(StringServices::CFStringRefToASCII(nullptr), nullptr);
  EXPECT_EQ(StringServices::CFStringRefToMac(nullptr), nullptr);
}

// --- codes

TEST_F(Strings, CodesAreTheFirstOfAll) {
  EXPECT_EQ(textOf(StringServices::CountryCode()), "AD");
  EXPECT_EQ(textOf(StringServices::LanguageCode()), "aa");
}

// --- searching

/// On macOS 10 of the minor version that is the parameter: without containsString:, and with it.
class Contains : public Strings, public testing::WithParamInterface<long> {
 protected:
  Contains() { platform::setSystemVersion({10, GetParam(), 0}); }

  static bool contains(const char* text, const char* part) {
    return StringServices::CFStringRefContains(string(text), string(part));
  }
};

TEST_P(Contains, IsCaseSensitive) {
  EXPECT_TRUE(contains("Display", "play"));
  EXPECT_TRUE(contains("Display", "Display"));
  EXPECT_FALSE(contains("Display", "display"));
  EXPECT_FALSE(contains("play", "Display"));
}

TEST_P(Contains, IsFalseForTheEmptyPart) {
  EXPECT_FALSE(contains("Display", ""));
  EXPECT_FALSE(contains("", ""));
}

TEST_P(Contains, IsFalseForTheNullPart) {
  EXPECT_FALSE(contains("a", nullptr));
  EXPECT_FALSE(contains(nullptr, nullptr));
}

/// The selector by which a text is searched.
std::string searchSelector() {
  other_foundation::Notes notes;
  EXPECT_FALSE(StringServices::CFStringRefContains(other_foundation::notingString(notes), string("part")));
  return notes.searches.size() == 1 ? notes.searches.front() : "";
}

TEST_F(Strings, CFStringRefContainsSendsContainsStringFrom10_10On) {
  for (const auto& [version, selector] : {std::pair(platform::SystemVersion{10, 9, 5}, "rangeOfString:"),
                                          {{10, 10, 0}, "containsString:"},
                                          {{10, 11, 0}, "containsString:"},
                                          {{11, 0, 0}, "containsString:"}}) {
    platform::setSystemVersion(version);
    EXPECT_EQ(searchSelector(), selector) << version.major << '.' << version.minor;
  }
}

// The location in the range of a message to null is 0, which is not NSNotFound.
TEST_F(Strings, CFStringRefContainsSendsToANullTextToo) {
  platform::setSystemVersion({10, 9, 5});
  EXPECT_TRUE(StringServices::CFStringRefContains(nullptr, string("a")));
  platform::setSystemVersion({10, 10, 0});
  EXPECT_FALSE(StringServices::CFStringRefContains(nullptr, string("a")));
}

TEST_F(Strings, CFStringRefContainsSendsRangeOfStringOnASystemWithoutVersionQueries) {
  const other_foundation::WithoutVersionQuestion older;
  EXPECT_EQ(searchSelector(), "rangeOfString:");
}

TEST_F(Strings, CodesAreNullWithoutLists) {
  const other_foundation::WithoutCodes none;
  EXPECT_EQ(StringServices::CountryCode(), nullptr);
  EXPECT_EQ(StringServices::LanguageCode(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(On10, Contains, testing::Values(9, 10), testing::PrintToStringParamName());

// --- paths and URLs

TEST_F(Paths, OnlyPOSIXPathToCFURLRefReadsTheFileSystem) {
  EXPECT_EQ(textOf(StringServices::POSIXPathToCFURLRef(folder_.c_str())), "file://" + folder_ + "/");
  EXPECT_EQ(textOf(StringServices::CFStringToCFURL(string(folder_.c_str()))), "file://" + folder_);
  EXPECT_EQ(textOf(StringServices::CFStringToCFURL(string((folder_ + "/").c_str()))), "file://" + folder_);
}

TEST_F(Paths, OfFilesHaveNoTrailingSlash) {
  const std::string path = temporary_.write("a b#c.icc", "content");
  EXPECT_EQ(textOf(StringServices::POSIXPathToCFURLRef(path.c_str())), "file://" + folder_ + "/a%20b%23c.icc");
}

TEST_F(Paths, RoundTripThroughUrls) {
  for (const char* const name :
       {"plain", "a b", "a#b", "a?b", "a%41b", "a;b", "\xC3\xA9", "\xF0\x9F\x98\x80", "a\\b"}) {
    const std::string path = folder_ + "/" + name;
    EXPECT_EQ(pathOf(StringServices::POSIXPathToCFURLRef(path.c_str())), path);
    EXPECT_EQ(pathOf(StringServices::CFStringToCFURL(string(path.c_str()))), path);
    EXPECT_EQ(textOf(StringServices::LastPathComponent(StringServices::POSIXPathToCFURLRef(path.c_str()))), name);
  }
  EXPECT_EQ(pathOf(StringServices::POSIXPathToCFURLRef(folder_.c_str())), folder_);
}

TEST_F(Paths, KeepTheRoot) {
  const CFURLRef root = StringServices::POSIXPathToCFURLRef("/");
  EXPECT_EQ(pathOf(root), "/");
  EXPECT_EQ(textOf(StringServices::LastPathComponent(root)), "/");
}

TEST_F(Paths, StartAtTheCurrentDirectoryWhenRelative) {
  const std::string here = std::filesystem::current_path().string();
  EXPECT_EQ(pathOf(StringServices::POSIXPathToCFURLRef("no such file")), here + "/no such file");
  EXPECT_EQ(pathOf(StringServices::POSIXPathToCFURLRef("")), here);
}

TEST_F(Paths, MakeNoUrlFromNullOrInvalidUtf8) {
  EXPECT_EQ(StringServices::POSIXPathToCFURLRef(nullptr), nullptr);
  EXPECT_EQ(StringServices::POSIXPathToCFURLRef("/\xFF"), nullptr);
  EXPECT_EQ(StringServices::POSIXPathToCFURLRef("/a\xE2\x82"), nullptr);
  EXPECT_EQ(StringServices::CFStringToCFURL(nullptr), nullptr);
}

TEST_F(Paths, AreNullForANullUrl) {
  EXPECT_EQ(StringServices::CFURLRefToPOSIXPath(nullptr), nullptr);
  EXPECT_EQ(StringServices::LastPathComponent(nullptr), nullptr);
}

TEST_F(Paths, MayBeLongerThanTheStack) {
  std::string path = "/";
  path.resize(9000000, 'a');
  EXPECT_TRUE(pathOf(StringServices::POSIXPathToCFURLRef(path.c_str())) == path);
}

TEST(StringServices, WorkOnAThreadWithAPool) {
  std::string text;
  std::thread([&text] {
    const platform::ScopedPool pool;
    text = pathOf(StringServices::POSIXPathToCFURLRef("/from/a/thread"));
  }).join();
  EXPECT_EQ(text, "/from/a/thread");
}

}  // namespace
