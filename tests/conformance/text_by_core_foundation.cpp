#include <cstring>

#include "conformance/text.h"

namespace conformance {

String decode(const std::string& utf8) {
  return String::adopt(CFStringCreateWithCString(kCFAllocatorDefault, utf8.c_str(), kCFStringEncodingUTF8));
}

std::optional<std::string> encode(CFStringRef string) { return textOf(string); }

// As dataUsingEncoding:allowLossyConversion: does.
std::optional<Bytes> convert(CFStringRef string, Encoding encoding) {
  const CFRange all = CFRangeMake(0, CFStringGetLength(string));
  const CFStringEncoding number = encoding == Encoding::kUtf16BigEndian ? kCFStringEncodingUTF16BE
                                  : encoding == Encoding::kLossyAscii   ? kCFStringEncodingASCII
                                                                        : kCFStringEncodingMacRoman;
  const UInt8 substitute = encoding == Encoding::kUtf16BigEndian ? 0 : encoding == Encoding::kLossyAscii ? 0xFF : '?';
  CFIndex size = 0;
  if (CFStringGetBytes(string, all, number, substitute, true, nullptr, 0, &size) != all.length) {
    return std::nullopt;
  }
  Bytes bytes(static_cast<std::size_t>(size));
  CFStringGetBytes(string, all, number, substitute, true, bytes.data(), size, &size);
  return bytes;
}

// As containsString: and rangeOfString: do.
bool contains(CFStringRef text, CFStringRef part) {
  return CFStringFindWithOptions(text, part, CFRangeMake(0, CFStringGetLength(text)), kCFCompareNonliteral, nullptr) !=
         0;
}

std::string lastComponent(CFURLRef url) {
  return textOf(String::adopt(CFURLCopyLastPathComponent(url)).get()).value_or("(none)");
}

bool differsOnPlatform(const char*) { return false; }

}  // namespace conformance
