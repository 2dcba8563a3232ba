// Variants, made of every type and read back through the getter of that type.
#include <cmath>
#include <limits>

#include "host_end_to_end/family_test.h"

namespace {

using devhost::Type;

template <typename T>
using Make = REALobjectStruct* (*)(T);
template <typename T>
using Get = bool (*)(REALobjectStruct*, const char*, T*);

template <typename T>
using Limits = std::numeric_limits<T>;

class Variants : public FamilyTest {
 protected:
  /// Makes a variant of each value, which must be of the type, and reads the value back.
  template <typename T>
  void expectKept(Type type, Make<T> make, Get<T> get, const std::vector<T>& values) {
    for (const T value : values) {
      REALobjectStruct* const variant = make(value);
      devhost::Object* const object = host_.handles().find<devhost::Object>(variant, "test");
      ASSERT_NE(object, nullptr);
      EXPECT_EQ(object->className(), devhost::kVariantClass);
      EXPECT_EQ(object->findProperty(devhost::kVariantProperty)->type, type);
      T read{};
      EXPECT_TRUE(get(variant, devhost::kVariantProperty, &read)) << devhost::factsOf(type).name;
      EXPECT_TRUE(sameBits(read, value)) << devhost::factsOf(type).name;
      REALUnlockObject(variant);
    }
    EXPECT_EQ(living(devhost::Counted::Kind::kObject), 0U);
  }

  template <typename T>
  void expectLimitsKept(Type type, Make<T> make, Get<T> get) {
    expectKept<T>(type, make, get, {Limits<T>::lowest(), T{0}, T{1}, Limits<T>::max()});
  }
};

TEST_F(Variants, OfWholeNumbersKeepThem) {
  expectLimitsKept<std::int32_t>(Type::kInt32, REALNewVariantInt32, REALGetPropValueInt32);
  expectLimitsKept<std::int64_t>(Type::kInt64, REALNewVariantInt64, REALGetPropValueInt64);
  expectLimitsKept<std::int64_t>(Type::kInteger, REALNewVariantInteger, REALGetPropValueInteger);
  expectLimitsKept<std::int64_t>(Type::kCurrency, REALNewVariantCurrency, REALGetPropValueCurrency);
  expectLimitsKept<std::uint32_t>(Type::kUInt32, REALNewVariantUInt32, REALGetPropValueUInt32);
  expectLimitsKept<std::uint64_t>(Type::kUInt64, REALNewVariantUInt64, REALGetPropValueUInt64);
  expectLimitsKept<std::uint32_t>(Type::kColor, REALNewVariantColor, REALGetPropValueColor);
}

TEST_F(Variants, OfCodesOfFourCharactersAreReadAsUInt32) {
  expectLimitsKept<std::uint32_t>(Type::kOSType, REALNewVariantOSType, REALGetPropValueUInt32);
}

TEST_F(Variants, OfRealNumbersKeepThemToTheLastBit) {
  expectLimitsKept<float>(Type::kSingle, REALNewVariantSingle, REALGetPropValueSingle);
  expectLimitsKept<double>(Type::kDouble, REALNewVariantDouble, REALGetPropValueDouble);
  expectKept<float>(Type::kSingle, REALNewVariantSingle, REALGetPropValueSingle,
                    {-0.0F, std::nanf(""), -HUGE_VALF, Limits<float>::denorm_min()});
  expectKept<double>(Type::kDouble, REALNewVariantDouble, REALGetPropValueDouble,
                     {-0.0, std::nan(""), -HUGE_VAL, Limits<double>::denorm_min()});
}

TEST_F(Variants, OfTruthValuesKeepThem) {
  expectKept<bool>(Type::kBoolean, REALNewVariantBoolean, REALGetPropValueBoolean, {true, false});
}

TEST_F(Variants, OfPointersKeepTheAddress) {
  int target = 0;
  expectKept<void*>(Type::kPtr, REALNewVariantPtr, REALGetPropValuePtr, {&target, nullptr});
  expectKept<CFStringRef>(Type::kCFStringRef, REALNewVariantCFStringRef, REALGetPropValueCFStringRef,
                          {reinterpret_cast<CFStringRef>(&target), nullptr});
}

TEST_F(Variants, OfStringsShareThem) {
  REALstringStruct* const string = build(std::string_view("a\0b", 3));
  expectKept<REALstringStruct*>(Type::kString, REALNewVariantString, REALGetPropValueString, {string});
  REALUnlockString(string);  // the one that was read
  EXPECT_EQ(contents(string), std::string("a\0b", 3));
  REALUnlockString(string);
  expectKept<REALstringStruct*>(Type::kString, REALNewVariantString, REALGetPropValueString, {nullptr});
}

TEST_F(Variants, OfTextsShareThem) {
  const RuntimeText* const text = buildText("a");
  expectKept<const RuntimeText*>(Type::kText, REALNewVariantText, REALGetPropValueText, {text});
  REALUnlockText(text);  // the one that was read
  REALUnlockText(text);
  EXPECT_EQ(living(devhost::Counted::Kind::kText), 0U);
}

TEST_F(Variants, OfCharactersCopyThem) {
  std::string bytes = "bytes";
  std::wstring wide = L"wide";
  unsigned char pascal_bytes[] = {2, 'a', 'b'};
  REALobjectStruct* const of_bytes = REALNewVariantCString(bytes.c_str());
  REALobjectStruct* const of_wide = REALNewVariantWString(wide.c_str());
  REALobjectStruct* const of_pascal = REALNewVariantPString(pascal_bytes);
  bytes.assign("xxxxx");
  wide.assign(L"xxxx");
  pascal_bytes[1] = 'x';
  const char* bytes_read = nullptr;
  const wchar_t* wide_read = nullptr;
  const unsigned char* pascal_read = nullptr;
  EXPECT_TRUE(REALGetPropValueCString(of_bytes, "Value", &bytes_read));
  EXPECT_TRUE(REALGetPropValueWString(of_wide, "Value", &wide_read));
  EXPECT_TRUE(REALGetPropValuePString(of_pascal, "Value", &pascal_read));
  EXPECT_STREQ(bytes_read, "bytes");
  EXPECT_STREQ(wide_read, L"wide");
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(pascal_read), 3), "\2ab");
  for (REALobjectStruct* const variant : {of_bytes, of_wide, of_pascal}) {
    REALUnlockObject(variant);
  }
}

}  // namespace
