// File URLs and their paths.
#include <gmock/gmock.h>

#include "conformance/text.h"

namespace conformance {
namespace {

std::string urlText(const std::string& path, bool is_directory = false) {
  const Url url = makeFileUrl(path, is_directory);
  return url ? textOf(CFURLGetString(url.get())).value_or("(none)") : "(null)";
}

std::string urlPath(const std::string& path, bool is_directory = false) {
  const Url url = makeFileUrl(path, is_directory);
  return url ? textOf(String::adopt(CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle)).get()).value_or("(none)")
             : "(null)";
}

TEST(FileUrl, IsADirectoryWhenTheCallerRequestsIt) {
  EXPECT_EQ(urlText("/tmp"), "file:///tmp");
  EXPECT_EQ(urlText("/tmp", true), "file:///tmp/");
  EXPECT_EQ(urlText("/no/such/x"), "file:///no/such/x");
  EXPECT_EQ(urlText("/no/such/x", true), "file:///no/such/x/");
}

TEST(FileUrl, HasNoTrailingSlashUnlessADirectory) {
  EXPECT_EQ(urlText("/no/x/"), "file:///no/x");
  EXPECT_EQ(urlText("/no/x/", true), "file:///no/x/");
  EXPECT_EQ(urlText("/no/x//"), "file:///no/x");
  EXPECT_EQ(urlText("/no/x//", true), "file:///no/x//");
}

TEST(FileUrl, OfTheRootIsTheRoot) {
  for (const bool is_directory : {false, true}) {
    EXPECT_EQ(urlText("/", is_directory), "file:///");
    EXPECT_EQ(urlPath("/", is_directory), "/");
  }
}

TEST(FileUrl, KeepsDotsAndDoubleSlashes) {
  EXPECT_EQ(urlText("/no/../x"), "file:///no/../x");
  EXPECT_EQ(urlText("/no/./x"), "file:///no/./x");
  EXPECT_EQ(urlText("//no//x"), "file:////no//x");
  EXPECT_EQ(urlText("/~"), "file:///~");
}

TEST(FileUrl, EscapesBlanksAndReservedCharacters) {
  EXPECT_EQ(urlText("/no/a b"), "file:///no/a%20b");
  EXPECT_EQ(urlText("/no/a%b"), "file:///no/a%25b");
  EXPECT_EQ(urlText("/no/a%41"), "file:///no/a%2541");
  EXPECT_EQ(urlText("/no/a#b?c"), "file:///no/a%23b%3Fc");
  EXPECT_EQ(urlText("/no/a\"<>\\^`{|}"), "file:///no/a%22%3C%3E%5C%5E%60%7B%7C%7D");
  EXPECT_EQ(urlText("/no/\t\x01\x7F"), "file:///no/%09%01%7F");
}

TEST(FileUrl, KeepsUnreservedCharacters) {
  EXPECT_EQ(urlText("/no/-._~!$&'()*+,=:@09AZaz"), "file:///no/-._~!$&'()*+,=:@09AZaz");
}

TEST(FileUrl, EscapesSemicolonsAndBrackets) {
  EXPECT_EQ(urlText("/no/a;b"), "file:///no/a%3Bb");
  EXPECT_EQ(urlText("/no/a[b]"), "file:///no/a%5Bb%5D");
}

TEST(FileUrl, EscapesTheUtf8OfOtherCharacters) {
  EXPECT_EQ(urlText("/no/\u65E5\U0001F600"), "file:///no/%E6%97%A5%F0%9F%98%80");
  EXPECT_EQ(urlText("/no/e\u0301"), "file:///no/e%CC%81");
}

// Apple's file systems keep decomposed names; elsewhere a decomposed name is another name.
TEST(FileUrl, DecomposesAccentedCharactersOnAMacOnly) {
#ifdef __APPLE__
  EXPECT_EQ(urlText("/no/\u00E9"), "file:///no/e%CC%81");
#else
  EXPECT_EQ(urlText("/no/\u00E9"), "file:///no/%C3%A9");
#endif
}

TEST(FileUrl, ReturnsItsPath) {
  for (unsigned byte = 1; byte < 0x80; ++byte) {
    const std::string path = "/no/a" + std::string(1, static_cast<char>(byte)) + "b";
    EXPECT_EQ(urlPath(path), path);
    EXPECT_EQ(urlPath(path, true), path);
  }
  for (const std::string path : {"/no/e\u0301", "/no/\u65E5\u672C", "/no/\U0001F600", "//no/x", "/no//x", "/no/../x",
                                 "/no/./x", "/no/x/.", "/no/~", "/no/%00", "/no/%C3%A9", "/no/a&b=c;d,e@f:g"}) {
    EXPECT_EQ(urlPath(path), path);
  }
}

TEST(FileUrl, ReturnsThePathWithoutATrailingSlash) {
  EXPECT_EQ(urlPath("/no/x/"), "/no/x");
  EXPECT_EQ(urlPath("/no/x", true), "/no/x");
  EXPECT_EQ(urlPath("/no/x/", true), "/no/x");
  EXPECT_EQ(urlPath("/no/x//", true), "/no/x/");
}

TEST(FileUrl, IsNullForTheEmptyPath) {
  EXPECT_EQ(urlText(""), "(null)");
  EXPECT_EQ(urlText("", true), "(null)");
}

TEST(FileUrl, KeepsARelativePath) {
  if (differsOnPlatform("GNUstep's URLs have no base, so a relative path starts at the current directory at once")) {
    EXPECT_TRUE(urlText("no/such x").ends_with("/no/such%20x"));
    EXPECT_TRUE(urlText("no/such x").starts_with("file:///"));
    return;
  }
  EXPECT_EQ(urlText("no/such x"), "no/such%20x");
}

TEST(FileUrl, EqualsAUrlOfTheSameText) {
  EXPECT_TRUE(CFEqual(makeFileUrl("/a b").get(), makeFileUrl("/a b").get()));
  EXPECT_TRUE(CFEqual(makeFileUrl("/a/").get(), makeFileUrl("/a").get()));
  EXPECT_FALSE(CFEqual(makeFileUrl("/a").get(), makeFileUrl("/a", true).get()));
  EXPECT_FALSE(CFEqual(makeFileUrl("/a").get(), makeFileUrl("/A").get()));
}

TEST(LastComponent, IsUnescapedText) {
  EXPECT_EQ(lastComponent(makeFileUrl("/no/a b%41").get()), "a b%41");
  EXPECT_EQ(lastComponent(makeFileUrl("/no/\u65E5").get()), "\u65E5");
  EXPECT_EQ(lastComponent(makeFileUrl("/no/c:\\x").get()), "c:\\x");
  EXPECT_EQ(lastComponent(makeFileUrl("/no/x#y?z").get()), "x#y?z");
}

TEST(LastComponent, IgnoresOneTrailingSlash) {
  EXPECT_EQ(lastComponent(makeFileUrl("/no/x/").get()), "x");
  EXPECT_EQ(lastComponent(makeFileUrl("/no/x", true).get()), "x");
  EXPECT_EQ(lastComponent(makeFileUrl("/no/..").get()), "..");
}

TEST(LastComponent, OfTheRootIsASlash) {
  EXPECT_EQ(lastComponent(makeFileUrl("/").get()), "/");
  EXPECT_EQ(lastComponent(makeFileUrl("/", true).get()), "/");
}

}  // namespace
}  // namespace conformance
