// Foundation behaves like Apple's where methods were replaced, and as before elsewhere.
#include <gmock/gmock.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "frameworks/Foundation/system_version.h"
#include "platform/frameworks/foundation_probe.h"
#include "support/icu_text.h"
#include "support/temporary_folder.h"

namespace {

using probe::Encoding;
using probe::FileUrl;
using probe::Kind;
using probe::Part;
using probe::Search;
using testing::Optional;

// --- searching with options; without them tests/conformance searches

TEST(StringSearch, FindsNoEmptyStringWithOptions) {
  for (const Search search : {Search::kOptions, Search::kOptionsAndRange}) {
    EXPECT_EQ(probe::locationOf("", "abc", search), std::nullopt);
    EXPECT_EQ(probe::locationOf("", "", search), std::nullopt);
    EXPECT_EQ(probe::locationOf("", "\xE6\x97\xA5\xE6\x9C\xAC", search), std::nullopt);
  }
}

TEST(StringSearch, ReturnsTheLocationOfThePart) {
  for (const Search search : {Search::kPlain, Search::kOptions, Search::kOptionsAndRange}) {
    EXPECT_THAT(probe::locationOf("c", "abcabc", search), Optional(2U));
    EXPECT_THAT(probe::locationOf("\xE6\x9C\xAC", "\xE6\x97\xA5\xE6\x9C\xAC", search), Optional(1U));
    EXPECT_EQ(probe::locationOf("x", "abc", search), std::nullopt);
  }
}

// --- UTF-8

/// Foundation takes a byte-order mark at the start of UTF-8 for no text, here as on the Mac.
std::u16string withoutMark(const std::u16string& text) {
  return !text.empty() && text[0] == 0xFEFF ? text.substr(1) : text;
}

testing::AssertionResult decodesAsIcuDoes(const std::string& utf8) {
  std::optional<std::u16string> expected = support::utf16ByIcu(utf8);
  if (expected) {
    expected = withoutMark(*expected);
  }
  return probe::decoded(utf8) == expected ? testing::AssertionSuccess()
                                          : testing::AssertionFailure() << testing::PrintToString(utf8);
}

TEST(Decoding, AcceptsExactlyTheTwoByteSequencesThatAreUtf8) {
  for (unsigned first = 0x80; first < 0x100; ++first) {
    for (unsigned second = 1; second < 0x100; ++second) {
      ASSERT_TRUE(decodesAsIcuDoes({static_cast<char>(first), static_cast<char>(second)}));
    }
  }
}

TEST(Decoding, AcceptsExactlyTheThreeByteSequencesThatAreUtf8) {
  for (unsigned first = 0xE0; first < 0xF0; ++first) {
    for (unsigned second = 0x7F; second < 0xC1; ++second) {
      for (unsigned third = 0x7F; third < 0xC1; ++third) {
        ASSERT_TRUE(decodesAsIcuDoes({static_cast<char>(first), static_cast<char>(second), static_cast<char>(third)}));
      }
    }
  }
}

TEST(Decoding, AcceptsExactlyTheFourByteSequencesThatAreUtf8AtTheirBounds) {
  for (unsigned first = 0xF0; first < 0x100; ++first) {
    for (unsigned second = 0x7F; second < 0xC1; ++second) {
      for (const unsigned last : {0x7FU, 0x80U, 0xBFU, 0xC0U}) {
        ASSERT_TRUE(
            decodesAsIcuDoes({static_cast<char>(first), static_cast<char>(second), '\x80', static_cast<char>(last)}));
      }
    }
  }
}

TEST(Decoding, RejectsTruncatedSequences) {
  for (const std::string& whole :
       {std::string("\xC3\xA9"), std::string("\xE2\x82\xAC"), std::string("\xF0\x9F\x98\x80")}) {
    for (std::size_t length = 1; length < whole.size(); ++length) {
      EXPECT_EQ(probe::decoded("a" + whole.substr(0, length)), std::nullopt);
      EXPECT_EQ(probe::decoded(whole.substr(0, length) + "a"), std::nullopt);
    }
  }
}

// --- conversion to other encodings

TEST(Conversion, LossyAlwaysReturnsData) {
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    if (unit == 0xD800) {
      unit = 0xE000;
    }
    const std::u16string text{u'a', static_cast<char16_t>(unit), u'b'};
    for (const Encoding encoding : {Encoding::kAscii, Encoding::kMacRoman}) {
      const auto data = probe::data(text, encoding, true);
      ASSERT_TRUE(data) << unit;
      EXPECT_EQ(data->front(), 'a') << unit;
      EXPECT_EQ(data->back(), 'b') << unit;
    }
  }
}

TEST(Conversion, LosslessReturnsNullForMissingCharacters) {
  EXPECT_EQ(probe::data(u"\u00E9", Encoding::kAscii, false), std::nullopt);
  EXPECT_EQ(probe::data(u"\u65E5", Encoding::kMacRoman, false), std::nullopt);
  EXPECT_EQ(probe::data(u"a\U0001F600", Encoding::kUtf8, false, Part::kWithoutLastUnit), std::nullopt);
}

// --- file URLs

/// A temporary folder that is the current directory.
class Folder : public support::TemporaryFolder {
 public:
  Folder() : before_(std::filesystem::current_path()) { std::filesystem::current_path(path()); }
  ~Folder() { std::filesystem::current_path(before_); }

  std::string makeFolder(const std::string& name) const {
    std::filesystem::create_directory(path(name));
    return path(name);
  }

