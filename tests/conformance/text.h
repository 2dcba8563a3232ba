// What the plugin does with texts and URLs by messages to Foundation's objects. In a process with Objective-C, these
// are the plugin's own functions (text_by_plugin.cpp); elsewhere the CoreFoundation functions behind these messages
// (text_by_core_foundation.cpp). Any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "conformance/objects.h"

namespace conformance {

enum class Encoding { kUtf16BigEndian, kLossyAscii, kLossyMacRoman };

using Bytes = std::vector<std::uint8_t>;

/// Null for invalid UTF-8. The text ends before the first NUL.
String decode(const std::string& utf8);
/// Nullopt when the string has no UTF-8.
std::optional<std::string> encode(CFStringRef string);
/// Nullopt when the string cannot be converted.
std::optional<Bytes> convert(CFStringRef string, Encoding encoding);
bool contains(CFStringRef text, CFStringRef part);
std::string lastComponent(CFURLRef url);

/// True over platform/, where the rest of the test expects a different result for this reason, which is printed.
bool differsOnPlatform(const char* reason);

}  // namespace conformance
