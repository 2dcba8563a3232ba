// IOKit's display services, over a scripted desktop.
#include <IOKit/graphics/IOGraphicsLib.h>
#include <gmock/gmock.h>

#include <array>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/owned_ref.h"
#include "desktop/current.h"
#include "desktop/script/scripted.h"
#include "frameworks/hooks/calls.h"
#include "support/environment_variables.h"

namespace {

using platform::calls::Call;
using platform::calls::Fault;
using platform::desktop::DisplayService;
using platform::desktop::Script;
using platform::desktop::ScriptedDesktop;
using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

using Dictionary = OwnedRef<CFDictionaryRef>;
using Names = std::vector<std::pair<std::string, std::string>>;

std::string textOf(CFStringRef string) {
  std::array<char, 256> buffer{};
  return CFStringGetCString(string, buffer.data(), buffer.size(), kCFStringEncodingUTF8) ? buffer.data() : "(none)";
}

std::optional<std::int32_t> number(CFDictionaryRef info, CFStringRef key) {
  const void* value = nullptr;
  std::int32_t read = 0;
  if (!CFDictionaryGetValueIfPresent(info, key, &value) || CFGetTypeID(value) != CFNumberGetTypeID() ||
      !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt32Type, &read)) {
    return std::nullopt;
  }
  return read;
}

std::map<std::string, std::string> namesIn(CFDictionaryRef info) {
  const auto* const names = static_cast<CFDictionaryRef>(CFDictionaryGetValue(info, CFSTR(kDisplayProductName)));
  const auto count = static_cast<std::size_t>(CFDictionaryGetCount(names));
  std::vector<const void*> keys(count);
  std::vector<const void*> values(count);
  CFDictionaryGetKeysAndValues(names, keys.data(), values.data());
  std::map<std::string, std::string> result;
  for (std::size_t i = 0; i < count; ++i) {
    result[textOf(static_cast<CFStringRef>(keys[i]))] = textOf(static_cast<CFStringRef>(values[i]));
  }
  return result;
}

class Services : public testing::Test {
 protected:
  Services() { platform::desktop::setCurrent(desktop_); }
  ~Services() override {
    platform::calls::removeAllHooks();
    platform::desktop::setCurrent(nullptr);
  }

  void show(std::vector<DisplayService> services) {
    desktop_->change([&](Script& script) { script.arrangement.services = std::move(services); });
  }

  static io_iterator_t match(const char* name = "IODisplayConnect") {
    io_iterator_t iterator = 0;
    EXPECT_EQ(IOServiceGetMatchingServices(kIOMasterPortDefault, IOServiceMatching(name), &iterator), KERN_SUCCESS);
    return iterator;
  }

  static std::vector<io_service_t> all(io_iterator_t iterator) {
    std::vector<io_service_t> services;
    while (const io_service_t service = IOIteratorNext(iterator)) {
      services.push_back(service);
    }
    return services;
  }

  /// The only service's information.
  Dictionary infoOf(DisplayService service, IOOptionBits options = 0) {
    show({std::move(service)});
    const io_iterator_t iterator = match();
    const io_service_t handle = IOIteratorNext(iterator);
    Dictionary info = Dictionary::adopt(IODisplayCreateInfoDictionary(handle, options));
    EXPECT_EQ(IOObjectRelease(handle), KERN_SUCCESS);
    EXPECT_EQ(IOObjectRelease(iterator), KERN_SUCCESS);
    return info;
  }

  static void fail(Call call) {
    platform::calls::setHook(call, [](std::uint64_t) { return Fault{.fail = true}; });
  }

  std::shared_ptr<ScriptedDesktop> desktop_ = std::make_shared<ScriptedDesktop>();
};

// --- matching

TEST_F(Services, AreListedInTheDesktopsOrder) {
  show({{.vendor = 1}, {.vendor = 2}, {.vendor = 3}});
  std::vector<std::int32_t> vendors;
  for (const io_service_t service : all(match())) {
    const Dictionary info = Dictionary::adopt(IODisplayCreateInfoDictionary(service, kIODisplayOnlyPreferredName));
    vendors.push_back(number(info.get(), CFSTR(kDisplayVendorID)).value_or(-1));
  }
  EXPECT_THAT(vendors, ElementsAre(1, 2, 3));
}

TEST_F(Services, AreNoneOfAnotherClass) {
  show({{.vendor = 1}});
  EXPECT_THAT(all(match("IOFramebuffer")), ElementsAre());
  EXPECT_THAT(all(match("")), ElementsAre());
}

TEST_F(Services, AreNoneWithoutDisplays) { EXPECT_THAT(all(match()), ElementsAre()); }

TEST_F(Services, AreAllListedWhenSixtyFour) {
  show(std::vector<DisplayService>(64));
  EXPECT_EQ(all(match()).size(), 64U);
}

