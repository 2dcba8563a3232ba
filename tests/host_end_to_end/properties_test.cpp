// Properties of objects: what a setter of the family sets, the getter of its type reads back.
#include <cmath>
#include <initializer_list>
#include <limits>

#include "host_end_to_end/family_test.h"

namespace {

using devhost::Type;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

template <typename T>
using Set = bool (*)(REALobjectStruct*, const char*, T);
template <typename T>
using Get = bool (*)(REALobjectStruct*, const char*, T*);

template <typename T>
using Limits = std::numeric_limits<T>;

constexpr const char* kName = "Member";

class Properties : public FamilyTest {
 protected:
  /// Sets and reads back each value on a property of the type.
  template <typename T>
  void expectKept(Type type, Set<T> set, Get<T> get, const std::vector<T>& values) {
    const devhost::Ref<devhost::Object> object = objectWith(type);
    for (const T value : values) {
      EXPECT_TRUE(set(handleOf(object), kName, value)) << devhost::factsOf(type).name;
      T read{};
      EXPECT_TRUE(get(handleOf(object), "MEMBER", &read)) << devhost::factsOf(type).name;
      EXPECT_TRUE(sameBits(read, value)) << devhost::factsOf(type).name;
    }
  }

  template <typename T>
  void expectLimitsKept(Type type, Set<T> set, Get<T> get) {
    expectKept<T>(type, set, get, {Limits<T>::lowest(), T{0}, T{1}, Limits<T>::max()});
  }

