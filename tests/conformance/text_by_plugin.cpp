#include <cstdio>

#include "conformance/text.h"
#include "platform/frameworks/Foundation/autorelease_pool.h"
#include "strings/string_services.h"

namespace conformance {

using platform::ScopedPool;

String decode(const std::string& utf8) {
  const ScopedPool pool;
  const CFStringRef made = StringServices::UTF8StringToCFString(utf8.c_str());
  return String::adopt(made != nullptr ? static_cast<CFStringRef>(CFRetain(made)) : nullptr);
}

std::optional<std::string> encode(CFStringRef string) {
  const ScopedPool pool;
  const char* const utf8 = StringServices::CFStringRefToUTF8String(string);
  return utf8 != nullptr ? std::optional<std::string>(utf8) : std::nullopt;
}

std::optional<Bytes> convert(CFStringRef string, Encoding encoding) {
  const ScopedPool pool;
  const CFDataRef data = encoding == Encoding::kUtf16BigEndian ? StringServices::CFStringRefToUTF16BE(string)
                         : encoding == Encoding::kLossyAscii   ? StringServices::CFStringRefToASCII(string)
                                                               : StringServices::CFStringRefToMac(string);
  if (data == nullptr) {
    return std::nullopt;
  }
  const UInt8* const bytes = CFDataGetBytePtr(data);
  return Bytes(bytes, bytes + CFDataGetLength(data));
}

bool contains(CFStringRef text, CFStringRef part) {
  const ScopedPool pool;
  return StringServices::CFStringRefContains(text, part);
}

std::string lastComponent(CFURLRef url) {
  const ScopedPool pool;
  return encode(StringServices::LastPathComponent(url)).value_or("(none)");
}

bool differsOnPlatform(const char* reason) {
#ifdef __APPLE__
  static_cast<void>(reason);
  return false;
#else
  std::printf("platform/ differs: %s\n", reason);
  return true;
#endif
}

}  // namespace conformance
