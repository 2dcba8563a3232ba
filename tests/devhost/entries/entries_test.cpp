// The host's entries, called as a plugin calls them: by the address that the table holds.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "devhost/runtime/host.h"

namespace devhost {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class EntriesTest : public ::testing::Test {
 protected:
  /// Calls an entry by its address with the types that a plugin would use, which need not be spelled as the entry
  /// spells them.
  template <typename Result, typename... Arguments>
  __attribute__((no_sanitize("function"))) Result call(const std::string& entry, Arguments... arguments) {
    void* const function = host_.entries().find(entry);
    if (function == nullptr) {
      ADD_FAILURE() << "no entry " << entry;
      return Result();
    }
    return reinterpret_cast<Result (*)(Arguments...)>(function)(arguments...);
  }

  void* build(const char* text) {
    return call<void*>("REALBuildStringWithEncoding", text, static_cast<int>(std::strlen(text)), kUtf8Encoding);
  }
  std::string contents(void* string) { return call<const char*>("StringGetCString", string); }
  void unlock(void* string) { call<void>("REALUnlockString", string); }

  Host host_;
};

// --- Strings and texts

TEST_F(EntriesTest, StringsAreBuiltCountedAndReleased) {
  void* const string = call<void*>("REALBuildStringWithEncoding", static_cast<const char*>("a\0bc"), 3, 0x0600U);
  EXPECT_EQ(host_.handles().find<String>(string, "test")->bytes(), std::string("a\0b", 3));
  EXPECT_EQ(call<std::uint32_t>("REALGetStringEncoding", string), 0x0600U);
  call<void>("REALSetStringEncoding", string, kUtf8Encoding);
  EXPECT_EQ(call<std::uint32_t>("REALGetStringEncoding", string), kUtf8Encoding);
  call<void>("REALLockString", string);
  unlock(string);
  EXPECT_EQ(host_.unreleasedStrings().size(), 1U);
  unlock(string);
  EXPECT_THAT(host_.unreleasedStrings(), IsEmpty());
  EXPECT_THAT(host_.faults(), IsEmpty());
}

TEST_F(EntriesTest, AStringOfNoBytesNeedsNoAddress) {
  void* const string = call<void*>("REALBuildStringWithEncoding", static_cast<const char*>(nullptr), 0, kUtf8Encoding);
  EXPECT_EQ(contents(string), "");
  unlock(string);
}

TEST_F(EntriesTest, AStringOfImpossibleBytesIsNotBuilt) {
  EXPECT_EQ(call<void*>("REALBuildStringWithEncoding", static_cast<const char*>(nullptr), 1, kUtf8Encoding), nullptr);
  EXPECT_EQ(call<void*>("REALBuildStringWithEncoding", static_cast<const char*>("a"), -1, kUtf8Encoding), nullptr);
  EXPECT_EQ(host_.faults().size(), 2U);
}

TEST_F(EntriesTest, LengthIsCountedInBytesByAGlobalMethod) {
  void* const length = call<void*>("REALLoadGlobalMethod", static_cast<void*>(nullptr),
                                   static_cast<const char*>("LenB( s as string ) as integer"));
  ASSERT_NE(length, nullptr);
  void* const string = build("Grün");
  EXPECT_EQ(reinterpret_cast<std::int64_t (*)(void*)>(length)(string), 5);
  unlock(string);
  ASSERT_EQ(host_.globalMethods().lookups().size(), 1U);
  EXPECT_EQ(host_.globalMethods().lookups()[0].module, nullptr);
}

TEST_F(EntriesTest, GlobalMethodsCanBeRemoved) {
  host_.globalMethods().remove("LenB( s as string ) as integer");
  EXPECT_EQ(call<void*>("REALLoadGlobalMethod", static_cast<void*>(nullptr),
                        static_cast<const char*>("LenB( s as string ) as integer")),
            nullptr);
}

TEST_F(EntriesTest, StringsCompareJoinAndConvert) {
  void* const a = build("ab");
  void* const b = build("b");
  EXPECT_LT(call<std::int64_t>("RuntimeStringCompare", a, b), 0);
  EXPECT_EQ(call<std::int64_t>("RuntimeStringCompare", a, a), 0);
  void* const joined = call<void*>("RuntimeAddString", a, b);
  EXPECT_EQ(contents(joined), "abb");
  const auto* const pascal_bytes = call<const unsigned char*>("StringGetPString", a);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(pascal_bytes), 3), "\2ab");
  EXPECT_EQ(call<std::uint32_t>("StringToOSType", joined), 0x61626220U);
  for (void* string : {a, b, joined}) {
    unlock(string);
  }
}

