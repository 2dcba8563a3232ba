// Foundation's own results, for tests of its replaced methods. Each function has an autorelease pool of its
// own.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace probe {

// --- strings

enum class Search { kPlain, kOptions, kOptionsAndRange };
/// The location from rangeOfString: and its longer forms; nullopt for NSNotFound.
std::optional<std::size_t> locationOf(const std::string& part, const std::string& text, Search search);

/// What stringWithUTF8String: makes of the bytes before the first NUL, as UTF-16; nothing for nil.
std::optional<std::u16string> decoded(const std::string& utf8);

/// Foundation makes no string whose surrogates do not come in pairs, but a part of a string may be one.
enum class Part { kAll, kWithoutFirstUnit, kWithoutLastUnit };

enum class Encoding { kAscii, kMacRoman, kUtf8, kUtf16BigEndian };
std::optional<std::vector<std::uint8_t>> data(const std::u16string& text, Encoding encoding, bool lossy,
                                              Part part = Part::kAll);

// --- file URLs

enum class Kind { kUnsaid, kFile, kDirectory };

struct FileUrl {
  std::string text;  ///< absoluteString
  std::string path;
  std::string last_component;
};

/// fileURLWithPath: or, with a kind, fileURLWithPath:isDirectory:; nullopt for nil.
std::optional<FileUrl> fileUrl(const std::string& path, Kind kind = Kind::kUnsaid);
/// True when both return a URL for this part of a path.
bool makesFileUrl(const std::u16string& path, Part part);

// --- the system's version

bool systemIsAtLeast(long major, long minor, long patch);

// --- pools and threads

/// An object, not owned, that adds one to `*deaths` when it dies. It was autoreleased into the current pool.
void autoreleaseCounter(int* deaths);

/// A number that holds `value` as this type.
CFNumberRef createNumber(unsigned long long value);
/// An object of no CoreFoundation type.
CFTypeRef createOtherObject();

}  // namespace probe
