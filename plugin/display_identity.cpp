#include <ColorSync/ColorSync.h>
#include <CoreGraphics/CoreGraphics.h>

#include "base/owned_ref.h"
#include "display/display_services.h"
#include "plugin/display.h"
#include "strings/string_services.h"

namespace Display {
namespace {

const char* textOrEmpty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace

const char* GetName(std::uint32_t displayID) {
  const CFStringRef name = DisplayServices::KnownDisplayForID(displayID);
  return textOrEmpty(StringServices::CFStringRefToUTF8String(name));
}

const char* GetProfilePath(std::uint32_t displayID) {
  // Deliberately keeps the reference that comes with the URL.
  const CFURLRef url = DisplayServices::ProfilePathForDisplay(displayID);
  return textOrEmpty(StringServices::CFURLRefToPOSIXPath(url));
}

bool SetProfile(std::uint32_t displayID, const char* path) {
  return DisplayServices::SetProfileForDisplay(StringServices::POSIXPathToCFURLRef(path), displayID);
}

bool IsWideGamut(std::uint32_t displayID) {
  // Deliberately keeps the URL's reference, the profile and the colour space.
  const CFURLRef url = DisplayServices::ProfilePathForDisplay(displayID);
  if (url == nullptr) {
    return false;
  }
  const ColorSyncProfileRef profile = ColorSyncProfileCreateWithURL(url, nullptr);
  if (profile == nullptr) {
    return false;
  }
  CGColorSpaceRef space = CGColorSpaceCreateWithPlatformColorSpace(profile);
  // NOLINTNEXTLINE(clang-analyzer-osx.cocoa.RetainCount): kept, as said above
  return space != nullptr && CGColorSpaceIsWideGamutRGB(space);
}

}  // namespace Display