struct Data {
  const char* bytes;
  std::int64_t size;
  std::uint32_t encoding;
  void* owner;
};

TEST_F(EntriesTest, StringDataOutlivesTheString) {
  void* const string = build("bytes");
  Data data{};
  EXPECT_FALSE(call<bool>("PluginGetStringData", string, 0x0100U, &data));
  EXPECT_TRUE(call<bool>("PluginGetStringData", string, 0U, &data));
  unlock(string);
  EXPECT_EQ(std::string(data.bytes, static_cast<std::size_t>(data.size)), "bytes");
  call<void>("PluginDisposeStringData", &data);
  EXPECT_EQ(host_.handles().count(Counted::Kind::kString), 0U);
}

TEST_F(EntriesTest, TextsAreBuiltComparedJoinedAndReleased) {
  void* const a = call<void*>("PluginBuildText", "ä", 2, kUtf8Encoding);
  void* const b = call<void*>("PluginBuildText", "b", 1, kUtf8Encoding);
  EXPECT_GT(call<std::int64_t>("PluginCompareText", a, b), 0);
  void* const joined = call<void*>("PluginConcatenateText", a, b);
  Data data{};
  EXPECT_TRUE(call<bool>("PluginGetTextData", joined, kUtf8Encoding, &data));
  EXPECT_EQ(std::string(data.bytes, static_cast<std::size_t>(data.size)), "äb");
  call<void>("PluginDisposeTextData", &data);
  call<void>("PluginLockText", a);
  for (void* text : {a, a, b, joined}) {
    call<void>("PluginUnlockText", text);
  }
  EXPECT_EQ(host_.handles().count(Counted::Kind::kText), 0U);
  EXPECT_THAT(host_.faults(), IsEmpty());
}

// --- Objects

TEST_F(EntriesTest, ObjectsAreLockedAndUnlocked) {
  const Ref<Object> object = host_.makeObject();
  call<void>("REALLockObject", object.handle());
  EXPECT_EQ(object->references(), 2U);
  call<void>("REALUnlockObject", object.handle());
  EXPECT_EQ(object->references(), 1U);
  call<void>("REALUnlockObject", object.handle());
  EXPECT_THAT(host_.faults(), ElementsAre(HasSubstr("REALUnlockObject")));
}

TEST_F(EntriesTest, AMethodOfADeclarationThatCannotBeParsedIsNotFound) {
  const Ref<Object> object = host_.makeObject();
  EXPECT_EQ(call<void*>("REALLoadObjectMethod", object.handle(), static_cast<const char*>("Broken(")), nullptr);
  EXPECT_THAT(host_.faults(), ElementsAre(HasSubstr("REALLoadObjectMethod: declaration \"Broken(\"")));
}

// --- Properties

/// One type of property, as it is set and read back.
class PropertiesTest : public EntriesTest {
 protected:
  template <typename C>
  void expectKept(const std::string& type, C value, C initial = C{}) {
    const Ref<Object> object = host_.makeObject();
    object->addProperty("Member", *findType(type), initial);
    EXPECT_TRUE((call<std::uint64_t>("REALSetPropValue" + setter(type), object.handle(), "member", value))) << type;
    C read{};
    EXPECT_EQ((call<std::uint64_t>("REALGetPropValue" + getter(type), object.handle(), "MEMBER", &read)), 1U) << type;
    EXPECT_EQ(read, value) << type;
    EXPECT_EQ(object->property("Member"), Value(value)) << type;
  }

  static std::string setter(const std::string& type) { return type == "Int32" ? "Int" : type; }
  static std::string getter(const std::string& type) {
    return type == "Int32" ? "Int" : type == "Boolean" ? "Bool" : type;
  }
};

TEST_F(PropertiesTest, OfNumbersAreReadBackAsTheyWereSet) {
  expectKept<std::int16_t>("Int16", -2);
  expectKept<std::uint16_t>("UInt16", 65535);
  expectKept<std::int32_t>("Int32", INT32_MIN);
  expectKept<std::uint32_t>("UInt32", UINT32_MAX);
  expectKept<std::int64_t>("Int64", INT64_MIN);
  expectKept<std::uint64_t>("UInt64", UINT64_MAX);
  expectKept<std::int64_t>("Integer", INT64_MAX);
  expectKept<std::uint64_t>("UInteger", UINT64_MAX);
  expectKept<std::int64_t>("Currency", 12345);
  expectKept<std::uint32_t>("Color", 0x00FF8040);
  expectKept<float>("Single", 0.5F);
  expectKept<double>("Double", -1440.5);
}

