// Everything that platform/include and the macOS build's own Foundation declare is asserted in
// framework_declarations.cpp, and tests/conformance uses what they declare of CoreFoundation.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Names = std::set<std::string>;

std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string withoutComments(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    result += line.substr(0, line.find("//")) + '\n';
  }
  return result;
}

void addMatches(const std::string& text, const std::regex& pattern, Names& names) {
  for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match) {
    names.insert((*match)[1]);
  }
}

/// Removes the matches of `pattern` and returns their first groups.
std::vector<std::string> takeOut(std::string& text, const std::regex& pattern) {
  std::vector<std::string> groups;
  for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match) {
    groups.push_back((*match)[1]);
  }
  text = std::regex_replace(text, pattern, ";");
  return groups;
}

/// Macros that only spell declarations; Apple's headers have their own.
bool isHeaderMachinery(const std::string& macro) { return macro.starts_with("CF_EX") || macro.starts_with("_NS"); }

/// The names that a header of ours declares: macros, enumerators, struct members, types, functions, variables,
/// messages.
Names namesDeclaredIn(const std::string& header) {
  Names names;
  std::string text = withoutComments(header);

  Names macros;
  addMatches(text, std::regex(R"(#define\s+(\w+))"), macros);
  std::copy_if(macros.begin(), macros.end(), std::inserter(names, names.end()),
               [](const std::string& macro) { return !isHeaderMachinery(macro); });
  text = std::regex_replace(text, std::regex(R"([ \t]*#[^\n]*)"), "");
  text = std::regex_replace(text, std::regex(R"(\bCF_EXTERN_C_(BEGIN|END)\b)"), "");
  text = std::regex_replace(text, std::regex(R"(__attribute__\(\([^)]*\)\))"), "");

  // A class: its instance variables are private, its messages are public.
  for (const std::string& body : takeOut(text, std::regex(R"(@interface\s+((.|\n)*?)@end)"))) {
    addMatches(body, std::regex(R"(^(\w+))", std::regex::multiline), names);
    addMatches(body, std::regex(R"([-+]\s*\([^)]*\)\s*(\w+))"), names);
  }
  addMatches(text, std::regex(R"(\benum\s+(\w+))"), names);
  addMatches(text, std::regex(R"(\}\s*(\w+)\s*;)"), names);
  for (const std::string& body : takeOut(text, std::regex(R"(\benum\b[^{;]*\{([^}]*)\}[^;]*;)"))) {
    addMatches(body, std::regex(R"((\w+)\s*=)"), names);
  }
  addMatches(text, std::regex(R"(\bstruct\s+(\w+)\s*\{)"), names);
  for (const std::string& body : takeOut(text, std::regex(R"(\bstruct\b[^{;()]*\{([^}]*)\}[^;]*;)"))) {
    addMatches(body, std::regex(R"((\w+)\s*[,;])"), names);
  }
  addMatches(text, std::regex(R"(\bstatic inline\s[^(;{]*?(\w+)\s*\()"), names);
  text = std::regex_replace(text, std::regex(R"(\bstatic inline\b[^{]*\{[^}]*\})"), "");

  addMatches(text, std::regex(R"(\btypedef\s[^;(]*?(\w+)\s*;)"), names);
  addMatches(text, std::regex(R"(\btypedef\s[^;(]*\([*^]\s*(\w+)\s*\))"), names);
  text = std::regex_replace(text, std::regex(R"(\btypedef\s[^;]*;)"), "");
  addMatches(text, std::regex(R"(\bCF_EXPORT\s[^;(]*?(\w+)\s*;)"), names);
  addMatches(text, std::regex(R"((\w+)\s*\([^;()]*\)\s*;)"), names);
  return names;
}

Names wordsOf(const std::string& code) {
  Names words;
  addMatches(withoutComments(code), std::regex(R"((\w+))"), words);
  return words;
}

TEST(DeclaredNames, AreOfEveryKind) {
  const std::string header = R"(
// A comment that names CommentedOut( is not read.
#define CF_EXPORT extern
#define kMacro "text"
CF_EXTERN_C_BEGIN
typedef unsigned int Plain;
typedef const struct __Opaque* OpaqueRef;
typedef bool (*Callback)(int parameter);
typedef void (^Block)(void);
typedef enum Kind : int { kOne = 1, kTwo = 2 } Kind;
enum { kAlone = 7 };
typedef struct { int first, second; Plain third; } Record;
struct Tagged { double inside; };
static inline int twice(int number) { return number * 2; }
CF_EXPORT const OpaqueRef kVariable;
CF_EXPORT OpaqueRef CreateIt(int first,
                             Callback callback) __attribute__((nothrow));
CF_EXTERN_C_END
void* withoutExport(const void* block);
@interface Thing : NSObject {
  int _hidden;
}
+ (Thing*)mainThing;
- (double)factor;
@end
)";
  EXPECT_THAT(namesDeclaredIn(header),
              testing::ElementsAre("Block", "Callback", "CreateIt", "Kind", "OpaqueRef", "Plain", "Record", "Tagged",
                                   "Thing", "factor", "first", "inside", "kAlone", "kMacro", "kOne", "kTwo",
                                   "kVariable", "mainThing", "second", "third", "twice", "withoutExport"));
}

TEST(FrameworkDeclarations, AssertEveryDeclaredName) {
  const Names asserted = wordsOf(readFile(FRAMEWORK_DECLARATIONS));
  ASSERT_TRUE(asserted.contains("CFEqual"));
  Names names;
  for (const char* folder : {PLATFORM_INCLUDE, MACOS_FOUNDATION}) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (entry.is_regular_file()) {
        names.merge(namesDeclaredIn(readFile(entry.path())));
      }
    }
  }
  EXPECT_THAT(names, testing::IsSupersetOf({"CFRelease", "CGRect", "kColorSyncProfileURL", "NSScreen", "dispatch_async",
                                            "IOIteratorNext", "kCGErrorSuccess", "byte15", "kDisplayProductName",
                                            "ISOCountryCodes"}));
  Names missing;
  std::set_difference(names.begin(), names.end(), asserted.begin(), asserted.end(),
                      std::inserter(missing, missing.end()));
  EXPECT_THAT(missing, testing::IsEmpty());
}

TEST(ConformanceCases, UseEveryFunctionAndConstantOfCoreFoundation) {
  const std::string header = readFile(PLATFORM_INCLUDE "/CoreFoundation/CoreFoundation.h");
  Names called;
  addMatches(withoutComments(header), std::regex(R"(\b(\w+)\()"), called);
  // The open-source CoreFoundation does not declare the first two; CFSTR calls the third.
  Names used = {"CFAutorelease", "CFGetRetainCount", "__CFStringMakeConstantString"};
  for (const auto& entry : std::filesystem::directory_iterator(CONFORMANCE)) {
    used.merge(wordsOf(readFile(entry.path())));
  }
  Names missing;
  for (const std::string& name : namesDeclaredIn(header)) {
    if ((called.contains(name) || name.starts_with("k")) && !used.contains(name)) {
      missing.insert(name);
    }
  }
  EXPECT_THAT(missing, testing::IsEmpty());
}

}  // namespace
