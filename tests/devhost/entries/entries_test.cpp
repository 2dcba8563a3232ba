// The host's entries, called as a plugin calls them: by the address in the table.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "devhost/entries/host.h"

namespace devhost {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Entries : public ::testing::Test {
 protected:
  /// Calls an entry with the types that a plugin uses, which may be spelled differently from the entry's own.
  template <typename Result, typename... Arguments>
  __attribute__((no_sanitize("function"))) Result call(const std::string& entry, Arguments... arguments) {
    void* const function = host_.entries().find(entry);
    if (function == nullptr) {
      ADD_FAILURE() << "no entry " << entry;
      return Result();
    }
    return reinterpret_cast<Result (*)(Arguments...)>(function)(arguments...);
  }

  void* build(const char* bytes, int length, std::uint32_t encoding = kUtf8Encoding) {
    return call<void*>("REALBuildStringWithEncoding", bytes, length, encoding);
  }
  void* build(const char* text) { return build(text, static_cast<int>(std::strlen(text))); }
  std::string contents(void* string) { return call<const char*>("StringGetCString", string); }
  void unlock(void* string) { call<void>("REALUnlockString", string); }

  void* createArray(std::uint32_t element_type, std::int64_t upper_bound) {
    return call<void*>("RuntimeArrayCreateSingleDimBoundedArray", element_type, upper_bound);
  }
  void insert(void* array, std::int64_t index, void* string) {
    void* const procedure = call<void*>("PluginStringArrayInsertProc", array);
    ASSERT_NE(procedure, nullptr);
    reinterpret_cast<void (*)(void*, std::int64_t, void*)>(procedure)(array, index, string);
  }
  std::vector<std::string> takeTexts(void* array) {
    const Ref<Array> taken = host_.handles().take<Array>(array, "test");
    std::vector<std::string> texts;
    for (const Ref<String>& element : taken->elements()) {
      texts.push_back(element->bytes());
    }
    return texts;
  }
  void* loadGlobalMethod(const char* declaration) {
    return call<void*>("REALLoadGlobalMethod", static_cast<void*>(nullptr), declaration);
  }

  Host host_;
};

TEST_F(Entries, BuildStringCopiesBytesAndEncoding) {
  void* const string = build("a\0bc", 3, 0x0600U);
  EXPECT_EQ(host_.handles().find<String>(string, "test")->bytes(), std::string("a\0b", 3));
  EXPECT_EQ(host_.handles().find<String>(string, "test")->encoding(), 0x0600U);
  EXPECT_EQ(host_.unreleased().size(), 1U);
  unlock(string);
  EXPECT_THAT(host_.unreleased(), IsEmpty());
  EXPECT_THAT(host_.faults(), IsEmpty());
}

TEST_F(Entries, BuildStringReturnsEmptyStringForNullAndLength0) {
  void* const string = build(nullptr, 0);
  EXPECT_EQ(contents(string), "");
  unlock(string);
}

TEST_F(Entries, BuildStringReturnsNullAndRecordsFaultForImpossibleBytes) {
  EXPECT_EQ(build(nullptr, 1), nullptr);
  EXPECT_EQ(build("a", -1), nullptr);
  EXPECT_EQ(host_.faults().size(), 2U);
}

TEST_F(Entries, LenBCountsBytes) {
  void* const length = loadGlobalMethod("LenB( s as string ) as integer");
  ASSERT_NE(length, nullptr);
  void* const string = build("Grün");
  EXPECT_EQ(reinterpret_cast<std::int64_t (*)(void*)>(length)(string), 5);
  unlock(string);
}

TEST_F(Entries, LoadGlobalMethodRecordsModuleAndDeclaration) {
  loadGlobalMethod("Missing()");
  ASSERT_EQ(host_.globalMethods().lookups().size(), 1U);
  EXPECT_EQ(host_.globalMethods().lookups()[0].owner, nullptr);
  EXPECT_EQ(host_.globalMethods().lookups()[0].declaration, "Missing()");
}

TEST_F(Entries, LoadGlobalMethodReturnsNullForRemovedMethod) {
  host_.globalMethods().remove("LenB( s as string ) as integer");
  EXPECT_EQ(loadGlobalMethod("LenB( s as string ) as integer"), nullptr);
}

TEST_F(Entries, LoadObjectMethodReturnsNullAndRecordsFaultForBrokenDeclaration) {
  const Ref<Object> object = host_.makeObject();
  EXPECT_EQ(call<void*>("REALLoadObjectMethod", object->handle(), static_cast<const char*>("Broken(")), nullptr);
  EXPECT_THAT(host_.faults(), ElementsAre(HasSubstr("REALLoadObjectMethod: declaration \"Broken(\"")));
}

TEST_F(Entries, ArrayTakesOverInsertedStrings) {
  void* const array = createArray(3, -1);
  insert(array, 0, build("a"));
  insert(array, 0, build("b"));
  insert(array, 2, build("c"));
  EXPECT_THAT(host_.unreleased(), ElementsAre("array of String (3 elements)"));
  EXPECT_THAT(takeTexts(array), ElementsAre("b", "a", "c"));
  EXPECT_EQ(host_.handles().count(), 0U);
  EXPECT_THAT(host_.faults(), IsEmpty());
}

TEST_F(Entries, CreateArrayMakesEmptyStringsUpToUpperBound) {
  void* const array = createArray(3, 1);
  EXPECT_THAT(takeTexts(array), ElementsAre("", ""));
}

TEST_F(Entries, InsertRecordsFaultForIndexOutside) {
  void* const array = createArray(3, -1);
  insert(array, 1, build("a"));
  insert(array, -1, build("b"));
  EXPECT_THAT(host_.faults(),
              ElementsAre(HasSubstr("inserting an element: index 1"), HasSubstr("inserting an element: index -1")));
  EXPECT_THAT(takeTexts(array), IsEmpty());
  EXPECT_EQ(host_.handles().count(), 0U);
}

TEST_F(Entries, CreateArrayReturnsNullAndRecordsFaultForOtherTypesAndImpossibleBounds) {
  EXPECT_EQ(createArray(1, -1), nullptr);
  EXPECT_EQ(createArray(3, -2), nullptr);
  EXPECT_EQ(createArray(3, INT64_MAX), nullptr);
  EXPECT_EQ(host_.faults().size(), 3U);
}

TEST_F(Entries, StringArrayInsertProcReturnsNullForStaleHandle) {
  void* const array = createArray(3, -1);
  host_.handles().take<Array>(array, "test");
  EXPECT_EQ(call<void*>("PluginStringArrayInsertProc", array), nullptr);
  EXPECT_EQ(host_.faults().size(), 1U);
}

}  // namespace
}  // namespace devhost