TEST_F(PropertiesTest, OfTypeBooleanAndUInt8ShareASetter) {
  const Ref<Object> object = host_.makeObject();
  object->addProperty("Truth", Type::kBoolean, false);
  object->addProperty("Byte", Type::kUInt8, 0);
  EXPECT_TRUE(call<std::uint64_t>("REALSetPropValueBoolean", object.handle(), "Truth", true));
  EXPECT_TRUE((call<std::uint64_t>("REALSetPropValueBoolean", object.handle(), "Byte", std::uint8_t{200})));
  EXPECT_EQ(object->property("Truth"), true);
  EXPECT_EQ(object->property("Byte"), 200);
  std::uint8_t truth = 0;
  EXPECT_TRUE(call<std::uint64_t>("REALGetPropValueBool", object.handle(), "Truth", &truth));
  EXPECT_EQ(truth, 1);
}

TEST_F(PropertiesTest, OfAnotherTypeOfNumberConvertWhereTheValueFits) {
  const Ref<Object> object = host_.makeObject();
  object->addProperty("Small", Type::kInt8, 5);
  std::int64_t wide = 0;
  EXPECT_TRUE(call<std::uint64_t>("REALGetPropValueInt64", object.handle(), "Small", &wide));
  EXPECT_EQ(wide, 5);
  EXPECT_TRUE((call<std::uint64_t>("REALSetPropValueInt8", object.handle(), "Small", std::int8_t{-5})));
  EXPECT_EQ(object->property("Small"), -5);
  EXPECT_FALSE((call<std::uint64_t>("REALSetPropValueInt64", object.handle(), "Small", std::int64_t{128})));
  EXPECT_EQ(object->property("Small"), -5);
}

TEST_F(PropertiesTest, ThatAreMissingAnswerFalseAndLeaveTheValueAlone) {
  const Ref<Object> object = host_.makeObject();
  std::int64_t value = 7;
  EXPECT_EQ(call<std::uint64_t>("REALGetPropValueInt64", object.handle(), "None", &value), 0U);
  EXPECT_EQ((call<std::uint64_t>("REALSetPropValueInt64", object.handle(), "None", std::int64_t{1})), 0U);
  EXPECT_EQ(call<std::uint64_t>("REALGetPropValueInt64", static_cast<void*>(nullptr), "None", &value), 0U);
  EXPECT_EQ(value, 7);
  EXPECT_THAT(host_.faults(), IsEmpty());
}

TEST_F(PropertiesTest, OfStringsTakeAReferenceAndGiveOne) {
  const Ref<Object> object = host_.makeObject();
  object->addProperty("Name", Type::kString, "old");
  void* const string = build("new");
  EXPECT_TRUE(call<std::uint64_t>("REALSetPropValueString", object.handle(), "Name", string));
  unlock(string);
  EXPECT_THAT(host_.unreleased(), IsEmpty());
  void* read = nullptr;
  EXPECT_TRUE(call<std::uint64_t>("REALGetPropValueString", object.handle(), "Name", &read));
  EXPECT_EQ(contents(read), "new");
  unlock(read);
  void* const stale = build("stale");
  unlock(stale);
  EXPECT_FALSE(call<std::uint64_t>("REALSetPropValueString", object.handle(), "Name", stale));
  EXPECT_EQ(object->property("Name"), "new");
}

TEST_F(PropertiesTest, OfTextsTakeAReferenceAndGiveOne) {
  const Ref<Object> object = host_.makeObject();
  object->addProperty("Name", Type::kText, "old");
  void* const text = call<void*>("PluginBuildText", "new", 3, kUtf8Encoding);
  EXPECT_TRUE(call<std::uint64_t>("PluginSetPropValueText", object.handle(), "Name", text));
  void* read = nullptr;
  EXPECT_TRUE(call<std::uint64_t>("PluginGetPropValueText", object.handle(), "Name", &read));
  EXPECT_EQ(read, text);
  call<void>("PluginUnlockText", text);
  call<void>("PluginUnlockText", read);
  EXPECT_THAT(host_.unreleased(), IsEmpty());
}

