#include "faults/matrix.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

namespace faults {
namespace {

using Names = std::vector<std::string>;

Names operator+(Names first, const Names& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// Groups of questions.
const Names kInstalledLists = {"ListAllInstalledProfiles", "GetInstalledProfilePathsArray"};
const Names kDisplayLists = {"ListDisplayProfiles", "GetAssociatedProfilePathsArray"};
const Names kNames = {"GetName", "GetName of display 4"};
/// Queries of ColorSync on a queue.
const Names kQueries = {"GetName of display 4", "GetProfilePath", "IsWideGamut"};
const Names kScales = {"GetScale", "GetScale of display 77"};
const Names kTags = {"ICCTagExists", "QV02Read"};

/// Null and objects of every type. (For the right type, an earlier row holds.)
const Names kNoObjectOfUse = {"failure", "a string",     "a number", "a boolean", "a URL",
                              "data",    "a dictionary", "a UUID",   "an array",  "an object"};

struct Row {
  std::string what;
  Names faults;                              ///< the faults of the row; empty for all
  Names fail;                                ///< questions that get their failure value
  std::map<std::string, std::string> get{};  ///< questions that get this result; all others get the right one
};

/// The first row that fits holds.
const std::vector<Row>& table() {
  static const std::vector<Row> rows = {
      // --- CoreFoundation
      {"CFEqual", {"failure"}, kInstalledLists + kDisplayLists + kQueries},
      {"CFEqual",  // every profile is a display's, and the first display is the sought one
       {"1"},
       {},
       {{"ListAllInstalledProfiles", "B=DIR/a.icc A=DIR/b.icc B=DIR/c.icc Printer=DIR/printer.icc"},
        {"GetInstalledProfilePathsArray", R"(["DIR/b.icc", "DIR/c.icc", "DIR/a.icc", "DIR/printer.icc"])"},
        {"GetName of display 4", R"("Device 1")"}}},
      {"CFStringGetLength",  // an empty product name sends the question to ColorSync
       {"failure", "0"},
       {},
       {{"GetName", R"("Device 1")"}}},
      {"CFStringGetLength", {}, {}, {{"GetName of display 4", R"("")"}}},  // one with a length does not
      {"CFDataGetBytePtr", {}, {"QV02Read"}},
      {"CFDataGetLength", {"failure", "0"}, {}, {{"QV02Read", R"(0 "")"}}},
      {"CFDataGetLength", {}, {"QV02Read"}},
      {"CFDictionaryCreate", {}, {"SetProfile"}},
      {"CFDictionaryCreateMutable", {}, {}},  // names are then not cached, or in the given dictionary
      {"CFDictionaryGetCount",                // too many names count as unusable ones
       {"35184372088832", "9223372036854775807"},
       {},
       {{"GetName", R"("Device 1")"}}},
      {"CFDictionaryGetCount", {}, kNames},
      {"CFDictionaryGetKeysAndValues",
       {"a string without UTF-8"},
       {},
       {{"GetName", R"("")"}, {"GetName of display 4", R"("")"}}},
      {"CFDictionaryGetKeysAndValues",
       {"a string"},
       {},
       {{"GetName", R"("another text")"}, {"GetName of display 4", R"("another text")"}}},
      {"CFDictionaryGetKeysAndValues", {}, {}, {{"GetName", R"("Device 1")"}}},
      {"CFDictionaryGetValue",  // taken for the cached name
       {"a string"},
       kInstalledLists + kDisplayLists + kQueries,
       {{"GetName", R"("another text")"}, {"GetName of display 4", R"("another text")"}}},
      {"CFDictionaryGetValue",
       {"an empty string", "a string without UTF-8"},
       kInstalledLists + kDisplayLists + kQueries,
       {{"GetName", R"("")"}, {"GetName of display 4", R"("")"}}},
      {"CFDictionaryGetValue",  // taken for the product names
       {"a dictionary"},
       kInstalledLists + kDisplayLists + kQueries,
       {{"GetName", R"("value")"}, {"GetName of display 4", R"("value")"}}},
      {"CFDictionaryGetValue", {}, kInstalledLists + kDisplayLists + kQueries + kNames},
      {"CFDictionaryGetValueIfPresent", {}, kNames},
      {"CFDictionarySetValue", {}, {}},
      {"CFNumberGetValue", {}, kNames},
      {"CFUUIDCreateString",  // all displays are then one: the name of the first is cached for the second
       {"another string", "an empty string", "a string without UTF-8"},
       {},
       {{"GetName of display 4", R"("Notebook")"}}},
      {"CFUUIDCreateString",
       {"failure"},
       kNames + kQueries,
       {{"ListDisplayProfiles", ""}}},  // nothing was listed before; the later array stays as it was
      {"CFUUIDCreateString", {}, kNames + kQueries},

      // --- CoreGraphics
      {"CGGetActiveDisplayList", {"65536", "4294967295"}, {}},  // the list itself is as long as it is
      {"CGGetActiveDisplayList", {}, {"GetIndex"}},
      {"CGGetDisplaysWithRect", {"0", "1", "65536", "4294967295"}, {}},  // the count is ignored
      {"CGGetDisplaysWithRect", {}, {"DisplayIDForWindow"}},
      {"CGDisplayBounds", {"failure"}, {"GetRect", "GetCGRect", "GetScale"}},
      {"CGDisplayBounds",
       {"no place"},
       {"GetScale"},
       {{"GetRect", "-2147483648 -2147483648 -2147483648 -2147483648"}, {"GetCGRect", "nan nan nan nan"}}},
      {"CGDisplayBounds",  // minus and plus infinity make no number
       {"everywhere"},
       {"GetScale"},
       {{"GetRect", "-2147483648 -2147483648 -2147483648 -2147483648"}, {"GetCGRect", "-inf -inf inf inf"}}},
      {"CGDisplayBounds",
       {"far away"},
       {"GetScale"},
       {{"GetRect", "-2147483648 -2147483648 -2147483648 0"}, {"GetCGRect", "1e+300 -1e+300 1e+300 1e+300"}}},
      {"CGDisplayBounds", {"inside out"}, {"GetScale"}, {{"GetRect", "10 10 5 5"}, {"GetCGRect", "10 10 -5 -5"}}},
      {"CGDisplayVendorNumber", {}, kNames},
      {"CGDisplayModelNumber", {}, kNames},
      {"CGDisplaySerialNumber", {}, kNames},
      {"CGColorSpaceCreateWithPlatformColorSpace", {}, {"IsWideGamut"}},
      {"CGColorSpaceIsWideGamutRGB", {}, {"IsWideGamut"}},
      {"CGDisplayGetDisplayIDFromUUID",
       {"2"},
       {},
       {{"GetName", R"("Größe 27″")"}, {"GetName of display 4", R"("Größe 27″")"}}},
      {"CGDisplayGetDisplayIDFromUUID", {}, kNames},
      {"CGDisplayCreateUUIDFromDisplayID",  // a UUID of no display
       {"another UUID"},
       kNames + kQueries + kDisplayLists + Names{"SetProfile"}},
      {"CGDisplayCreateUUIDFromDisplayID",  // the array is still that of the display listed last
       {},
       kNames + kQueries + Names{"ListDisplayProfiles", "SetProfile"}},

      // --- ColorSync
      {"ColorSyncIterateDeviceProfiles", {}, kDisplayLists + kQueries},
      {"ColorSyncDeviceSetCustomProfiles", {"1"}, {}},
      {"ColorSyncDeviceSetCustomProfiles", {}, {"SetProfile"}},
      {"ColorSyncIterateInstalledProfiles", {}, kInstalledLists},
      {"ColorSyncProfileCreateWithURL", {}, kTags + Names{"IsWideGamut"}},
      {"ColorSyncProfileCopyTag", {"other data"}, {}, {{"QV02Read", "0 \"" + std::string(8, '\0') + '"'}}},
      {"ColorSyncProfileCopyTag", {"no data", "little data"}, {}, {{"QV02Read", R"(0 "")"}}},
      {"ColorSyncProfileCopyTag", {}, kTags},

      // --- AppKit
      {"NSScreen_screens", {}, {"GetScale"}},
      {"NSScreen_mainScreen", {}, {"GetScale of display 77"}},
      {"NSScreen_frame", {}, {"GetScale"}},
      {"NSScreen_backingScaleFactor", {"failure"}, {}, {{"GetScale", "0"}, {"GetScale of display 77", "0"}}},
      {"NSScreen_backingScaleFactor", {"scale 0.500000"}, {}, {{"GetScale", "0.5"}, {"GetScale of display 77", "0.5"}}},
      {"NSScreen_backingScaleFactor", {"scale -1.000000"}, {}, {{"GetScale", "-1"}, {"GetScale of display 77", "-1"}}},
      {"NSScreen_backingScaleFactor", {"scale nan"}, {}, {{"GetScale", "nan"}, {"GetScale of display 77", "nan"}}},
      {"NSScreen_backingScaleFactor", {"scale inf"}, {}, {{"GetScale", "inf"}, {"GetScale of display 77", "inf"}}},

      // --- IOKit
      {"IOServiceMatching", {}, kNames},
      {"IOServiceGetMatchingServices", {}, kNames},
      {"IOIteratorNext", {}, kNames},
      {"IOObjectRelease", {}, {}},
      {"IODisplayCreateInfoDictionary", {}, kNames},

      // --- libdispatch
      {"dispatch_queue_create", {}, kQueries},
      {"dispatch_async", {}, kQueries},

      // --- keys of ColorSync's and IOKit's dictionaries
      {"DeviceClass", {}, kDisplayLists + kQueries},
      {"DeviceID", {}, kDisplayLists + kQueries},
      {"DeviceDescription", {"an empty string", "a string without UTF-8"}, {}, {{"GetName of display 4", R"("")"}}},
      {"DeviceDescription", {}, kQueries},
      {"ProfileIsDefault", {}, kQueries},
      {"ProfileIsCurrent", {}, kQueries},
      {"ProfileURL", {}, kDisplayLists + kQueries},
      {"ProfileClass", {}, kInstalledLists},
      {"ProfileDescription",
       {"an empty string"},
       {},
       {{"ListAllInstalledProfiles", "=DIR/a.icc =DIR/b.icc =DIR/c.icc"},
        {"GetInstalledProfilePathsArray", R"(["DIR/a.icc", "DIR/b.icc", "DIR/c.icc"])"}}},
      {"ProfileDescription", {}, kInstalledLists},
      {"InstalledURL", {}, kInstalledLists},
      {"VendorID", {}, kNames},
      {"ProductID", {}, kNames},
      {"SerialNumber", {}, kNames},
      {"ProductName", {"a dictionary by language"}, {}, {{"GetName", R"("Device 1")"}}},
      {"ProductName",
       {"a string without UTF-8 by language"},
       {},
       {{"GetName", R"("")"}, {"GetName of display 4", R"("")"}}},
      {"ProductName", {"missing", "an empty dictionary"}, kNames},
      {"ProductName", kNoObjectOfUse, kNames},
      {"ProductName", {}, {}, {{"GetName", R"("Device 1")"}}},
      {"DeviceEntry", {}, kDisplayLists + kQueries},
      {"InstalledEntry", {}, kInstalledLists},
      {"Info", {}, kNames},

      // --- messages to Foundation's objects
      {"UTF8String",
       {"null"},
       kInstalledLists + kDisplayLists,
       {{"GetName", R"("")"}, {"GetName of display 4", R"("")"}, {"GetProfilePath", R"("")"}}},
      {"UTF8String",  // one path for all: the first profile has it
       {"an empty text"},
       {},
       {{"GetName", R"("")"},
        {"GetName of display 4", R"("")"},
        {"GetProfilePath", R"("")"},
        {"ListAllInstalledProfiles", "="},
        {"ListDisplayProfiles", "="},
        {"GetInstalledProfilePathsArray", R"([""])"},
        {"GetAssociatedProfilePathsArray", R"([""])"}}},
      {"UTF8String",
       {"invalid UTF-8"},
       {},
       {{"GetName", "\"\xFF\xFE\xC0\""},
        {"GetName of display 4", "\"\xFF\xFE\xC0\""},
        {"GetProfilePath", "\"\xFF\xFE\xC0\""},
        {"ListAllInstalledProfiles", "\xFF\xFE\xC0=\xFF\xFE\xC0"},
        {"ListDisplayProfiles", "=\xFF\xFE\xC0"},
        {"GetInstalledProfilePathsArray", "[\"\xFF\xFE\xC0\"]"},
        {"GetAssociatedProfilePathsArray", "[\"\xFF\xFE\xC0\"]"}}},
      {"path",
       {"an empty string"},
       {"GetProfilePath"},
       {{"ListAllInstalledProfiles", "B="},
        {"ListDisplayProfiles", "="},
        {"GetInstalledProfilePathsArray", R"([""])"},
        {"GetAssociatedProfilePathsArray", R"([""])"}}},
      {"path", {}, kInstalledLists + kDisplayLists + Names{"GetProfilePath"}},
      {"stringWithUTF8String:", {"an empty string"}, kTags},  // SetProfile leaves the path to ColorSync
      {"stringWithUTF8String:", {}, kTags + Names{"SetProfile"}},
      {"fileURLWithPath:", {"another URL"}, kTags},
      {"fileURLWithPath:", {}, kTags + Names{"SetProfile"}},

      // --- entries of the host
      {"REALBuildStringWithEncoding",
       {},
       {},
       {{"ListAllInstalledProfiles", "= = ="},
        {"ListDisplayProfiles", "= ="},
        {"GetName", "nil"},
        {"GetName of display 4", "nil"},
        {"GetProfilePath", "nil"},
        {"GetInstalledProfilePathsArray", "[nil, nil, nil]"},
        {"GetAssociatedProfilePathsArray", "[nil, nil]"},
        {"QV02Read", "0 nil"}}},
      {"StringGetCString", {"an empty text", "a long text"}, kTags},
      {"StringGetCString", {}, kTags + Names{"SetProfile"}},
      {"REALLoadGlobalMethod", {}, {}},  // no method reads a length
      {"REALUnlockString", {}, {}},
      {"REALLoadObjectMethod", {}, {"ListAllInstalledProfiles", "ListDisplayProfiles"}},
      {"RuntimeArrayCreateSingleDimBoundedArray",
       {},
       {},
       {{"GetInstalledProfilePathsArray", "nil"}, {"GetAssociatedProfilePathsArray", "nil"}}},
      {"PluginStringArrayInsertProc", {}, {"GetInstalledProfilePathsArray", "GetAssociatedProfilePathsArray"}},
  };
  return rows;
}

bool has(const Names& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

const Row& rowFor(const std::string& what, const std::string& fault) {
  for (const Row& row : table()) {
    if (row.what == what && (row.faults.empty() || has(row.faults, fault))) {
      return row;
    }
  }
  throw std::runtime_error("expectations.cpp has no row for " + what + ": " + fault);
}

std::set<std::string> pieces(const std::string& text) {
  std::set<std::string> result;
  std::string piece;
  for (const char letter : text + ' ') {
    if (std::string_view(" =[],\"").find(letter) == std::string_view::npos) {
      piece += letter;
    } else if (!piece.empty()) {
      result.insert(std::exchange(piece, {}));
    }
  }
  return result;
}

bool isMadeOfPieces(const Question& question) {
  return has(kInstalledLists + kDisplayLists + kNames + kScales + Names{"GetProfilePath"}, question.name);
}

/// From the sample objects, ColorSync's descriptions, and the scales of the screens.
const std::set<std::string>& commonPieces() {
  static const std::set<std::string> common = pieces("another text /another/file value Device 1 2 3 4 5 1.5 1.75 2.25");
  return common;
}

}  // namespace

bool takesForeverAtEveryCall(const std::string& what, const std::string& fault) {
  return what == "CGGetActiveDisplayList" && fault == "4294967295";
}

std::string failureValue(const Question& question) {
  static const std::map<std::string, std::string> values = {
      {"ListAllInstalledProfiles", ""},
      {"ListDisplayProfiles", ""},
      {"GetName", R"("UNKNOWN")"},
      {"GetName of display 4", R"("UNKNOWN")"},
      {"GetRect", "0 0 0 0"},
      {"GetCGRect", "0 0 0 0"},
      {"GetProfilePath", R"("")"},
      {"GetIndex", "4099018739"},
      {"GetScale", "1.25"},  // the main screen's
      {"GetScale of display 77", "0"},
      {"SetProfile", "False"},
      {"DisplayIDForWindow", "0"},
      {"GetInstalledProfilePathsArray", "[]"},
      {"GetAssociatedProfilePathsArray", "[]"},
      {"ICCTagExists", "False"},
      {"QV02Read", R"(466 "")"},
      {"IsWideGamut", "False"},
  };
  const auto value = values.find(question.name);
  return value != values.end() ? value->second : question.right;
}

std::string expected(const std::string& what, const std::string& fault, const Question& question) {
  const Row& row = rowFor(what, fault);
  const auto special = row.get.find(question.name);
  if (special != row.get.end()) {
    return special->second;
  }
  return has(row.fail, question.name) ? failureValue(question) : question.right;
}

bool mayComeOnce(const std::string& got, const std::string& what, const std::string& fault, const Question& question) {
  const std::string always = expected(what, fault, question);
  if (got == question.right || got == failureValue(question) || got == always) {
    return true;
  }
  if (question.name == "DisplaysChanged") {  // two lists are compared, and one of them was another
    return got == "True";
  }
  if (!isMadeOfPieces(question)) {
    return false;
  }
  std::set<std::string> known = commonPieces();
  known.merge(pieces(question.right));
  known.merge(pieces(always));
  const std::set<std::string> found = pieces(got);
  return std::includes(known.begin(), known.end(), found.begin(), found.end());
}

std::set<std::string> expectedSubjects() {
  std::set<std::string> subjects;
  for (const Row& row : table()) {
    subjects.insert(row.what);
  }
  return subjects;
}

}  // namespace faults
