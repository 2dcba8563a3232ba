// ColorSync's profile calls and CoreGraphics' colour-space calls, as the plugin makes them.
#include <ColorSync/ColorSync.h>
#include <CoreGraphics/CoreGraphics.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/current.h"
#include "desktop/script/scripted.h"
#include "frameworks/hooks/calls.h"
#include "support/icc_maker.h"
#include "support/scripted.h"
#include "support/temporary_folder.h"

namespace {

using platform::calls::Call;
using platform::calls::Fault;
using platform::desktop::CacheSlot;
using platform::desktop::InstalledProfile;
using support::IccMaker;
using support::TemporaryFolder;
using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;
using testing::Optional;

struct Release {
  void operator()(const void* object) const { CFRelease(object); }
};
template <typename Ref>
using Owned = std::unique_ptr<std::remove_pointer_t<Ref>, Release>;

Owned<CFStringRef> string(const std::string& text) {
  return Owned<CFStringRef>(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                                    static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
}

Owned<CFURLRef> url(const std::string& path) {
  return Owned<CFURLRef>(CFURLCreateWithFileSystemPath(nullptr, string(path).get(), kCFURLPOSIXPathStyle, false));
}

std::string text(CFTypeRef value) {
  std::string buffer(1000, '\0');
  if (!CFStringGetCString(static_cast<CFStringRef>(value), buffer.data(), 1000, kCFStringEncodingUTF8)) {
    return "(no text)";
  }
  return buffer.c_str();
}

Owned<ColorSyncProfileRef> opened(const std::string& path) {
  return Owned<ColorSyncProfileRef>(ColorSyncProfileCreateWithURL(url(path).get(), nullptr));
}

std::optional<std::string> tagOf(ColorSyncProfileRef profile, const std::string& signature) {
  const Owned<CFDataRef> data(ColorSyncProfileCopyTag(profile, string(signature).get()));
  if (!data) {
    return std::nullopt;
  }
  const auto* const bytes = reinterpret_cast<const char*>(CFDataGetBytePtr(data.get()));
  return std::string(bytes, bytes + CFDataGetLength(data.get()));
}

// --- ColorSyncIterateInstalledProfiles

/// What the callback receives of each entry: "CLASS, DESCRIPTION, PATH", "-" for what is absent.
std::vector<std::string> entries() {
  std::vector<std::string> list;
  ColorSyncIterateInstalledProfiles(
      [](CFDictionaryRef info, void* user) {
        const void* const profile_class = CFDictionaryGetValue(info, kColorSyncProfileClass);
        const void* const description = CFDictionaryGetValue(info, kColorSyncProfileDescription);
        const void* const file = CFDictionaryGetValue(info, kColorSyncProfileURL);
        std::string line = profile_class != nullptr ? text(profile_class) : "-";
        line += ", " + (description != nullptr ? text(description) : "-");
        if (file != nullptr) {
          const Owned<CFStringRef> path(CFURLCopyFileSystemPath(static_cast<CFURLRef>(file), kCFURLPOSIXPathStyle));
          line += ", " + text(path.get());
        } else {
          line += ", -";
        }
        static_cast<std::vector<std::string>*>(user)->push_back(line);
        return true;
      },
      nullptr, &list, nullptr);
  return list;
}

InstalledProfile entry(std::optional<std::string> profile_class, std::optional<std::string> description,
                       std::optional<std::string> path) {
  return {std::move(profile_class), std::move(description), std::move(path)};
}

support::ScriptedSession sessionWith(std::vector<InstalledProfile> profiles) {
  platform::desktop::Script script;
  script.installed_profiles = std::move(profiles);
  return support::ScriptedSession(script);
}

TEST(IterateInstalledProfiles, ShowsClassDescriptionAndFileUrlOfEachProfile) {
  const auto session = sessionWith({entry("mntr", "Screen", "/a b/ü.icc"), entry("prtr", "Printer", "/p.icc")});
  EXPECT_THAT(entries(), ElementsAre("mntr, Screen, /a b/ü.icc", "prtr, Printer, /p.icc"));
}

TEST(IterateInstalledProfiles, LeavesOutWhatAnEntryLacks) {
  const auto session = sessionWith({entry(std::nullopt, "b", "/c"), entry("a", std::nullopt, "/c"),
                                    entry("a", "b", std::nullopt), entry({}, {}, {})});
  EXPECT_THAT(entries(), ElementsAre("-, b, /c", "a, -, /c", "a, b, -", "-, -, -"));
}

TEST(IterateInstalledProfiles, LeavesOutWhatIsNotUtf8) {
  const auto session = sessionWith({entry("mntr", "\xFF", "/\xFF.icc")});
  EXPECT_THAT(entries(), ElementsAre("mntr, -, -"));
}

TEST(IterateInstalledProfiles, ShowsTheConstantForTheDisplayClass) {
  const auto session = sessionWith({entry("mntr", "", "/a")});
  bool equal = false;
  ColorSyncIterateInstalledProfiles(
      [](CFDictionaryRef info, void* user) {
        *static_cast<bool*>(user) =
            CFEqual(CFDictionaryGetValue(info, kColorSyncProfileClass), kColorSyncSigDisplayClass) != 0;
        return true;
      },
      nullptr, &equal, nullptr);
  EXPECT_TRUE(equal);
}

TEST(IterateInstalledProfiles, EndsWhenTheCallbackReturnsFalse) {
  const auto session = sessionWith({entry("a", "b", "/1"), entry("a", "b", "/2"), entry("a", "b", "/3")});
  int calls = 0;
  ColorSyncIterateInstalledProfiles([](CFDictionaryRef, void* user) { return ++*static_cast<int*>(user) < 2; }, nullptr,
                                    &calls, nullptr);
  EXPECT_EQ(calls, 2);
}

TEST(IterateInstalledProfiles, ShowsNothingWhenItFailsOrHasNoCallback) {
  const auto session = sessionWith({entry("a", "b", "/1")});
  ColorSyncIterateInstalledProfiles(nullptr, nullptr, nullptr, nullptr);
  platform::calls::setHook(Call::ColorSyncIterateInstalledProfiles, [](std::uint64_t) { return Fault{true}; });
  EXPECT_THAT(entries(), IsEmpty());
}

TEST(IterateInstalledProfiles, ShowsEntriesThatMayOutliveTheWalk) {
  const auto session = sessionWith({entry("mntr", "Screen", "/a.icc")});
  CFDictionaryRef kept = nullptr;
  ColorSyncIterateInstalledProfiles(
      [](CFDictionaryRef info, void* user) {
        *static_cast<CFDictionaryRef*>(user) = static_cast<CFDictionaryRef>(CFRetain(info));
        return true;
      },
      nullptr, &kept, nullptr);
  EXPECT_EQ(text(CFDictionaryGetValue(kept, kColorSyncProfileDescription)), "Screen");
  EXPECT_EQ(CFGetRetainCount(kept), 1);
  CFRelease(kept);
}

const void* firstEntry() {
  const void* first = nullptr;
  ColorSyncIterateInstalledProfiles(
      [](CFDictionaryRef info, void* user) {
        *static_cast<const void**>(user) = info;
        return false;
      },
      nullptr, &first, nullptr);
  return first;
}

TEST(IterateInstalledProfiles, ShowsTheSameObjectInEachWalkForAProfileWithASlot) {
  InstalledProfile profile = entry("mntr", "Screen", "/a.icc");
  profile.slot = std::make_shared<CacheSlot>();
  const auto session = sessionWith({profile});
  const void* const first = firstEntry();
  EXPECT_EQ(first, profile.slot->get());
  EXPECT_EQ(firstEntry(), first);
  EXPECT_EQ(CFGetRetainCount(first), 1);
}

TEST(IterateInstalledProfiles, ShowsAsciiTextThatEqualsOtherStrings) {
  const auto session = sessionWith({entry("prtr", "Screen", "/a.icc")});
  const Owned<CFStringRef> same = string("Screen");
  const Owned<CFStringRef> other = string("Scream");
  struct Equal {
    CFStringRef text;
    bool forth = false;
    bool back = false;
  };
  const auto equal = [](CFStringRef text) {
    Equal result{text};
    ColorSyncIterateInstalledProfiles(
        [](CFDictionaryRef info, void* user) {
          auto& result = *static_cast<Equal*>(user);
          const void* const description = CFDictionaryGetValue(info, kColorSyncProfileDescription);
          const Owned<CFMutableDictionaryRef> keyed(
              CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
          CFDictionarySetValue(keyed.get(), description, kCFBooleanTrue);
          result.forth = CFEqual(description, result.text) != 0;
          result.back =
              CFEqual(result.text, description) != 0 && CFDictionaryGetValue(keyed.get(), result.text) != nullptr;
          return true;
        },
        nullptr, &result, nullptr);
    return std::pair(result.forth, result.back);
  };
  EXPECT_EQ(equal(same.get()), std::pair(true, true));
  EXPECT_EQ(equal(other.get()), std::pair(false, false));
}

TEST(IterateInstalledProfiles, SeesFilesComeChangeAndGo) {
  const TemporaryFolder folder;
  platform::desktop::setCurrent(std::make_shared<support::FolderDesktop>(folder.path()));
  EXPECT_THAT(entries(), IsEmpty());
  const std::string path = folder.write("a.icc", support::displayProfile("First"));
  for (int i = 0; i < 3; ++i) {
    EXPECT_THAT(entries(), ElementsAre("mntr, First, " + path));
  }
  folder.write("a.icc", support::displayProfile("Second"));
  EXPECT_THAT(entries(), ElementsAre("mntr, Second, " + path));
  std::filesystem::remove(path);
  EXPECT_THAT(entries(), IsEmpty());
  platform::desktop::setCurrent(nullptr);
}

// --- ColorSyncProfileCreateWithURL and ColorSyncProfileCopyTag

TEST(CopyTag, ReturnsTheElementsBytes) {
  const TemporaryFolder folder;
  const std::string bytes("\0\1\2\xFF\0", 5);
  const auto profile = opened(folder.write("a.icc", IccMaker().tag("QV02", bytes).tag("zero", "").bytes()));
  ASSERT_TRUE(profile);
  EXPECT_THAT(tagOf(profile.get(), "QV02"), Optional(Eq(bytes)));
  EXPECT_THAT(tagOf(profile.get(), "QV02"), Optional(Eq(bytes)));
  EXPECT_THAT(tagOf(profile.get(), "zero"), Optional(Eq("")));
  EXPECT_THAT(tagOf(profile.get(), "QV02"), Optional(Eq(bytes)));
}

TEST(CopyTag, ReturnsNullForAMissingTag) {
  const TemporaryFolder folder;
  const auto profile = opened(folder.write("a.icc", support::displayProfile("a")));
  EXPECT_EQ(tagOf(profile.get(), "QV02"), std::nullopt);
  EXPECT_EQ(tagOf(profile.get(), "DESC"), std::nullopt);
}

TEST(CopyTag, ReturnsNullUnlessTheSignatureIsFourAsciiCharacters) {
  const TemporaryFolder folder;
  IccMaker maker;
  maker.description("a")
      .tag("abc ", "x")
      .tag(std::string("abc\0", 4), "x")
      .tag(
          "\xC3\xBC"
          "ab",
          "x");
  const auto profile = opened(folder.write("a.icc", maker.bytes()));
  EXPECT_TRUE(tagOf(profile.get(), "desc"));
  EXPECT_TRUE(tagOf(profile.get(), "abc "));
  for (const char* const signature :
       {"", "d", "des", "abc", "desc ", " desc", "descdesc", "üab", "üabc", "dësc", "色色色色"}) {
    EXPECT_EQ(tagOf(profile.get(), signature), std::nullopt) << signature;
  }
}

TEST(CopyTag, ReturnsNullForNullAndForOtherObjects) {
  const TemporaryFolder folder;
  const auto profile = opened(folder.write("a.icc", support::displayProfile("a")));
  const auto signature = string("desc");
  const auto other = url("/");
  EXPECT_EQ(ColorSyncProfileCopyTag(nullptr, signature.get()), nullptr);
  EXPECT_EQ(ColorSyncProfileCopyTag(profile.get(), nullptr), nullptr);
  EXPECT_EQ(ColorSyncProfileCopyTag(reinterpret_cast<ColorSyncProfileRef>(other.get()), signature.get()), nullptr);
  EXPECT_EQ(ColorSyncProfileCopyTag(profile.get(), reinterpret_cast<CFStringRef>(other.get())), nullptr);
}

TEST(CopyTag, ReturnsTheSameDataForSuccessiveCopies) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a.icc", IccMaker().tag("QV02", std::string(1 << 20, 'x')).bytes());
  const auto profile = opened(path);
  const Owned<CFDataRef> first(ColorSyncProfileCopyTag(profile.get(), string("QV02").get()));
  folder.write("a.icc", IccMaker().tag("QV02", "after").bytes());
  const Owned<CFDataRef> second(ColorSyncProfileCopyTag(profile.get(), string("QV02").get()));
  EXPECT_EQ(first, second);
  EXPECT_THAT(tagOf(opened(path).get(), "QV02"), Optional(Eq("after")));
}

TEST(CopyTag, ReturnsTagsOfASmallFileThatIsGone) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a.icc", IccMaker().tag("aaaa", "1").tag("bbbb", "2").bytes());
  const auto profile = opened(path);
  std::filesystem::remove(path);
  EXPECT_THAT(tagOf(profile.get(), "aaaa"), Optional(Eq("1")));
  EXPECT_THAT(tagOf(profile.get(), "bbbb"), Optional(Eq("2")));
}

TEST(CopyTag, ReturnsDataThatOutlivesTheProfile) {
  const TemporaryFolder folder;
  auto profile = opened(folder.write("a.icc", IccMaker().tag("QV02", "1234").bytes()));
  const Owned<CFDataRef> data(ColorSyncProfileCopyTag(profile.get(), string("QV02").get()));
  EXPECT_EQ(CFGetRetainCount(profile.get()), 1);
  profile.reset();
  EXPECT_EQ(CFGetRetainCount(data.get()), 1);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(CFDataGetBytePtr(data.get())), 4), "1234");
}