 private:
  std::filesystem::path before_;
};

std::string urlText(const std::string& path, Kind kind = Kind::kUnsaid) {
  const std::optional<FileUrl> url = probe::fileUrl(path, kind);
  return url ? url->text : "(none)";
}

std::string urlPath(const std::string& path, Kind kind = Kind::kUnsaid) {
  const std::optional<FileUrl> url = probe::fileUrl(path, kind);
  return url ? url->path : "(none)";
}

TEST(FileUrl, OfADirectoryEndsInASlashUnlessCalledAFile) {
  const Folder folder;
  const std::string path = folder.makeFolder("d");
  EXPECT_EQ(urlText(path), "file://" + path + "/");
  EXPECT_EQ(urlText(path, Kind::kFile), "file://" + path);
  EXPECT_EQ(urlText(path, Kind::kDirectory), "file://" + path + "/");
}

TEST(FileUrl, OfAFileEndsInASlashOnlyWhenCalledADirectory) {
  const Folder folder;
  const std::string path = folder.write("f", "content");
  EXPECT_EQ(urlText(path), "file://" + path);
  EXPECT_EQ(urlText(path, Kind::kFile), "file://" + path);
  EXPECT_EQ(urlText(path, Kind::kDirectory), "file://" + path + "/");
}

TEST(FileUrl, OfAMissingPathKeepsItsSlash) {
  EXPECT_EQ(urlText("/no/such/x"), "file:///no/such/x");
  EXPECT_EQ(urlText("/no/such/x/"), "file:///no/such/x/");
  EXPECT_EQ(urlText("/no/such/x/", Kind::kFile), "file:///no/such/x");
  EXPECT_EQ(urlText("/no/such/x//", Kind::kFile), "file:///no/such/x");
}

TEST(FileUrl, OfARelativePathStartsAtTheCurrentDirectory) {
  const Folder folder;
  folder.makeFolder("d");
  EXPECT_EQ(urlText("x y"), "file://" + folder.path() + "/x%20y");
  EXPECT_EQ(urlText("d"), "file://" + folder.path() + "/d/");
  EXPECT_EQ(urlText("new/"), "file://" + folder.path() + "/new/");
  EXPECT_EQ(urlText("d", Kind::kFile), "file://" + folder.path() + "/d");
  EXPECT_EQ(urlPath("rel:x"), folder.path() + "/rel:x");
  EXPECT_EQ(urlPath("c:\\x"), folder.path() + "/c:\\x");
  EXPECT_EQ(urlPath("~"), folder.path() + "/~");
  EXPECT_EQ(urlPath("~/x"), folder.path() + "/~/x");
}

TEST(FileUrl, OfTheEmptyPathIsTheCurrentDirectory) {
  const Folder folder;
  EXPECT_EQ(urlPath(""), folder.path());
  EXPECT_EQ(urlText(""), "file://" + folder.path() + "/");
}

TEST(FileUrl, OfARelativePathIsNullWithoutACurrentDirectory) {
  const Folder folder;
  const std::string gone = folder.makeFolder("gone");
  std::filesystem::current_path(gone);
  std::filesystem::remove(gone);
  EXPECT_EQ(urlText("x"), "(none)");
  EXPECT_EQ(urlText("x", Kind::kFile), "(none)");
  EXPECT_EQ(urlText("/x"), "file:///x");
}

TEST(FileUrl, FindsDirectoriesWhoseNamesAreNotAscii) {
  const Folder folder;
  const std::string path = folder.makeFolder("\xC3\xA9\xE6\x97\xA5");
  EXPECT_EQ(urlText(path).back(), '/');
}

TEST(FileUrl, ReturnsAVeryLongPath) {
  for (const std::size_t length : {std::size_t{65000}, std::size_t{70000}, std::size_t{9000000}}) {
    const std::string path = "/" + std::string(length, 'a') + " b/" + std::string(300, 'c');
    const std::optional<FileUrl> url = probe::fileUrl(path);
    ASSERT_TRUE(url);
    EXPECT_TRUE(url->path == path) << length;
    EXPECT_EQ(url->last_component, std::string(300, 'c'));
    EXPECT_TRUE(urlPath(path + "/") == path) << length;
  }
}

TEST(FileUrl, IsNullForALoneSurrogate) {
  EXPECT_FALSE(probe::makesFileUrl(u"/\U0001F600", Part::kWithoutLastUnit));
  EXPECT_TRUE(probe::makesFileUrl(u"/\U0001F600", Part::kAll));
}

// --- the system's version

TEST(SystemVersion, IsComparedPartByPart) {
  EXPECT_TRUE(probe::systemIsAtLeast(10, 10, 0));
  EXPECT_TRUE(probe::systemIsAtLeast(11, 0, 0));
  EXPECT_FALSE(probe::systemIsAtLeast(11, 0, 1));
  EXPECT_FALSE(probe::systemIsAtLeast(11, 1, 0));
  EXPECT_FALSE(probe::systemIsAtLeast(12, 0, 0));
}

TEST(SystemVersion, CanBeSetByATest) {
  platform::setSystemVersion({10, 9, 5});
  EXPECT_FALSE(probe::systemIsAtLeast(10, 10, 0));
  EXPECT_TRUE(probe::systemIsAtLeast(10, 9, 5));
  EXPECT_FALSE(probe::systemIsAtLeast(10, 9, 6));
  platform::setSystemVersion(platform::kSystemVersion);
  EXPECT_TRUE(probe::systemIsAtLeast(10, 10, 0));
}

}  // namespace
