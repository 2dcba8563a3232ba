// The plugin's own host calls against this host: what is set through one member is read back through its partner.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "devhost/runtime/host.h"
#include "host/arrays.h"
#include "host/objects.h"
#include "host/property_getters.h"
#include "host/property_setters.h"
#include "host/resolver.h"
#include "host/strings.h"
#include "host/text.h"
#include "host/variants.h"

namespace devhost {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HostCalls : public ::testing::Test {
 protected:
  HostCalls() { gResolver = Host::resolver(); }
  ~HostCalls() override {
    EXPECT_THAT(host_.unreleased(), IsEmpty());
    EXPECT_THAT(host_.faults(), IsEmpty());
  }

  static REALobjectStruct* handleOf(const Ref<Object>& object) {
    return static_cast<REALobjectStruct*>(object.handle());
  }
  static REALstringStruct* build(const std::string& text) {
    return REALBuildStringWithEncoding(text.data(), static_cast<int>(text.size()), kHostEncodingUTF8);
  }
  static const RuntimeText* buildText(const char* text) {
    return reinterpret_cast<const RuntimeText*>(
        REALBuildText(text, static_cast<int>(std::string(text).size()), kHostEncodingUTF8));
  }
  Ref<Object> take(REALobjectStruct* object) { return host_.handles().take<Object>(object, "test"); }
  Ref<Array> take(REALarrayStruct* array) { return host_.handles().take<Array>(array, "test"); }

