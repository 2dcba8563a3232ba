// ColorSync: installed profiles, and the tags of one profile.
#include <ColorSync/ColorSync.h>

#import <Foundation/Foundation.h>

#include <optional>
#include <string>

#include "desktop/current.h"
#include "desktop/icc/icc_profile.h"
#include "frameworks/ColorSync/color_profile.h"
#include "frameworks/ColorSync/profile_entry.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/Foundation/utf8_objects.h"
#include "frameworks/hooks/answers.h"
#include "frameworks/hooks/calls.h"

using platform::ScopedPool;
using platform::calls::Call;
using platform::desktop::InstalledProfile;
namespace calls = platform::calls;

namespace {

/// Null for text that is absent or is not UTF-8.
NSString* newString(const std::optional<std::string>& text) { return text ? platform::newString(*text) : nil; }

NSString* newClass(const std::optional<std::string>& profile_class) {
  // Nearly every profile is a display's, and is recognised by the reference alone.
  return profile_class == "mntr" ? [(NSString*)kColorSyncSigDisplayClass retain] : newString(profile_class);
}

NSURL* newUrl(const std::optional<std::string>& path) { return path ? platform::newFileUrl(*path) : nil; }

/// One entry's keys and values; what is absent, or cannot be made, is left out. The caller releases.
NSDictionary* newEntry(const InstalledProfile& profile) {
  const ScopedPool pool;
  NSString* const profile_class = [newClass(profile.profile_class) autorelease];
  NSString* const description = [newString(profile.description) autorelease];
  NSURL* const url = [newUrl(profile.path) autorelease];
  return [[PlatformProfileEntry alloc] initWithClass:profile_class description:description url:url];
}

void releaseEntry(const void* entry) { [static_cast<id>(const_cast<void*>(entry)) release]; }

/// Has somebody look at an entry, which is kept for the next walk where there is a place for it.
template <typename Look>
bool showEntry(const InstalledProfile& profile, Look look) {
  if (profile.kept == nullptr) {
    NSDictionary* const entry = newEntry(profile);
    const bool goes_on = look(reinterpret_cast<CFDictionaryRef>(entry));
    [entry release];
    return goes_on;
  }
  const void* entry = profile.kept->get();
  if (entry == nullptr) {
    entry = profile.kept->put(newEntry(profile), releaseEntry);
  }
  return look(static_cast<CFDictionaryRef>(entry));
}

/// Empty for what is no file URL.
std::string pathOf(CFURLRef reference) {
  auto* const url = (NSURL*)reference;
  if (![url isKindOfClass:[NSURL class]] || ![url isFileURL]) {
    return {};
  }
  const ScopedPool pool;
  const char* const path = [[url path] UTF8String];
  return path != nullptr ? path : "";
}

/// Nothing unless the signature is four ASCII characters.
std::optional<std::uint32_t> signatureOf(CFStringRef reference) {
  constexpr NSUInteger kLength = 4;
  auto* const text = (NSString*)reference;
  if (![text isKindOfClass:[NSString class]] || [text length] != kLength) {
    return std::nullopt;
  }
  std::uint32_t signature = 0;
  for (NSUInteger i = 0; i < kLength; ++i) {
    const unichar character = [text characterAtIndex:i];
    if (character >= 0x80) {
      return std::nullopt;
    }
    signature = signature << 8 | character;
  }
  return signature;
}

}  // namespace

extern "C" {

// NOLINTNEXTLINE(clang-analyzer-osx.coreFoundation.CFError): the result is Apple's
void ColorSyncIterateInstalledProfiles(ColorSyncProfileIterateCallback callBack, uint32_t*, void* userInfo,
                                       CFErrorRef*) {
  const calls::Answer answer = calls::answer(Call::ColorSyncIterateInstalledProfiles);
  if (answer.fail || callBack == nullptr) {
    return;
  }
  platform::desktop::current()->visitInstalledProfiles([=](const InstalledProfile& profile) {
    return showEntry(profile, [=](CFDictionaryRef entry) {
      return platform::showEntry(answer.edit, entry, [=](CFDictionaryRef shown) { return callBack(shown, userInfo); });
    });
  });
}

ColorSyncProfileRef ColorSyncProfileCreateWithURL(CFURLRef url, CFErrorRef*) {
  const auto answer = calls::answer(Call::ColorSyncProfileCreateWithURL);
  if (const auto object = platform::retainedAnswer<ColorSyncProfileRef>(answer)) {
    return *object;
  }
  if (url == nullptr) {
    return nullptr;
  }
  const std::string path = pathOf(url);
  if (path.empty()) {
    return nullptr;
  }
  return reinterpret_cast<ColorSyncProfileRef>([[PlatformColorProfile alloc] initWithPath:path]);
}

CFDataRef ColorSyncProfileCopyTag(ColorSyncProfileRef profile, CFStringRef signature) {
  if (const auto object = platform::retainedAnswer<CFDataRef>(calls::answer(Call::ColorSyncProfileCopyTag))) {
    return *object;
  }
  if (profile == nullptr || signature == nullptr) {
    return nullptr;
  }
  auto* const opened = (PlatformColorProfile*)profile;
  const std::optional<std::uint32_t> wanted = signatureOf(signature);
  if (!wanted || ![opened isKindOfClass:[PlatformColorProfile class]]) {
    return nullptr;
  }
  const ScopedPool pool;
  return reinterpret_cast<CFDataRef>([opened copyElement:*wanted]);
}

}  // extern "C"
