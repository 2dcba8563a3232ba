// ColorSync: installed profiles, and the tags of one profile.
#include <ColorSync/ColorSync.h>

#import <Foundation/Foundation.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

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

/// What one walk has shown, kept for the next: making an entry takes longer than finding its file unchanged.
struct ShownEntries {
  using ById = std::vector<std::pair<std::uint64_t, NSDictionary*>>;

  ShownEntries() = default;
  ShownEntries(const ShownEntries&) = delete;
  ShownEntries& operator=(const ShownEntries&) = delete;
  ~ShownEntries() {
    for (const auto& [id, entry] : by_id) {
      [entry release];
    }
  }

  ById by_id;  ///< in ascending order of ids, with a reference to each entry
};

/// The entries of one walk, on one thread.
class EntryWalk {
 public:
  EntryWalk() : last_(exchange(nullptr, false)), shown_(std::make_shared<ShownEntries>()) {}
  EntryWalk(const EntryWalk&) = delete;
  EntryWalk& operator=(const EntryWalk&) = delete;
  ~EntryWalk() {
    if (!std::is_sorted(shown_->by_id.begin(), shown_->by_id.end())) {
      std::sort(shown_->by_id.begin(), shown_->by_id.end());
    }
    exchange(shown_, true);
  }

  template <typename Look>
  bool show(const InstalledProfile& profile, Look look) {
    NSDictionary* entry = [find(profile.id) retain];
    if (entry == nil) {
      entry = newEntry(profile);
    }
    const bool goes_on = look(reinterpret_cast<CFDictionaryRef>(entry));
    if (profile.id != 0) {
      shown_->by_id.emplace_back(profile.id, entry);
    } else {
      [entry release];
    }
    return goes_on;
  }

 private:
  using Shared = std::shared_ptr<ShownEntries>;

  /// The last walk's entries, which `next` replaces.
  static Shared exchange(Shared next, bool replaces) {
    static auto* const mutex = new std::mutex;
    static auto* const last = new Shared(std::make_shared<ShownEntries>());
    const std::lock_guard lock(*mutex);
    Shared before = *last;
    if (replaces) {
      *last = std::move(next);
    }
    return before;
  }

  /// Borrowed, or null. Mostly the entry after the one found last.
  NSDictionary* find(std::uint64_t wanted) {
    const ShownEntries::ById& entries = last_->by_id;
    if (next_ == entries.size() || entries[next_].first != wanted) {
      const auto found = std::lower_bound(entries.begin(), entries.end(), std::pair(wanted, (NSDictionary*)nil));
      next_ = static_cast<std::size_t>(found - entries.begin());
    }
    return next_ < entries.size() && entries[next_].first == wanted ? entries[next_++].second : nil;
  }

  const Shared last_;
  const Shared shown_;
  std::size_t next_ = 0;  ///< index into last_
};

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
  EntryWalk entries;
  platform::desktop::current()->visitInstalledProfiles([&](const InstalledProfile& profile) {
    return entries.show(profile, [&](CFDictionaryRef entry) {
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
