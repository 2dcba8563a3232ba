// The frameworks' dictionaries, with a key missing or with a value of another type.
#include <ColorSync/ColorSync.h>
#include <IOKit/graphics/IOGraphicsLib.h>

#include <string_view>
#include <utility>

#include "faults/fault_values.h"

namespace faults {
namespace {

using platform::calls::Call;
using platform::calls::Edit;

struct Key {
  Call call;
  const char* name;
  CFStringRef key;
  const char* type;  ///< of the sample object that is of the value's own type
};

std::vector<Key> keys() {
  constexpr Call kDevice = Call::ColorSyncIterateDeviceProfiles;
  constexpr Call kInstalled = Call::ColorSyncIterateInstalledProfiles;
  constexpr Call kInfo = Call::IODisplayCreateInfoDictionary;
  return {
      {kDevice, "DeviceClass", kColorSyncDeviceClass, "a string"},
      {kDevice, "DeviceID", kColorSyncDeviceID, "a UUID"},
      {kDevice, "DeviceDescription", kColorSyncDeviceDescription, "a string"},
      {kDevice, "ProfileIsDefault", kColorSyncDeviceProfileIsDefault, "a boolean"},
      {kDevice, "ProfileIsCurrent", kColorSyncDeviceProfileIsCurrent, "a boolean"},
      {kDevice, "ProfileURL", kColorSyncDeviceProfileURL, "a URL"},
      {kInstalled, "ProfileClass", kColorSyncProfileClass, "a string"},
      {kInstalled, "ProfileDescription", kColorSyncProfileDescription, "a string"},
      {kInstalled, "InstalledURL", kColorSyncProfileURL, "a URL"},
      {kInfo, "VendorID", CFSTR(kDisplayVendorID), "a number"},
      {kInfo, "ProductID", CFSTR(kDisplayProductID), "a number"},
      {kInfo, "SerialNumber", CFSTR(kDisplaySerialNumber), "a number"},
      {kInfo, "ProductName", CFSTR(kDisplayProductName), "a dictionary"},
  };
}

/// A copy with another value under the key, or, for null, without the key. The caller releases.
CFDictionaryRef copyWith(CFDictionaryRef dictionary, CFStringRef key, CFTypeRef value) {
  const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
  std::vector<const void*> all_keys(count);
  std::vector<const void*> all_values(count);
  CFDictionaryGetKeysAndValues(dictionary, all_keys.data(), all_values.data());
  CFMutableDictionaryRef copy = CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                                          &kCFTypeDictionaryValueCallBacks);
  for (std::size_t i = 0; i < count; ++i) {
    if (!CFEqual(all_keys[i], key)) {
      CFDictionarySetValue(copy, all_keys[i], all_values[i]);
    }
  }
  if (value != nullptr) {
    CFDictionarySetValue(copy, key, value);
  }
  return copy;
}

Edit replacing(CFStringRef key, CFTypeRef value) {
  return [=](const void* dictionary) { return copyWith(static_cast<CFDictionaryRef>(dictionary), key, value); };
}

Edit returning(CFTypeRef object) {
  return [=](const void*) { return object != nullptr ? CFRetain(object) : nullptr; };
}

/// Product names that are present but unusable.
void addOddNames(std::vector<DictionaryEdit>& edits) {
  const auto add = [&](const std::string& what, CFTypeRef names) {
    edits.push_back(
        {"ProductName", what, Call::IODisplayCreateInfoDictionary, replacing(CFSTR(kDisplayProductName), names)});
  };
  add("an empty dictionary", emptyDictionary());
  for (const NamedObject& sample : sampleObjects()) {
    if (sample.name != "a string") {
      add(sample.name + " by language", copyWith(emptyDictionary(), CFSTR("en"), sample.object));
    }
  }
  add("an empty string by language", copyWith(emptyDictionary(), CFSTR("en"), emptyString()));
  add("a string without UTF-8 by language", copyWith(emptyDictionary(), CFSTR("en"), brokenString()));
}

/// Strings that are empty, or have no UTF-8 form.
void addOddStrings(std::vector<DictionaryEdit>& edits, const Key& key) {
  edits.push_back({key.name, "an empty string", key.call, replacing(key.key, emptyString())});
  edits.push_back({key.name, "a string without UTF-8", key.call, replacing(key.key, brokenString())});
}

std::vector<DictionaryEdit> makeEdits() {
  std::vector<DictionaryEdit> edits;
  for (const Key& key : keys()) {
    edits.push_back({key.name, "missing", key.call, replacing(key.key, nullptr)});
    for (const NamedObject& sample : sampleObjects()) {
      if (sample.name != key.type) {
        edits.push_back({key.name, sample.name, key.call, replacing(key.key, sample.object)});
      }
    }
    if (std::string_view(key.type) == "a string") {
      addOddStrings(edits, key);
    }
  }
  addOddNames(edits);
  for (const auto& [call, what] : {std::pair(Call::ColorSyncIterateDeviceProfiles, "DeviceEntry"),
                                   {Call::ColorSyncIterateInstalledProfiles, "InstalledEntry"},
                                   {Call::IODisplayCreateInfoDictionary, "Info"}}) {
    edits.push_back({what, "null", call, returning(nullptr)});
    edits.push_back({what, "an empty dictionary", call, returning(emptyDictionary())});
  }
  return edits;
}

}  // namespace

const std::vector<DictionaryEdit>& dictionaryEdits() {
  static const auto* const edits = new std::vector<DictionaryEdit>(makeEdits());
  return *edits;
}

}  // namespace faults