TEST(ProfileCreateWithUrl, ReturnsNullForOtherFiles) {
  const TemporaryFolder folder;
  EXPECT_FALSE(opened(folder.path("missing")));
  EXPECT_FALSE(opened(folder.write("text", std::string(1000, 'x'))));
  EXPECT_FALSE(ColorSyncProfileCreateWithURL(nullptr, nullptr));
}

TEST(ProfileCreateWithUrl, OpensAPathOfAnyCharactersAndName) {
  const TemporaryFolder folder;
  EXPECT_TRUE(opened(folder.write("a %41?#ü色.txt", support::displayProfile("a"))));
}

TEST(ProfileCreateWithUrl, KeepsNoFileOpen) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a.icc", IccMaker().tag("QV02", std::string(100000, 'x')).bytes());
  const auto open_files = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
  };
  const auto before = open_files();
  const auto profile = opened(path);
  const auto tag = tagOf(profile.get(), "QV02");
  EXPECT_EQ(open_files(), before);
}

TEST(ProfileCalls, ReturnNullWhenTheyFail) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a.icc", support::displayProfile("a"));
  const auto profile = opened(path);
  platform::calls::setHook(Call::ColorSyncProfileCopyTag, [](std::uint64_t) { return Fault{true}; });
  EXPECT_EQ(tagOf(profile.get(), "desc"), std::nullopt);
  platform::calls::setHook(Call::ColorSyncProfileCreateWithURL, [](std::uint64_t) { return Fault{true}; });
  EXPECT_FALSE(opened(path));
  platform::calls::removeAllHooks();
}