TEST_F(PropertiesTest, OfObjectsAreSetAsObjectAndAsPtr) {
  const Ref<Object> object = host_.makeObject();
  const Ref<Object> first = host_.makeObject("First");
  const Ref<Object> second = host_.makeObject("Second");
  object->addProperty("Parent", Type::kObject, nullptr);
  EXPECT_TRUE(call<std::uint64_t>("REALSetPropValueObject", object.handle(), "Parent", first.handle()));
  EXPECT_EQ(object->property("Parent"), first);
  EXPECT_TRUE(call<std::uint64_t>("REALSetPropValuePtr", object.handle(), "Parent", second.handle()));
  void* read = nullptr;
  EXPECT_TRUE(call<std::uint64_t>("REALGetPropValueObject", object.handle(), "Parent", &read));
  EXPECT_EQ(read, second.handle());
  call<void>("REALUnlockObject", read);
  EXPECT_THAT(host_.unreleased(), IsEmpty());
}

TEST_F(PropertiesTest, OfPointersAreKeptAsTheyAre) {
  const Ref<Object> object = host_.makeObject();
  int target = 0;
  for (const char* type : {"Ptr", "CFStringRef"}) {
    object->addProperty(type, *findType(type), nullptr);
    EXPECT_TRUE((call<std::uint64_t>(std::string("REALSetPropValue") + type, object.handle(), type,
                                     static_cast<void*>(&target))));
    void* read = nullptr;
    EXPECT_TRUE((call<std::uint64_t>(std::string("REALGetPropValue") + type, object.handle(), type, &read)));
    EXPECT_EQ(read, &target);
  }
}

TEST_F(PropertiesTest, OfCharactersAreCopiedIn) {
  const Ref<Object> object = host_.makeObject();
  object->addProperty("C", Type::kCString, nullptr);
  object->addProperty("W", Type::kWString, nullptr);
  object->addProperty("P", Type::kPString, nullptr);
  {
    std::string c = "bytes";
    std::wstring w = L"wide";
    std::string p = "\3abc";
    EXPECT_TRUE((call<std::uint64_t>("REALSetPropValueCString", object.handle(), "C", c.c_str())));
    EXPECT_TRUE((call<std::uint64_t>("REALSetPropValueWString", object.handle(), "W", w.c_str())));
    EXPECT_TRUE((call<std::uint64_t>("REALSetPropValuePString", object.handle(), "P", p.c_str())));
    c.assign("xxxxx");
    w.assign(L"xxxx");
    p.assign("xxxx");
  }
  const char* c = nullptr;
  const wchar_t* w = nullptr;
  const char* p = nullptr;
  EXPECT_TRUE(call<std::uint64_t>("REALGetPropValueCString", object.handle(), "C", &c));
  EXPECT_TRUE(call<std::uint64_t>("REALGetPropValueWString", object.handle(), "W", &w));
  EXPECT_TRUE(call<std::uint64_t>("REALGetPropValuePString", object.handle(), "P", &p));
  EXPECT_STREQ(c, "bytes");
  EXPECT_STREQ(w, L"wide");
  EXPECT_EQ(std::string(p, 4), "\3abc");
  EXPECT_FALSE(call<std::uint64_t>("REALGetPropValuePString", object.handle(), "C", &p)) << "of another form";
}

// --- Variants

class VariantsTest : public EntriesTest {
 protected:
  template <typename C>
  void expectHeld(const char* entry, C value, const Value& expected) {
    void* const variant = call<void*>(entry, value);
    const Ref<Object> taken = host_.handles().take<Object>(variant, entry);
    ASSERT_TRUE(taken) << entry;
    EXPECT_EQ(taken->className(), kVariantClass);
    EXPECT_EQ(taken->variantValue(), expected) << entry;
  }
};