TEST_F(Services, AreThoseOfTheIteratorsCreation) {
  show({{.vendor = 1}, {.vendor = 2}});
  const io_iterator_t iterator = match();
  const io_service_t first = IOIteratorNext(iterator);
  show({});
  const io_service_t second = IOIteratorNext(iterator);
  ASSERT_NE(second, 0U);
  EXPECT_EQ(IOIteratorNext(iterator), 0U);
  EXPECT_EQ(number(Dictionary::adopt(IODisplayCreateInfoDictionary(first, 0)).get(), CFSTR(kDisplayVendorID)), 1);
  EXPECT_EQ(number(Dictionary::adopt(IODisplayCreateInfoDictionary(second, 0)).get(), CFSTR(kDisplayVendorID)), 2);
  EXPECT_THAT(all(match()), ElementsAre());
}

TEST(Matching, BelongsToTheCaller) {
  const auto matching = OwnedRef<CFMutableDictionaryRef>::adopt(IOServiceMatching("IODisplayConnect"));
  ASSERT_TRUE(matching);
  EXPECT_EQ(CFGetRetainCount(matching.get()), 1);
  EXPECT_EQ(CFDictionaryGetCount(matching.get()), 1);
}

TEST(Matching, IsNullForNullAndInvalidUtf8) {
  EXPECT_EQ(IOServiceMatching(nullptr), nullptr);
  EXPECT_EQ(IOServiceMatching("\xFF"), nullptr);
}

TEST_F(Services, ConsumeTheMatchingDictionaryInSuccessAndFailure) {
  const auto matching = OwnedRef<CFMutableDictionaryRef>::adopt(IOServiceMatching("IODisplayConnect"));
  io_iterator_t iterator = 0;
  CFRetain(matching.get());
  EXPECT_EQ(IOServiceGetMatchingServices(kIOMasterPortDefault, matching.get(), &iterator), KERN_SUCCESS);
  EXPECT_EQ(CFGetRetainCount(matching.get()), 1);
  CFRetain(matching.get());
  EXPECT_EQ(IOServiceGetMatchingServices(kIOMasterPortDefault, matching.get(), nullptr), KERN_FAILURE);
  EXPECT_EQ(CFGetRetainCount(matching.get()), 1);
  CFRetain(matching.get());
  fail(Call::IOServiceGetMatchingServices);
  EXPECT_EQ(IOServiceGetMatchingServices(kIOMasterPortDefault, matching.get(), &iterator), KERN_FAILURE);
  EXPECT_EQ(CFGetRetainCount(matching.get()), 1);
}

TEST_F(Services, FailForANullDictionary) {
  io_iterator_t iterator = 0;
  EXPECT_EQ(IOServiceGetMatchingServices(kIOMasterPortDefault, nullptr, &iterator), KERN_FAILURE);
  EXPECT_EQ(iterator, 0U);
}

// --- handles

TEST_F(Services, KeepTheirHandleWhileItIsHeld) {
  show({{.vendor = 1}, {.vendor = 2}});
  const std::vector<io_service_t> first = all(match());
  const std::vector<io_service_t> second = all(match());
  EXPECT_EQ(first, second);
  EXPECT_NE(first[0], first[1]);
  EXPECT_EQ(IOObjectRelease(first[0]), KERN_SUCCESS);
  EXPECT_TRUE(Dictionary::adopt(IODisplayCreateInfoDictionary(first[0], 0)));
  EXPECT_EQ(IOObjectRelease(first[0]), KERN_SUCCESS);
  EXPECT_FALSE(Dictionary::adopt(IODisplayCreateInfoDictionary(first[0], 0)));
}

TEST_F(Services, StaleAndUnknownHandlesFail) {
  show({{.vendor = 1}});
  const io_iterator_t iterator = match();
  const io_service_t service = IOIteratorNext(iterator);
  EXPECT_EQ(IOObjectRelease(service), KERN_SUCCESS);
  EXPECT_EQ(IOObjectRelease(iterator), KERN_SUCCESS);
  for (const io_object_t handle : {service, iterator, io_object_t{0}, io_object_t{0xFFFFFFFF}}) {
    EXPECT_EQ(IOObjectRelease(handle), KERN_FAILURE);
    EXPECT_EQ(IOIteratorNext(handle), 0U);
    EXPECT_EQ(IODisplayCreateInfoDictionary(handle, 0), nullptr);
  }
}

TEST_F(Services, AreNotIteratorsNorTheReverse) {
  show({{.vendor = 1}});
  const io_iterator_t iterator = match();
  const io_service_t service = IOIteratorNext(iterator);
  EXPECT_EQ(IODisplayCreateInfoDictionary(iterator, 0), nullptr);
  EXPECT_EQ(IOIteratorNext(service), 0U);
}

TEST_F(Services, OutliveTheirIterator) {
  show({{.vendor = 7}});
  const io_iterator_t iterator = match();
  const io_service_t service = IOIteratorNext(iterator);
  IOObjectRelease(iterator);
  EXPECT_EQ(number(Dictionary::adopt(IODisplayCreateInfoDictionary(service, 0)).get(), CFSTR(kDisplayVendorID)), 7);
}

// --- information dictionaries