// --- colour spaces

bool isWide(const std::string& path) {
  const auto profile = opened(path);
  const Owned<CGColorSpaceRef> space(CGColorSpaceCreateWithPlatformColorSpace(profile.get()));
  EXPECT_TRUE(space) << path;
  return CGColorSpaceIsWideGamutRGB(space.get());
}

TEST(ColorSpaceIsWideGamutRgb, IsTrueForTheWideOnesOfTheInstalledProfiles) {
  const std::string folder = "/usr/share/color/icc/colord/";
  for (const char* const name : {"AdobeRGB1998", "ProPhotoRGB", "WideGamutRGB", "BestRGB", "ECI-RGBv2"}) {
    EXPECT_TRUE(isWide(folder + name + ".icc")) << name;
  }
  for (const char* const name : {"Rec709", "AppleRGB", "PAL-RGB", "SMPTE-C-RGB", "ColorMatchRGB", "Gamma5000K"}) {
    EXPECT_FALSE(isWide(folder + name + ".icc")) << name;
  }
  EXPECT_FALSE(isWide("/usr/share/color/icc/sRGB.icc"));
  EXPECT_FALSE(isWide("/usr/share/color/icc/Gray.icc"));
}

TEST(ColorSpaceCreate, ReturnsNullForNullAndForALink) {
  const TemporaryFolder folder;
  const auto link = opened(folder.write("a.icc", IccMaker().deviceClass("link").bytes()));
  const auto other = string("text");
  EXPECT_EQ(CGColorSpaceCreateWithPlatformColorSpace(nullptr), nullptr);
  EXPECT_EQ(CGColorSpaceCreateWithPlatformColorSpace(link.get()), nullptr);
  EXPECT_EQ(CGColorSpaceCreateWithPlatformColorSpace(other.get()), nullptr);
}