TEST_F(VariantsTest, HoldTheirValue) {
  expectHeld<std::int32_t>("Int32ToVariant", -1, -1);
  expectHeld<std::int64_t>("IntegerToVariant", INT64_MIN, INT64_MIN);
  expectHeld<std::int64_t>("Int64ToVariant", INT64_MAX, INT64_MAX);
  expectHeld<std::uint32_t>("UInt32ToVariant", UINT32_MAX, UINT32_MAX);
  expectHeld<std::uint64_t>("UInt64ToVariant", UINT64_MAX, UINT64_MAX);
  expectHeld<std::int64_t>("CurrencyToVariant", 5, 5);
  expectHeld<std::uint32_t>("ColorToVariant", 0xFF00FF, 0xFF00FF);
  expectHeld<std::uint32_t>("OSTypeToVariant", 0x6D6E7472, 0x6D6E7472);
  expectHeld<bool>("BooleanToVariant", true, true);
  expectHeld<double>("DoubleToVariant", 0.1, 0.1);
  expectHeld<float>("SingleToVariant", 0.5F, 0.5);
  int target = 0;
  expectHeld<void*>("PtrToVariant", &target, Value::pointer(&target));
  expectHeld<void*>("CFStringRefToVariant", &target, Value::pointer(&target));
}

TEST_F(VariantsTest, OfStringsTakeAReferenceOfTheirOwn) {
  void* const string = build("text");
  expectHeld<void*>("StringToVariant", string, "text");
  unlock(string);
  EXPECT_EQ(host_.handles().count(Counted::Kind::kString), 0U);
  void* const text = call<void*>("PluginBuildText", "text", 4, kUtf8Encoding);
  expectHeld<void*>("PluginNewVariantText", text, "text");
  call<void>("PluginUnlockText", text);
}

TEST_F(VariantsTest, OfCharactersCopyThem) {
  std::string bytes = "bytes";
  void* const variant = call<void*>("CStringToVariant", bytes.c_str());
  bytes.assign("xxxxx");
  const Ref<Object> taken = host_.handles().take<Object>(variant, "test");
  EXPECT_STREQ(static_cast<const char*>(taken->variantValue().pointer()), "bytes");
}

// --- Arrays

class ArraysTest : public EntriesTest {
 protected:
  void* create(Type type, std::int64_t upper_bound = -1) {
    return call<void*>("RuntimeArrayCreateSingleDimBoundedArray", codeOfElementType(type), upper_bound);
  }
  void* procedure(const std::string& type, const char* operation, void* array) {
    return call<void*>("Plugin" + type + "Array" + operation + "Proc", array);
  }

  /// Inserts a and b, sets b to c, and reads both back.
  template <typename C>
  void expectKept(const std::string& type, C a, C b, C c) {
    void* const array = create(*findType(type));
    auto* const insert = reinterpret_cast<void (*)(void*, std::int64_t, C)>(procedure(type, "Insert", array));
    auto* const get = reinterpret_cast<C (*)(void*, std::int64_t)>(procedure(type, "Get", array));
    auto* const set = reinterpret_cast<void (*)(void*, C, std::int64_t)>(procedure(type, "Set", array));
    ASSERT_TRUE(insert != nullptr && get != nullptr && set != nullptr) << type;
    insert(array, 0, a);
    insert(array, 1, b);
    set(array, c, 1);
    EXPECT_EQ(call<std::int64_t>("RuntimeUBound", array), 1) << type;
    EXPECT_EQ(get(array, 0), a) << type;
    EXPECT_EQ(get(array, 1), c) << type;
    host_.handles().take<Array>(array, "test");
  }
};

TEST_F(ArraysTest, OfNumbersAreReadBackAsTheyWereSet) {
  expectKept<std::uint8_t>("Boolean", 1, 1, 0);
  expectKept<std::int8_t>("Int8", -128, 0, 127);
  expectKept<std::int16_t>("Int16", -32768, 0, 32767);
  expectKept<std::int32_t>("Int32", INT32_MIN, 0, INT32_MAX);
  expectKept<std::int64_t>("Int64", INT64_MIN, 0, INT64_MAX);
  expectKept<std::uint8_t>("UInt8", 0, 1, 255);
  expectKept<std::uint16_t>("UInt16", 0, 1, 65535);
  expectKept<std::uint32_t>("UInt32", 0, 1, UINT32_MAX);
  expectKept<std::uint64_t>("UInt64", 0, 1, UINT64_MAX);
  expectKept<std::int64_t>("Integer", INT64_MIN, 0, INT64_MAX);
  expectKept<std::uint64_t>("UInteger", 0, 1, UINT64_MAX);
  expectKept<std::int64_t>("Currency", INT64_MIN, 0, INT64_MAX);
  expectKept<std::uint32_t>("Color", 0, 1, 0xFFFFFF);
  expectKept<float>("Single", -0.5F, 0, 1.5F);
  expectKept<double>("Double", -0.1, 0, 1e300);
  EXPECT_THAT(host_.faults(), IsEmpty());
}