TEST_F(Services, GiveTheirNumbers) {
  const Dictionary info = infoOf({.vendor = 0x10AC, .product = 0xD0A1, .serial = 0xFFFFFFFF});
  EXPECT_EQ(number(info.get(), CFSTR("DisplayVendorID")), 0x10AC);
  EXPECT_EQ(number(info.get(), CFSTR("DisplayProductID")), 0xD0A1);
  EXPECT_EQ(number(info.get(), CFSTR("DisplaySerialNumber")), -1);
  EXPECT_EQ(CFDictionaryGetCount(info.get()), 3);
}

TEST_F(Services, OmitAbsentValues) {
  EXPECT_EQ(CFDictionaryGetCount(infoOf({}).get()), 0);
  EXPECT_EQ(CFDictionaryGetCount(infoOf({.serial = 0}).get()), 1);
}

TEST_F(Services, GiveNullWithoutInformation) { EXPECT_FALSE(infoOf({.has_info = false, .vendor = 1})); }

TEST_F(Services, GiveAllNamesOrThePreferredOne) {
  const auto german = support::userLanguage({{"LANG", "de_DE.UTF-8"}});
  const Names names = {{"en", "Screen"},
                       {"de", "Bildschirm"},
                       {"fr",
                        "\xC3\x89"
                        "cran"}};
  EXPECT_THAT(namesIn(infoOf({.product_names = names}).get()),
              UnorderedElementsAre(Pair("en", "Screen"), Pair("de", "Bildschirm"),
                                   Pair("fr",
                                        "\xC3\x89"
                                        "cran")));
  EXPECT_THAT(namesIn(infoOf({.product_names = names}, kIODisplayOnlyPreferredName).get()),
              ElementsAre(Pair("de", "Bildschirm")));
}

TEST_F(Services, MayHaveNoNamesOrAnEmptyOne) {
  EXPECT_THAT(namesIn(infoOf({.product_names = Names{}}, kIODisplayOnlyPreferredName).get()), ElementsAre());
  EXPECT_THAT(namesIn(infoOf({.product_names = Names{{"en", ""}}}, kIODisplayOnlyPreferredName).get()),
              ElementsAre(Pair("en", "")));
}

TEST_F(Services, OmitInvalidUtf8Names) {
  EXPECT_THAT(namesIn(infoOf({.product_names = Names{{"en", "\xFF"}, {"de", "Name"}}}).get()),
              ElementsAre(Pair("de", "Name")));
}

TEST_F(Services, GiveADictionaryThatTheCallerOwns) { EXPECT_EQ(CFGetRetainCount(infoOf({.vendor = 1}).get()), 1); }

// --- the preferred name

class PreferredName : public Services {
 protected:
  /// The languages of the names that are left.
  std::vector<std::string> preferred(const Names& names) {
    std::vector<std::string> languages;
    for (const auto& [language, name] : namesIn(infoOf({.product_names = names}, kIODisplayOnlyPreferredName).get())) {
      languages.push_back(language);
    }
    return languages;
  }
};

TEST_F(PreferredName, IsInTheUsersLanguage) {
  const Names names = {{"fr", ""}, {"en", ""}, {"de", ""}, {"de_CH", ""}};
  const auto german = support::userLanguage({{"LANG", "fr_FR"}, {"LC_MESSAGES", "de_DE.UTF-8"}});
  EXPECT_THAT(preferred(names), ElementsAre("de"));
  const auto swiss = support::userLanguage({{"LANG", "fr_FR"}, {"LC_ALL", "de_CH@euro"}});
  EXPECT_THAT(preferred(names), ElementsAre("de_CH"));
  const auto list = support::userLanguage({{"LC_ALL", "en_GB"}, {"LANGUAGE", "fr:de"}});
  EXPECT_THAT(preferred(names), ElementsAre("fr"));
}

TEST_F(PreferredName, IsEnglishInTheCLocale) {
  const auto c = support::userLanguage({{"LANG", "C.UTF-8"}});
  EXPECT_THAT(preferred({{"fr", ""}, {"en_GB", ""}, {"en", ""}}), ElementsAre("en"));
}

TEST_F(PreferredName, IsEnglishElseTheFirstWithoutTheUsersLanguage) {
  const auto japanese = support::userLanguage({{"LANG", "ja_JP"}});
  EXPECT_THAT(preferred({{"fr", ""}, {"en_GB", ""}}), ElementsAre("en_GB"));
  EXPECT_THAT(preferred({{"fr", ""}, {"de", ""}}), ElementsAre("fr"));
}

// --- hooks

TEST_F(Services, ReturnFailureValues) {
  show({{.vendor = 1}});
  const io_iterator_t iterator = match();
  const io_service_t service = IOIteratorNext(iterator);
  fail(Call::IOServiceMatching);
  fail(Call::IOIteratorNext);
  fail(Call::IOObjectRelease);
  fail(Call::IODisplayCreateInfoDictionary);
  EXPECT_EQ(IOServiceMatching("IODisplayConnect"), nullptr);
  EXPECT_EQ(IOIteratorNext(iterator), 0U);
  EXPECT_EQ(IOObjectRelease(service), KERN_FAILURE);
  EXPECT_EQ(IODisplayCreateInfoDictionary(service, 0), nullptr);
}

}  // namespace