TEST(ColorSpaceIsWideGamutRgb, IsFalseForNullAndForOtherObjects) {
  const auto other = string("text");
  EXPECT_FALSE(CGColorSpaceIsWideGamutRGB(nullptr));
  EXPECT_FALSE(CGColorSpaceIsWideGamutRGB(reinterpret_cast<CGColorSpaceRef>(const_cast<__CFString*>(other.get()))));
}

TEST(ColorSpaceCalls, ReturnNullAndFalseWhenTheyFail) {
  const auto profile = opened("/usr/share/color/icc/colord/ProPhotoRGB.icc");
  const Owned<CGColorSpaceRef> space(CGColorSpaceCreateWithPlatformColorSpace(profile.get()));
  EXPECT_TRUE(CGColorSpaceIsWideGamutRGB(space.get()));
  platform::calls::setHook(Call::CGColorSpaceIsWideGamutRGB, [](std::uint64_t) { return Fault{true}; });
  EXPECT_FALSE(CGColorSpaceIsWideGamutRGB(space.get()));
  platform::calls::setHook(Call::CGColorSpaceCreateWithPlatformColorSpace, [](std::uint64_t) { return Fault{true}; });
  EXPECT_EQ(CGColorSpaceCreateWithPlatformColorSpace(profile.get()), nullptr);
  platform::calls::removeAllHooks();
}

}  // namespace