  devhost::Ref<devhost::Object> objectWith(Type type) {
    devhost::Ref<devhost::Object> object = host_.makeObject();
    object->addProperty(kName, type, devhost::initialValue(host_, {type, {}, false}));
    return object;
  }
};

TEST_F(Properties, OfWholeNumbersAreReadBackAsTheyWereSet) {
  expectLimitsKept<std::int16_t>(Type::kInt16, REALSetPropValueInt16, REALGetPropValueInt16);
  expectLimitsKept<std::int32_t>(Type::kInt32, REALSetPropValueInt32, REALGetPropValueInt32);
  expectLimitsKept<std::int64_t>(Type::kInt64, REALSetPropValueInt64, REALGetPropValueInt64);
  expectLimitsKept<std::int64_t>(Type::kInteger, REALSetPropValueInteger, REALGetPropValueInteger);
  expectLimitsKept<std::int64_t>(Type::kCurrency, REALSetPropValueCurrency, REALGetPropValueCurrency);
  expectLimitsKept<std::uint16_t>(Type::kUInt16, REALSetPropValueUInt16, REALGetPropValueUInt16);
  expectLimitsKept<std::uint32_t>(Type::kUInt32, REALSetPropValueUInt32, REALGetPropValueUInt32);
  expectLimitsKept<std::uint64_t>(Type::kUInt64, REALSetPropValueUInt64, REALGetPropValueUInt64);
  expectLimitsKept<std::uint64_t>(Type::kUInteger, REALSetPropValueUInteger, REALGetPropValueUInteger);
  expectLimitsKept<std::uint32_t>(Type::kColor, REALSetPropValueColor, REALGetPropValueColor);
}

TEST_F(Properties, OfRealNumbersAreReadBackToTheLastBit) {
  expectLimitsKept<float>(Type::kSingle, REALSetPropValueSingle, REALGetPropValueSingle);
  expectLimitsKept<double>(Type::kDouble, REALSetPropValueDouble, REALGetPropValueDouble);
  expectKept<float>(Type::kSingle, REALSetPropValueSingle, REALGetPropValueSingle,
                    {-0.0F, std::nanf(""), HUGE_VALF, -HUGE_VALF, Limits<float>::denorm_min()});
  expectKept<double>(Type::kDouble, REALSetPropValueDouble, REALGetPropValueDouble,
                     {-0.0, std::nan(""), HUGE_VAL, -HUGE_VAL, Limits<double>::denorm_min()});
}

TEST_F(Properties, OfTruthValuesAreReadBackAsTheyWereSet) {
  expectKept<bool>(Type::kBoolean, REALSetPropValueBoolean, REALGetPropValueBoolean, {true, false, true});
}

TEST_F(Properties, OfTheOverloadsAreReadBackAsTheyWereSet) {
  expectLimitsKept<short>(Type::kInt16, REALSetPropValue, REALGetPropValue);
  expectLimitsKept<unsigned short>(Type::kUInt16, REALSetPropValue, REALGetPropValue);
  expectLimitsKept<float>(Type::kSingle, REALSetPropValue, REALGetPropValue);
  expectLimitsKept<double>(Type::kDouble, REALSetPropValue, REALGetPropValue);
  int target = 0;
  expectKept<CFStringRef>(Type::kCFStringRef, REALSetPropValue, REALGetPropValue,
                          {reinterpret_cast<CFStringRef>(&target), nullptr});
}

/// The family reads no 8-bit number by itself; a wider type of number reads it.
TEST_F(Properties, Of8BitsAreReadBackThroughAWiderType) {
  const devhost::Ref<devhost::Object> object = objectWith(Type::kInt8);
  for (const int value : {-128, -1, 0, 127}) {
    EXPECT_TRUE(REALSetPropValueInt8(handleOf(object), kName, static_cast<std::int8_t>(value)));
    std::int16_t read = 1000;
    EXPECT_TRUE(REALGetPropValueInt16(handleOf(object), kName, &read));
    EXPECT_EQ(read, value);
  }
}

TEST_F(Properties, Of8UnsignedBitsAreSetThroughTheBooleanSetterToAllOfTheirValues) {
  const devhost::Ref<devhost::Object> object = objectWith(Type::kUInt8);
  for (const int value : {255, 2, 1, 0}) {
    EXPECT_TRUE(REALSetPropValueUInt8(handleOf(object), kName, static_cast<std::uint8_t>(value)));
    std::uint16_t read = 1000;
    EXPECT_TRUE(REALGetPropValueUInt16(handleOf(object), kName, &read));
    EXPECT_EQ(read, value);
  }
}

TEST_F(Properties, OfTruthValuesAreTrueForEveryByteButZeroOfTheUInt8Setter) {
  const devhost::Ref<devhost::Object> object = objectWith(Type::kBoolean);
  for (const int value : {2, 0, 255}) {
    EXPECT_TRUE(REALSetPropValueUInt8(handleOf(object), kName, static_cast<std::uint8_t>(value)));
    EXPECT_EQ(object->property(kName), value != 0);
  }
}

TEST_F(Properties, OfPointersKeepTheAddress) {
  int target = 0;
  expectKept<void*>(Type::kPtr, REALSetPropValuePtr, REALGetPropValuePtr, {&target, nullptr});
  expectKept<CFStringRef>(Type::kCFStringRef, REALSetPropValueCFStringRef, REALGetPropValueCFStringRef,
                          {reinterpret_cast<CFStringRef>(&target), nullptr});
}

TEST_F(Properties, OfStringsTakeAReferenceAndGiveOne) {
  for (const auto set : std::initializer_list<Set<REALstringStruct*>>{REALSetPropValueString, REALSetPropValue}) {
    for (const auto get : std::initializer_list<Get<REALstringStruct*>>{REALGetPropValueString, REALGetPropValue}) {
      const devhost::Ref<devhost::Object> object = objectWith(Type::kString);
      REALstringStruct* const string = build(std::string_view("a\0b", 3));
      EXPECT_TRUE(set(handleOf(object), kName, string));
      REALUnlockString(string);
      REALstringStruct* read = nullptr;
      EXPECT_TRUE(get(handleOf(object), kName, &read));
      EXPECT_EQ(contents(read), std::string("a\0b", 3));
      EXPECT_TRUE(set(handleOf(object), kName, nullptr));
      REALUnlockString(read);
      EXPECT_EQ(living(devhost::Counted::Kind::kString), 0U);
      EXPECT_TRUE(get(handleOf(object), kName, &read));
      EXPECT_EQ(read, nullptr);
    }
  }
}

TEST_F(Properties, OfTextsTakeAReferenceAndGiveOne) {
  const devhost::Ref<devhost::Object> object = objectWith(Type::kText);
  const RuntimeText* const text = buildText("Grün");
  EXPECT_TRUE(REALSetPropValueText(handleOf(object), kName, text));
  REALUnlockText(text);
  const RuntimeText* read = nullptr;
  EXPECT_TRUE(REALGetPropValueText(handleOf(object), kName, &read));
  EXPECT_EQ(read, text);
  EXPECT_EQ(object->property(kName), "Grün");
  REALUnlockText(read);
}

TEST_F(Properties, OfObjectsTakeAReferenceAndGiveOne) {
  const devhost::Ref<devhost::Object> object = objectWith(Type::kObject);
  devhost::Ref<devhost::Object> other = host_.makeObject("Other");
  for (const auto get : std::initializer_list<Get<REALobjectStruct*>>{REALGetPropValueObject, REALGetPropValue}) {
    EXPECT_TRUE(REALSetPropValueObject(handleOf(object), kName, handleOf(other)));
    REALobjectStruct* read = nullptr;
    EXPECT_TRUE(get(handleOf(object), kName, &read));
    EXPECT_EQ(read, handleOf(other));
    EXPECT_EQ(other->references(), 3U) << "the test's, the property's and the one that was read";
    REALUnlockObject(read);
    EXPECT_TRUE(REALSetPropValueObject(handleOf(object), kName, nullptr));
    EXPECT_TRUE(get(handleOf(object), kName, &read));
    EXPECT_EQ(read, nullptr);
  }
  EXPECT_EQ(other->references(), 1U);
}

TEST_F(Properties, OfObjectsAreSetThroughThePtrSetterByTheOverload) {
  const devhost::Ref<devhost::Object> object = objectWith(Type::kObject);
  const devhost::Ref<devhost::Object> other = host_.makeObject("Other");
  EXPECT_TRUE(REALSetPropValue(handleOf(object), kName, handleOf(other)));
  EXPECT_EQ(object->property(kName), other);
  // That it is the Ptr setter shows on a Ptr property, which the Object setter does not touch.
  const devhost::Ref<devhost::Object> pointer = objectWith(Type::kPtr);
  EXPECT_FALSE(REALSetPropValueObject(handleOf(pointer), kName, handleOf(other)));
  EXPECT_TRUE(REALSetPropValue(handleOf(pointer), kName, handleOf(other)));
  void* read = nullptr;
  EXPECT_TRUE(REALGetPropValuePtr(handleOf(pointer), kName, &read));
  EXPECT_EQ(read, handleOf(other));
}

TEST_F(Properties, OfBytesCopyThem) {
  for (const auto set : std::initializer_list<Set<const char*>>{REALSetPropValueCString, REALSetPropValue}) {
    const devhost::Ref<devhost::Object> object = objectWith(Type::kCString);
    for (std::string bytes : {"", "bytes"}) {
      const std::string expected = bytes;
      EXPECT_TRUE(set(handleOf(object), kName, bytes.c_str()));
      bytes.assign("xxxxx");
      const char* read = nullptr;
      EXPECT_TRUE(REALGetPropValueCString(handleOf(object), kName, &read));
      EXPECT_EQ(read, expected);
    }
  }
}

TEST_F(Properties, OfWideCharactersCopyThem) {
  for (const auto set : std::initializer_list<Set<const wchar_t*>>{REALSetPropValueWString, REALSetPropValue}) {
    const devhost::Ref<devhost::Object> object = objectWith(Type::kWString);
    for (std::wstring wide : {L"", L"gr\u00FCn"}) {
      const std::wstring expected = wide;
      EXPECT_TRUE(set(handleOf(object), kName, wide.c_str()));
      wide.assign(L"xxxx");
      const wchar_t* read = nullptr;
      EXPECT_TRUE(REALGetPropValueWString(handleOf(object), kName, &read));
      EXPECT_EQ(read, expected);
    }
  }
}

TEST_F(Properties, OfPascalStringsCopyThem) {
  const devhost::Ref<devhost::Object> object = objectWith(Type::kPString);
  std::vector<unsigned char> longest(256, 'x');
  longest[0] = 255;
  for (const std::vector<unsigned char>& string : {std::vector<unsigned char>{0}, {3, 'a', 0, 'b'}, longest}) {
    EXPECT_TRUE(REALSetPropValuePString(handleOf(object), kName, std::vector<unsigned char>(string).data()));
    const unsigned char* read = nullptr;
    EXPECT_TRUE(REALGetPropValuePString(handleOf(object), kName, &read));
    EXPECT_EQ(std::vector<unsigned char>(read, read + string.size()), string);
  }
}

TEST_F(Properties, ThatAreMissingAreNeitherSetNorRead) {
  const devhost::Ref<devhost::Object> object = host_.makeObject();
  double value = 7;
  EXPECT_FALSE(REALSetPropValueDouble(handleOf(object), kName, 1.0));
  EXPECT_FALSE(REALGetPropValueDouble(handleOf(object), kName, &value));
  EXPECT_FALSE(REALGetPropValueDouble(nullptr, kName, &value));
  EXPECT_FALSE(REALGetPropValueDouble(handleOf(object), nullptr, &value));
  EXPECT_EQ(value, 7);
  bool truth = true;
  EXPECT_FALSE(REALGetPropValueBoolean(handleOf(object), kName, &truth));
  EXPECT_FALSE(truth) << "the caller's truth value is written whatever the host answers";
}

TEST_F(Properties, ThatANumberDoesNotFitKeepTheirs) {
  const devhost::Ref<devhost::Object> object = objectWith(Type::kInt16);
  EXPECT_TRUE(REALSetPropValueInt64(handleOf(object), kName, -32768));
  EXPECT_FALSE(REALSetPropValueInt64(handleOf(object), kName, 32768));
  std::int64_t read = 0;
  EXPECT_TRUE(REALGetPropValueInt64(handleOf(object), kName, &read));
  EXPECT_EQ(read, -32768);
  std::uint64_t natural = 7;
  EXPECT_FALSE(REALGetPropValueUInt64(handleOf(object), kName, &natural));
  EXPECT_EQ(natural, 7U);
}

TEST_F(Properties, OfStringsDoNotTakeAStringThatWasReleased) {
  const devhost::Ref<devhost::Object> object = objectWith(Type::kString);
  REALstringStruct* const string = build("stale");
  REALUnlockString(string);
  EXPECT_FALSE(REALSetPropValueString(handleOf(object), kName, string));
  EXPECT_EQ(object->property(kName), "");
  EXPECT_THAT(takeFaults(), ElementsAre(HasSubstr("is no living string")));
}

}  // namespace
