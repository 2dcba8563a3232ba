#include "profile/platform_text.h"

#include <array>
#include <limits>
#include <memory>
#include <new>

#include "base/owned_ref.h"

namespace ProfileServices {

std::optional<std::string> utf8Text(CFTypeRef string) {
  if (string == nullptr || CFGetTypeID(string) != CFStringGetTypeID()) {
    return std::nullopt;
  }
  const auto text = static_cast<CFStringRef>(string);
  const CFIndex most = CFStringGetMaximumSizeForEncoding(CFStringGetLength(text), kCFStringEncodingUTF8);
  if (most < 0 || most == std::numeric_limits<CFIndex>::max()) {
    return std::nullopt;
  }
  const CFIndex size = most + 1;
  std::array<char, 1024> small;
  std::unique_ptr<char[]> large;
  char* buffer = small.data();
  if (size > static_cast<CFIndex>(small.size())) {
    large.reset(new (std::nothrow) char[static_cast<std::size_t>(size)]);
    buffer = large.get();
  }
  if (buffer == nullptr || !CFStringGetCString(text, buffer, size, kCFStringEncodingUTF8)) {
    return std::nullopt;
  }
  return std::string(buffer);
}

std::optional<std::string> posixPath(CFTypeRef url) {
  if (url == nullptr || CFGetTypeID(url) != CFURLGetTypeID()) {
    return std::nullopt;
  }
  const auto path =
      OwnedRef<CFStringRef>::adopt(CFURLCopyFileSystemPath(static_cast<CFURLRef>(url), kCFURLPOSIXPathStyle));
  return utf8Text(path.get());
}

}  // namespace ProfileServices
