// Foundation behaves like Apple's where methods were replaced, and as before elsewhere.
#include <gmock/gmock.h>
#include <iconv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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
using testing::ElementsAre;
using testing::Optional;

// --- searching

TEST(StringSearch, FindsNoEmptyStringByContainsString) {
  EXPECT_FALSE(probe::contains("abc", ""));
  EXPECT_FALSE(probe::contains("", ""));
  EXPECT_FALSE(probe::contains("\xC3\xA9", ""));
}

TEST(StringSearch, FindsNoEmptyStringByRange) {
  for (const Search search : {Search::kPlain, Search::kOptions, Search::kOptionsAndRange}) {
    EXPECT_EQ(probe::locationOf("", "abc", search), std::nullopt);
    EXPECT_EQ(probe::locationOf("", "", search), std::nullopt);
    EXPECT_EQ(probe::locationOf("", "\xE6\x97\xA5\xE6\x9C\xAC", search), std::nullopt);
  }
}

TEST(StringSearch, FindsOtherParts) {
  EXPECT_TRUE(probe::contains("Display", "Display"));
  EXPECT_TRUE(probe::contains("Display", "play"));
  EXPECT_FALSE(probe::contains("Display", "display"));
  EXPECT_FALSE(probe::contains("", "a"));
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

TEST(Encoding, ReturnsNullForALoneSurrogate) {
  EXPECT_EQ(probe::encoded(u"A\U0001F600", Part::kWithoutLastUnit), std::nullopt);
  EXPECT_EQ(probe::encoded(u"\U0001F600A", Part::kWithoutFirstUnit), std::nullopt);
  EXPECT_EQ(probe::encoded(u"\U0001F600\U0001F600", Part::kWithoutFirstUnit), std::nullopt);
  EXPECT_THAT(probe::encoded(u"A\U0001F600"), Optional(std::string("A\xF0\x9F\x98\x80")));
}

// --- conversion to other encodings

/// The character that iconv finds for each byte of Mac Roman.
std::u16string macRomanCharacter(unsigned char byte) {
  auto* const converter = iconv_open("UTF-16LE", "MACINTOSH");
  char* in = reinterpret_cast<char*>(&byte);
  std::size_t in_left = 1;
  std::u16string units(2, u'\0');
  char* out = reinterpret_cast<char*>(units.data());
  std::size_t out_left = units.size() * sizeof(char16_t);
  EXPECT_NE(iconv(converter, &in, &in_left, &out, &out_left), static_cast<std::size_t>(-1));
  iconv_close(converter);
  units.resize(units.size() - out_left / sizeof(char16_t));
  return units;
}

TEST(Conversion, ToMacRomanLeavesEachOfItsCharactersUnchanged) {
  for (unsigned byte = 0; byte < 0x100; ++byte) {
    const std::u16string character = macRomanCharacter(static_cast<unsigned char>(byte));
    EXPECT_THAT(probe::data(character, Encoding::kMacRoman, true), Optional(ElementsAre(byte))) << byte;
  }
}

TEST(Conversion, ToAsciiLeavesEachOfItsCharactersUnchanged) {
  for (unsigned byte = 0; byte < 0x80; ++byte) {
    EXPECT_THAT(probe::data({static_cast<char16_t>(byte)}, Encoding::kAscii, true), Optional(ElementsAre(byte)));
  }
}

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

TEST(Conversion, LossyReturnsDataForLoneSurrogates) {
  for (const Encoding encoding : {Encoding::kAscii, Encoding::kMacRoman}) {
    EXPECT_THAT(probe::data(u"a\U0001F600", encoding, true, Part::kWithoutLastUnit), Optional(ElementsAre('a', '?')));
    EXPECT_THAT(probe::data(u"\U0001F600a", encoding, true, Part::kWithoutFirstUnit), Optional(ElementsAre('?', 'a')));
    EXPECT_THAT(probe::data(u"a\U0001F600\U0001F600", encoding, true, Part::kWithoutLastUnit),
                Optional(ElementsAre('a', '?', '?')));
  }
}

TEST(Conversion, LosslessReturnsNullForMissingCharacters) {
  EXPECT_EQ(probe::data(u"\u00E9", Encoding::kAscii, false), std::nullopt);
  EXPECT_EQ(probe::data(u"\u65E5", Encoding::kMacRoman, false), std::nullopt);
  EXPECT_EQ(probe::data(u"a\U0001F600", Encoding::kUtf16BigEndian, false, Part::kWithoutLastUnit), std::nullopt);
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

TEST(FileUrl, OfTheRootIsTheRoot) {
  for (const Kind kind : {Kind::kUnsaid, Kind::kFile, Kind::kDirectory}) {
    EXPECT_EQ(urlText("/", kind), "file:///");
    EXPECT_EQ(urlPath("/", kind), "/");
  }
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

TEST(FileUrl, EscapesReservedCharacters) {
  EXPECT_EQ(urlText("/no/a b"), "file:///no/a%20b");
  EXPECT_EQ(urlText("/no/a#b"), "file:///no/a%23b");
  EXPECT_EQ(urlText("/no/a?b"), "file:///no/a%3Fb");
  EXPECT_EQ(urlText("/no/a%b"), "file:///no/a%25b");
  EXPECT_EQ(urlText("/no/a%41"), "file:///no/a%2541");
  EXPECT_EQ(urlText("/no/\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80"), "file:///no/%C3%A9%E6%97%A5%F0%9F%98%80");
}

TEST(FileUrl, ReturnsEveryPath) {
  for (unsigned byte = 1; byte < 0x80; ++byte) {
    const std::string path = "/no/a" + std::string(1, static_cast<char>(byte)) + "b";
    EXPECT_EQ(urlPath(path), path);
    EXPECT_EQ(urlPath(path, Kind::kFile), path);
  }
  for (const std::string& path :
       {"/no/\xC3\xA9", "/no/e\xCC\x81", "/no/\xE6\x97\xA5\xE6\x9C\xAC", "/no/\xF0\x9F\x98\x80", "//no/x", "/no//x",
        "/no/../x", "/no/./x", "/no/x/.", "/no/~", "/no/%00", "/no/%C3%A9", "/no/a&b=c;d,e@f:g"}) {
    EXPECT_EQ(urlPath(path), path);
  }
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

TEST(LastComponent, EndsAtSlashesOnly) {
  EXPECT_EQ(probe::fileUrl("/no/a\\b")->last_component, "a\\b");
  EXPECT_EQ(probe::fileUrl("/no/c:\\x")->last_component, "c:\\x");
  EXPECT_EQ(probe::fileUrl("/no/x/")->last_component, "x");
  EXPECT_EQ(probe::fileUrl("/")->last_component, "/");
  EXPECT_EQ(probe::fileUrl("/no/a b%")->last_component, "a b%");
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