TEST_F(ArraysTest, OfStringsTextsAndObjectsTakeOverReferences) {
  void* const strings = create(Type::kString);
  auto* const insert = reinterpret_cast<void (*)(void*, std::int64_t, void*)>(procedure("String", "Insert", strings));
  auto* const set = reinterpret_cast<void (*)(void*, void*, std::int64_t)>(procedure("String", "Set", strings));
  auto* const get = reinterpret_cast<void* (*)(void*, std::int64_t)>(procedure("String", "Get", strings));
  insert(strings, 0, build("a"));
  insert(strings, 0, build("b"));
  set(strings, build("c"), 1);
  void* const read = get(strings, 1);
  EXPECT_EQ(contents(read), "c");
  unlock(read);
  EXPECT_EQ(contents(call<void*>("RuntimeDirectReadStringArray", strings, std::int64_t{0})), "b");
  EXPECT_THAT(host_.unreleasedStrings(), IsEmpty());
  EXPECT_EQ(host_.handles().count(Counted::Kind::kString), 2U);
  EXPECT_THAT(host_.handles().take<Array>(strings, "test")->texts(), ElementsAre("b", "c"));
  EXPECT_EQ(host_.handles().count(Counted::Kind::kString), 0U);
}

TEST_F(ArraysTest, OfTextsAndObjectsKeepWhatIsInserted) {
  void* const texts = create(Type::kText);
  reinterpret_cast<void (*)(void*, std::int64_t, void*)>(procedure("Text", "Insert", texts))(
      texts, 0, call<void*>("PluginBuildText", "t", 1, kUtf8Encoding));
  EXPECT_THAT(host_.handles().take<Array>(texts, "test")->texts(), ElementsAre("t"));

  void* const objects = create(Type::kObject);
  void* const variant = call<void*>("Int32ToVariant", 7);
  reinterpret_cast<void (*)(void*, std::int64_t, void*)>(procedure("Object", "Insert", objects))(objects, 0, variant);
  EXPECT_EQ(call<void*>("RuntimeDirectReadObjectArray", objects, std::int64_t{0}), variant);
  host_.handles().take<Array>(objects, "test");
  EXPECT_THAT(host_.unreleased(), IsEmpty());
  EXPECT_THAT(host_.faults(), IsEmpty());
}

TEST_F(ArraysTest, HaveNoProcedureForAnotherType) {
  void* const array = create(Type::kInt16);
  EXPECT_EQ(procedure("String", "Insert", array), nullptr);
  EXPECT_EQ(procedure("UInt16", "Get", array), nullptr);
  EXPECT_NE(procedure("Int16", "Get", array), nullptr);
  host_.handles().take<Array>(array, "test");
}

TEST_F(ArraysTest, BeginWithInitialElements) {
  void* const array = create(Type::kInteger, 2);
  EXPECT_EQ(call<std::int64_t>("RuntimeUBound", array), 2);
  EXPECT_EQ(call<std::int64_t>("RuntimeDirectReadIntArray", array, std::int64_t{2}), 0);
  host_.handles().take<Array>(array, "test");
}

TEST_F(ArraysTest, RefuseAnIndexOutside) {
  void* const array = create(Type::kDouble, 0);
  reinterpret_cast<void (*)(void*, std::int64_t, double)>(procedure("Double", "Insert", array))(array, 2, 1.5);
  EXPECT_EQ(reinterpret_cast<double (*)(void*, std::int64_t)>(procedure("Double", "Get", array))(array, -1), 0.0);
  EXPECT_THAT(host_.faults(),
              ElementsAre(HasSubstr("inserting an element: index 2"), HasSubstr("getting an element: index -1")));
  host_.handles().take<Array>(array, "test");
}

TEST_F(ArraysTest, OfUnknownTypesAndImpossibleBoundsAreNotMade) {
  EXPECT_EQ(call<void*>("RuntimeArrayCreateSingleDimBoundedArray", 0U, std::int64_t{-1}), nullptr);
  EXPECT_EQ(call<void*>("RuntimeArrayCreateSingleDimBoundedArray", 3U, std::int64_t{-2}), nullptr);
  EXPECT_EQ(call<void*>("RuntimeArrayCreateSingleDimBoundedArray", 3U, INT64_MAX), nullptr);
  EXPECT_EQ(host_.faults().size(), 3U);
}

}  // namespace
}  // namespace devhost