  Host host_;
};

TEST_F(HostCalls, BuildReadAndReleaseStrings) {
  REALstringStruct* const string = build("Grün");
  std::int64_t length = 0;
  EXPECT_STREQ(REALGetStringContents(string, &length), "Grün");
  EXPECT_EQ(length, 5);
  EXPECT_EQ(REALStringLength(string), 5);
  EXPECT_EQ(REALGetStringEncoding(string), kHostEncodingUTF8);
  EXPECT_EQ(REALGetSystemTextEncoding(), kHostEncodingUTF8);
  REALLockString(string);
  REALUnlockString(string);
  REALUnlockString(string);
}

TEST_F(HostCalls, CompareAndAddStrings) {
  REALstringStruct* const a = build("a");
  REALstringStruct* const b = build("b");
  EXPECT_LT(static_cast<std::int64_t>(REALCompareStrings(a, b)), 0);
  auto* const sum = reinterpret_cast<REALstringStruct*>(REALAddStrings(a, b));
  EXPECT_STREQ(REALGetStringContents(sum, nullptr), "ab");
  for (REALstringStruct* string : {a, b, sum}) {
    REALUnlockString(string);
  }
}

TEST_F(HostCalls, CompareAndConcatenateTexts) {
  const RuntimeText* const a = buildText("a");
  const RuntimeText* const b = buildText("b");
  EXPECT_LT(static_cast<std::int64_t>(REALCompareText(a, b)), 0);
  const auto* const both = reinterpret_cast<const RuntimeText*>(REALConcatenateText(a, b));
  EXPECT_EQ(host_.handles().find<Text>(both, "test")->utf8(), "ab");
  for (const RuntimeText* text : {a, b, both}) {
    REALUnlockText(text);
  }
}

/// Sets a property of the type through one member and reads it through the other.
#define EXPECT_PROPERTY(TypeName, C, value)                                                      \
  do {                                                                                           \
    const Ref<Object> object = host_.makeObject();                                               \
    object->addProperty(#TypeName, *findType(#TypeName), C{});                                   \
    EXPECT_TRUE(REALSetPropValue##TypeName(handleOf(object), #TypeName, static_cast<C>(value))); \
    C read{};                                                                                    \
    EXPECT_TRUE(REALGetPropValue##TypeName(handleOf(object), #TypeName, &read));                 \
    EXPECT_EQ(read, static_cast<C>(value)) << #TypeName;                                         \
    EXPECT_FALSE(REALGetPropValue##TypeName(handleOf(object), "none", &read)) << #TypeName;      \
    EXPECT_FALSE(REALSetPropValue##TypeName(handleOf(object), "none", static_cast<C>(value)));   \
  } while (false)

TEST_F(HostCalls, SetAndGetPropertiesOfNumbers) {
  EXPECT_PROPERTY(Int16, std::int16_t, -300);
  EXPECT_PROPERTY(UInt16, std::uint16_t, 65535);
  EXPECT_PROPERTY(Int32, std::int32_t, INT32_MIN);
  EXPECT_PROPERTY(UInt32, std::uint32_t, UINT32_MAX);
  EXPECT_PROPERTY(Int64, std::int64_t, INT64_MIN);
  EXPECT_PROPERTY(UInt64, std::uint64_t, UINT64_MAX);
  EXPECT_PROPERTY(Integer, std::int64_t, INT64_MIN);
  EXPECT_PROPERTY(UInteger, std::uint64_t, UINT64_MAX);
  EXPECT_PROPERTY(Currency, std::int64_t, -15000);
  EXPECT_PROPERTY(Color, std::uint32_t, 0x00FF8040);
  EXPECT_PROPERTY(Single, float, -0.5);
  EXPECT_PROPERTY(Double, double, 0.1);
  EXPECT_PROPERTY(Boolean, bool, true);
}

TEST_F(HostCalls, SetAndGetPropertiesOfBytes) {
  const Ref<Object> object = host_.makeObject();
  object->addProperty("Signed", Type::kInt8, 0);
  object->addProperty("Unsigned", Type::kUInt8, 0);
  EXPECT_TRUE(REALSetPropValueInt8(handleOf(object), "Signed", -128));
  EXPECT_TRUE(REALSetPropValueUInt8(handleOf(object), "Unsigned", 200));
  short read = 0;
  EXPECT_TRUE(REALGetPropValue(handleOf(object), "Signed", &read));
  EXPECT_EQ(read, -128);
  EXPECT_TRUE(REALGetPropValue(handleOf(object), "Unsigned", &read));
  EXPECT_EQ(read, 200);
}

TEST_F(HostCalls, SetAndGetPropertiesOfStringsTextsAndObjects) {
  const Ref<Object> object = host_.makeObject();
  const Ref<Object> other = host_.makeObject();
  object->addProperty("String", Type::kString, "");
  object->addProperty("Text", Type::kText, "");
  object->addProperty("Object", Type::kObject, nullptr);

  REALstringStruct* const string = build("text");
  EXPECT_TRUE(REALSetPropValue(handleOf(object), "String", string));
  REALstringStruct* read_string = nullptr;
  EXPECT_TRUE(REALGetPropValue(handleOf(object), "String", &read_string));
  EXPECT_EQ(read_string, string);
  REALUnlockString(string);
  REALUnlockString(read_string);

  const RuntimeText* const text = buildText("text");
  EXPECT_TRUE(REALSetPropValueText(handleOf(object), "Text", text));
  const RuntimeText* read_text = nullptr;
  EXPECT_TRUE(REALGetPropValueText(handleOf(object), "Text", &read_text));
  EXPECT_EQ(read_text, text);
  REALUnlockText(text);
  REALUnlockText(read_text);

  EXPECT_TRUE(REALSetPropValue(handleOf(object), "Object", handleOf(other))) << "through the Ptr setter";
  REALobjectStruct* read_object = nullptr;
  EXPECT_TRUE(REALGetPropValue(handleOf(object), "Object", &read_object));
  EXPECT_EQ(read_object, handleOf(other));
  REALUnlockObject(read_object);
  EXPECT_TRUE(REALSetPropValueObject(handleOf(object), "Object", nullptr));
  EXPECT_TRUE(object->property("Object").isNil());
}

TEST_F(HostCalls, SetAndGetPropertiesOfPointersAndCharacters) {
  const Ref<Object> object = host_.makeObject();
  for (const char* name : {"Ptr", "CString", "WString", "PString", "CFStringRef"}) {
    object->addProperty(name, *findType(name), nullptr);
  }
  EXPECT_TRUE(REALSetPropValuePtr(handleOf(object), "Ptr", this));
  EXPECT_TRUE(REALSetPropValue(handleOf(object), "CString", "bytes"));
  EXPECT_TRUE(REALSetPropValue(handleOf(object), "WString", L"wide"));
  EXPECT_TRUE(REALSetPropValuePString(handleOf(object), "PString", reinterpret_cast<const unsigned char*>("\3abc")));
  auto* const cf_string = reinterpret_cast<CFStringRef>(this);
  EXPECT_TRUE(REALSetPropValue(handleOf(object), "CFStringRef", cf_string));

  void* pointer = nullptr;
  const char* c = nullptr;
  const wchar_t* w = nullptr;
  const unsigned char* p = nullptr;
  CFStringRef read = nullptr;
  EXPECT_TRUE(REALGetPropValuePtr(handleOf(object), "Ptr", &pointer));
  EXPECT_TRUE(REALGetPropValueCString(handleOf(object), "CString", &c));
  EXPECT_TRUE(REALGetPropValueWString(handleOf(object), "WString", &w));
  EXPECT_TRUE(REALGetPropValuePString(handleOf(object), "PString", &p));
  EXPECT_TRUE(REALGetPropValue(handleOf(object), "CFStringRef", &read));
  EXPECT_EQ(pointer, this);
  EXPECT_STREQ(c, "bytes");
  EXPECT_STREQ(w, L"wide");
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(p), 4), "\3abc");
  EXPECT_EQ(read, cf_string);
}

TEST_F(HostCalls, MakeVariantsThatHoldTheirValues) {
  EXPECT_EQ(take(REALNewVariantInt32(-1))->variantValue(), -1);
  EXPECT_EQ(take(REALNewVariantInteger(INT64_MIN))->variantValue(), INT64_MIN);
  EXPECT_EQ(take(REALNewVariantInt64(INT64_MAX))->variantValue(), INT64_MAX);
  EXPECT_EQ(take(REALNewVariantUInt32(UINT32_MAX))->variantValue(), UINT32_MAX);
  EXPECT_EQ(take(REALNewVariantUInt64(UINT64_MAX))->variantValue(), UINT64_MAX);
  EXPECT_EQ(take(REALNewVariantDouble(0.1))->variantValue(), 0.1);
  EXPECT_EQ(take(REALNewVariantSingle(0.5F))->variantValue(), 0.5);
  EXPECT_EQ(take(REALNewVariantBoolean(true))->variantValue(), true);
  EXPECT_EQ(take(REALNewVariantColor(0xFF00FF))->variantValue(), 0xFF00FF);
  EXPECT_EQ(take(REALNewVariantCurrency(15000))->variantValue(), 15000);
  EXPECT_EQ(take(REALNewVariantOSType(0x6D6E7472))->variantValue(), 0x6D6E7472);
  EXPECT_EQ(take(REALNewVariantPtr(this))->variantValue(), Value::pointer(this));
  EXPECT_STREQ(static_cast<const char*>(take(REALNewVariantCString("bytes"))->variantValue().pointer()), "bytes");
  REALstringStruct* const string = build("text");
  EXPECT_EQ(take(REALNewVariantString(string))->variantValue(), "text");
  REALUnlockString(string);
  const RuntimeText* const text = buildText("text");
  EXPECT_EQ(take(REALNewVariantText(text))->variantValue(), "text");
  REALUnlockText(text);
}

TEST_F(HostCalls, ReadAVariantsValueAsAProperty) {
  REALobjectStruct* const variant = REALNewVariantInt32(7);
  std::int64_t value = 0;
  EXPECT_TRUE(REALGetPropValueInt64(variant, kVariantProperty, &value));
  EXPECT_EQ(value, 7);
  REALUnlockObject(variant);
}

/// Inserts two elements, sets the second anew, and reads both.
#define EXPECT_ELEMENTS(TypeName, C, a, b, c)                                                 \
  do {                                                                                        \
    REALarrayStruct* const array = REALCreateArray(codeOfElementType(Type::k##TypeName), -1); \
    REALInsertArrayValue##TypeName(array, 0, static_cast<C>(a));                              \
    REALInsertArrayValue##TypeName(array, 1, static_cast<C>(b));                              \
    REALSetArrayValue##TypeName(array, 1, static_cast<C>(c));                                 \
    C first{};                                                                                \
    C second{};                                                                               \
    REALGetArrayValue##TypeName(array, 0, &first);                                            \
    REALGetArrayValue##TypeName(array, 1, &second);                                           \
    EXPECT_EQ(first, static_cast<C>(a)) << #TypeName;                                         \
    EXPECT_EQ(second, static_cast<C>(c)) << #TypeName;                                        \
    EXPECT_EQ(static_cast<std::int64_t>(REALGetArrayUBound(array)), 1) << #TypeName;          \
    take(array);                                                                              \
  } while (false)

TEST_F(HostCalls, InsertSetAndGetElementsOfNumbers) {
  EXPECT_ELEMENTS(Boolean, bool, true, true, false);
  EXPECT_ELEMENTS(Integer, std::int64_t, INT64_MIN, 0, INT64_MAX);
  EXPECT_ELEMENTS(UInteger, std::uint64_t, 1, 0, UINT64_MAX);
  EXPECT_ELEMENTS(Int8, std::int8_t, -128, 0, 127);
  EXPECT_ELEMENTS(Int16, std::int16_t, -32768, 0, 32767);
  EXPECT_ELEMENTS(Int32, std::int32_t, INT32_MIN, 0, INT32_MAX);
  EXPECT_ELEMENTS(Int64, std::int64_t, INT64_MIN, 0, INT64_MAX);
  EXPECT_ELEMENTS(UInt8, std::uint8_t, 1, 0, 255);
  EXPECT_ELEMENTS(UInt16, std::uint16_t, 1, 0, 65535);
  EXPECT_ELEMENTS(UInt32, std::uint32_t, 1, 0, UINT32_MAX);
  EXPECT_ELEMENTS(UInt64, std::uint64_t, 1, 0, UINT64_MAX);
  EXPECT_ELEMENTS(Single, float, -0.5, 0, 1.5);
  EXPECT_ELEMENTS(Double, double, -0.1, 0, 1e300);
  EXPECT_ELEMENTS(Color, std::uint32_t, 1, 0, 0xFFFFFF);
  EXPECT_ELEMENTS(Currency, std::int64_t, INT64_MIN, 0, INT64_MAX);
}

TEST_F(HostCalls, InsertSetAndGetElementsOfStrings) {
  REALarrayStruct* const array = REALCreateArray(kHostArrayOfStrings, -1);
  REALInsertArrayValueString(array, 0, build("a"));
  REALInsertArrayValueString(array, 1, build("b"));
  REALSetArrayValueString(array, 0, build("c"));
  REALstringStruct* read = nullptr;
  REALGetArrayValueString(array, 0, &read);
  EXPECT_STREQ(REALGetStringContents(read, nullptr), "c");
  REALUnlockString(read);
  EXPECT_THAT(take(array)->texts(), ElementsAre("c", "b"));
}

TEST_F(HostCalls, InsertSetAndGetElementsOfTextsAndObjects) {
  REALarrayStruct* const texts = REALCreateArray(codeOfElementType(Type::kText), -1);
  REALInsertArrayValueText(texts, 0, buildText("a"));
  REALSetArrayValueText(texts, 0, buildText("b"));
  const RuntimeText* text = nullptr;
  REALGetArrayValueText(texts, 0, &text);
  REALUnlockText(text);
  EXPECT_THAT(take(texts)->texts(), ElementsAre("b"));

  REALarrayStruct* const objects = REALCreateArray(codeOfElementType(Type::kObject), -1);
  REALInsertArrayValueObject(objects, 0, REALNewVariantInt32(1));
  REALSetArrayValueObject(objects, 0, REALNewVariantInt32(2));
  REALobjectStruct* object = nullptr;
  REALGetArrayValueObject(objects, 0, &object);
  EXPECT_EQ(take(object)->variantValue(), 2);
  take(objects);
}

TEST_F(HostCalls, LoadAndCallAMethodOfAnObject) {
  const Ref<Object> object = host_.makeObject();
  object->addMethod("Twice(number As Integer) As Integer",
                    [](Object&, Values& arguments) -> Value { return arguments[0].integer() * 2; });
  void* const method = REALLoadObjectMethod(handleOf(object), "Twice( n as integer ) as integer");
  ASSERT_NE(method, nullptr);
  EXPECT_EQ(host::invoke<int>(method, handleOf(object), 21), 42);
  EXPECT_EQ(REALLoadObjectMethod(handleOf(object), "Thrice( n as integer ) as integer"), nullptr);
}

}  // namespace
}  // namespace devhost
