// ColorSync: installed profiles, and the tags of one profile.
#include <ColorSync/ColorSync.h>

#import <Foundation/Foundation.h>

#include <array>
#include <climits>
#include <cstdint>
#include <optional>
#include <string>

#include "desktop/current.h"
#include "desktop/icc/icc_profile.h"
#include "frameworks/ColorSync/color_profile.h"
#include "frameworks/ColorSync/profile_entry.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/Foundation/utf8_objects.h"
#include "frameworks/hooks/calls.h"
#include "frameworks/hooks/injected_objects.h"

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

void releaseEntry(const void* entry) {
  const ScopedPool pool;
  [static_cast<id>(const_cast<void*>(entry)) release];
}

/// Passes the profile's entry to `look` and returns its result. The profile keeps the entry for the next walk where it
/// has a place: making an entry takes longer than finding its file unchanged.
template <typename Look>
bool showEntry(const InstalledProfile& profile, Look look) {
  if (profile.slot == nullptr) {
    NSDictionary* const entry = newEntry(profile);
    const bool goes_on = look(reinterpret_cast<CFDictionaryRef>(entry));
    [entry release];
    return goes_on;
  }
  const void* entry = profile.slot->get();
  if (entry == nullptr) {
    entry = profile.slot->store(newEntry(profile), releaseEntry);
  }
  return look(static_cast<CFDictionaryRef>(entry));
}

/// Empty unless it is a file URL with a path that the system can open.
std::string pathOf(CFURLRef reference) {
  static const Class url_class = [NSURL class];
  auto* const url = (NSURL*)reference;
  if (![url isKindOfClass:url_class] || ![url isFileURL]) {
    return {};
  }
  NSString* const path = [url copyPlatformPath];
  std::array<char, PATH_MAX> utf8;
  const bool fits = [path getCString:utf8.data() maxLength:utf8.size() encoding:NSUTF8StringEncoding];
  [path release];
  return fits ? utf8.data() : "";
}

/// Nothing unless the signature is four ASCII characters.
std::optional<std::uint32_t> signatureOf(CFStringRef reference) {
  static const Class string_class = [NSString class];
  std::array<unichar, 4> characters;
  auto* const text = (NSString*)reference;
  if (![text isKindOfClass:string_class] || [text length] != characters.size()) {
    return std::nullopt;
  }
  [text getCharacters:characters.data() range:NSMakeRange(0, characters.size())];
  std::uint32_t signature = 0;
  for (const unichar character : characters) {
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
  const calls::Fault fault = calls::fault(Call::ColorSyncIterateInstalledProfiles);
  if (fault.fail || callBack == nullptr) {
    return;
  }
  platform::desktop::current()->visitInstalledProfiles([&](const InstalledProfile& profile) {
    return showEntry(profile, [&](CFDictionaryRef entry) {
      return platform::showEntry(fault.edit, entry, [=](CFDictionaryRef shown) { return callBack(shown, userInfo); });
    });
  });
}

ColorSyncProfileRef ColorSyncProfileCreateWithURL(CFURLRef url, CFErrorRef*) {
  const auto fault = calls::fault(Call::ColorSyncProfileCreateWithURL);
  if (const auto object = platform::retainedFault<ColorSyncProfileRef>(fault)) {
    return *object;
  }
  if (url == nullptr) {
    return nullptr;
  }
  const std::string path = pathOf(url);
  if (path.empty()) {
    return nullptr;
  }
  static const Class profile_class = [PlatformColorProfile class];
  return reinterpret_cast<ColorSyncProfileRef>(
      [[profile_class alloc] initWithPath:path isRegularFile:[(NSURL*)url platformSawRegularFile]]);
}

CFDataRef ColorSyncProfileCopyTag(ColorSyncProfileRef profile, CFStringRef signature) {
  if (const auto object = platform::retainedFault<CFDataRef>(calls::fault(Call::ColorSyncProfileCopyTag))) {
    return *object;
  }
  if (profile == nullptr || signature == nullptr) {
    return nullptr;
  }
  static const Class profile_class = [PlatformColorProfile class];
  auto* const opened = (PlatformColorProfile*)profile;
  const std::optional<std::uint32_t> wanted = signatureOf(signature);
  if (!wanted || ![opened isKindOfClass:profile_class]) {
    return nullptr;
  }
  return reinterpret_cast<CFDataRef>([opened copyElement:*wanted]);
}

}  // extern "C"
