// Elements of arrays of all 18 types: what the Insert and Set members put there, the Get member reads.
#include <cmath>
#include <limits>

#include "host_end_to_end/family_test.h"

namespace {

using devhost::Type;

template <typename T>
using Put = void (*)(REALarrayStruct*, long long, T);
template <typename T>
using Get = void (*)(REALarrayStruct*, long long, T*);

template <typename T>
struct Members {
  Type type;
  Put<T> insert;
  Put<T> set;
  Get<T> get;
};

template <typename T>
using Limits = std::numeric_limits<T>;

REALarrayStruct* create(Type type, long long upper_bound = -1) {
  return REALCreateArray(devhost::codeOfElementType(type), upper_bound);
}

template <typename T>
T elementAt(const Members<T>& members, REALarrayStruct* array, long long index) {
  T value{};
  members.get(array, index, &value);
  return value;
}

class ElementMembers : public FamilyTest {
 protected:
  /// Each value is inserted and read back, then set over another and read back; indexes out of range change nothing.
  template <typename T>
  void expectKept(const Members<T>& members, const std::vector<T>& values) {
    SCOPED_TRACE(devhost::factsOf(members.type).name);
    const auto count = static_cast<long long>(values.size());
    REALarrayStruct* const array = create(members.type);
    for (long long i = 0; i < count; ++i) {
      members.insert(array, i, values[static_cast<std::size_t>(i)]);
    }
    EXPECT_EQ(REALGetArrayUBound(array), count - 1);
    expectElements(members, array, values);
    // The other way round: each position gets another value than it has.
    const std::vector<T> reversed(values.rbegin(), values.rend());
    for (long long i = 0; i < count; ++i) {
      members.set(array, i, reversed[static_cast<std::size_t>(i)]);
    }
    expectElements(members, array, reversed);
    expectNothingOutside(members, array, reversed);
    handOver(array);
  }

  template <typename T>
  void expectElements(const Members<T>& members, REALarrayStruct* array, const std::vector<T>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      EXPECT_TRUE(sameBits<T>(elementAt(members, array, static_cast<long long>(i)), values[i])) << "index " << i;
    }
  }

  template <typename T>
  void expectNothingOutside(const Members<T>& members, REALarrayStruct* array, const std::vector<T>& values) {
    const auto count = static_cast<long long>(values.size());
    const T value = values.front();
    for (const long long index : {-1LL, count + 1, Limits<long long>::min(), Limits<long long>::max()}) {
      members.insert(array, index, value);
      members.set(array, index, value);
      EXPECT_TRUE(sameBits(elementAt(members, array, index), T{}));
    }
    members.set(array, count, value);
    EXPECT_EQ(takeFaults().size(), 13U) << "three operations at four indexes, and setting at the end";
    EXPECT_EQ(REALGetArrayUBound(array), count - 1);
    expectElements(members, array, values);
  }

  template <typename T>
  void expectLimitsKept(const Members<T>& members) {
    expectKept<T>(members, {Limits<T>::lowest(), T{0}, T{1}, Limits<T>::max(), T{100}});
  }
};

TEST_F(ElementMembers, KeepSignedNumbers) {
  expectLimitsKept<std::int8_t>({Type::kInt8, REALInsertArrayValueInt8, REALSetArrayValueInt8, REALGetArrayValueInt8});
  expectLimitsKept<std::int16_t>(
      {Type::kInt16, REALInsertArrayValueInt16, REALSetArrayValueInt16, REALGetArrayValueInt16});
  expectLimitsKept<std::int32_t>(
      {Type::kInt32, REALInsertArrayValueInt32, REALSetArrayValueInt32, REALGetArrayValueInt32});
  expectLimitsKept<std::int64_t>(
      {Type::kInt64, REALInsertArrayValueInt64, REALSetArrayValueInt64, REALGetArrayValueInt64});
  expectLimitsKept<std::int64_t>(
      {Type::kInteger, REALInsertArrayValueInteger, REALSetArrayValueInteger, REALGetArrayValueInteger});
  expectLimitsKept<std::int64_t>(
      {Type::kCurrency, REALInsertArrayValueCurrency, REALSetArrayValueCurrency, REALGetArrayValueCurrency});
}

TEST_F(ElementMembers, KeepUnsignedNumbers) {
  expectLimitsKept<std::uint8_t>(
      {Type::kUInt8, REALInsertArrayValueUInt8, REALSetArrayValueUInt8, REALGetArrayValueUInt8});
  expectLimitsKept<std::uint16_t>(
      {Type::kUInt16, REALInsertArrayValueUInt16, REALSetArrayValueUInt16, REALGetArrayValueUInt16});
  expectLimitsKept<std::uint32_t>(
      {Type::kUInt32, REALInsertArrayValueUInt32, REALSetArrayValueUInt32, REALGetArrayValueUInt32});
  expectLimitsKept<std::uint64_t>(
      {Type::kUInt64, REALInsertArrayValueUInt64, REALSetArrayValueUInt64, REALGetArrayValueUInt64});
  expectLimitsKept<std::uint64_t>(
      {Type::kUInteger, REALInsertArrayValueUInteger, REALSetArrayValueUInteger, REALGetArrayValueUInteger});
  expectLimitsKept<std::uint32_t>(
      {Type::kColor, REALInsertArrayValueColor, REALSetArrayValueColor, REALGetArrayValueColor});
}

TEST_F(ElementMembers, KeepRealNumbersToTheLastBit) {
  const Members<float> single = {Type::kSingle, REALInsertArrayValueSingle, REALSetArrayValueSingle,
                                 REALGetArrayValueSingle};
  const Members<double> real = {Type::kDouble, REALInsertArrayValueDouble, REALSetArrayValueDouble,
                                REALGetArrayValueDouble};
  expectLimitsKept(single);
  expectLimitsKept(real);
  expectKept<float>(single, {-0.0F, std::nanf(""), HUGE_VALF, -HUGE_VALF, Limits<float>::denorm_min()});
  expectKept<double>(real, {-0.0, std::nan(""), HUGE_VAL, -HUGE_VAL, Limits<double>::denorm_min()});
}

TEST_F(ElementMembers, KeepTruthValues) {
  expectKept<bool>({Type::kBoolean, REALInsertArrayValueBoolean, REALSetArrayValueBoolean, REALGetArrayValueBoolean},
                   {true, true, false, false});
}

TEST_F(ElementMembers, OfTheOverloadsAreThoseOfTheirTypes) {
  expectLimitsKept<short>({Type::kInt16, REALInsertArrayValue, REALSetArrayValue, REALGetArrayValue});
  expectLimitsKept<unsigned short>({Type::kUInt16, REALInsertArrayValue, REALSetArrayValue, REALGetArrayValue});
  expectLimitsKept<float>({Type::kSingle, REALInsertArrayValue, REALSetArrayValue, REALGetArrayValue});
  expectLimitsKept<double>({Type::kDouble, REALInsertArrayValue, REALSetArrayValue, REALGetArrayValue});
}

TEST_F(ElementMembers, InsertBeforeTheElementThatIsThere) {
  REALarrayStruct* const array = create(Type::kInt32);
  REALInsertArrayValueInt32(array, 0, 3);
  REALInsertArrayValueInt32(array, 0, 1);
  REALInsertArrayValueInt32(array, 1, 2);
  for (const int index : {0, 1, 2}) {
    std::int32_t value = 0;
    REALGetArrayValueInt32(array, index, &value);
    EXPECT_EQ(value, index + 1);
  }
  handOver(array);
}

TEST_F(ElementMembers, DoNothingToAnArrayOfAnotherType) {
  REALarrayStruct* const array = create(Type::kInt16, 0);
  REALInsertArrayValueInt32(array, 0, 5);
  REALSetArrayValueUInt16(array, 0, 5);
  std::int64_t value = 7;
  REALGetArrayValueInt64(array, 0, &value);
  EXPECT_EQ(value, 7);
  EXPECT_EQ(REALGetArrayUBound(array), 0);
  std::int16_t element = 7;
  REALGetArrayValueInt16(array, 0, &element);
  EXPECT_EQ(element, 0);
  handOver(array);
}

TEST_F(ElementMembers, DoNothingToNoArray) {
  std::int64_t value = 7;
  REALInsertArrayValueInt64(nullptr, 0, 1);
  REALSetArrayValueInt64(nullptr, 0, 1);
  REALGetArrayValueInt64(nullptr, 0, &value);
  EXPECT_EQ(value, 7);
}

/// Elements that are counted: a value that is put into an array goes over to it, one that is read is the reader's.
struct StringElements {
  static constexpr Type kType = Type::kString;
  static constexpr devhost::Counted::Kind kKind = devhost::Counted::Kind::kString;
  using Handle = REALstringStruct*;
  static Handle make() { return REALBuildStringWithEncoding("a\0b", 3, kHostEncodingUTF8); }
  static void release(Handle string) { REALUnlockString(string); }
  static Members<Handle> members() {
    return {kType, REALInsertArrayValueString, REALSetArrayValueString, REALGetArrayValueString};
  }
  static Members<Handle> overloads() { return {kType, REALInsertArrayValue, REALSetArrayValue, REALGetArrayValue}; }
};

struct TextElements {
  static constexpr Type kType = Type::kText;
  static constexpr devhost::Counted::Kind kKind = devhost::Counted::Kind::kText;
  using Handle = const RuntimeText*;
  static Handle make() { return reinterpret_cast<Handle>(REALBuildText("a\0b", 3, kHostEncodingUTF8)); }
  static void release(Handle text) { REALUnlockText(text); }
  static Members<Handle> members() {
    return {kType, REALInsertArrayValueText, REALSetArrayValueText, REALGetArrayValueText};
  }
  /// There is no overload that inserts a text.
  static Members<Handle> overloads() { return {kType, REALInsertArrayValueText, REALSetArrayValue, REALGetArrayValue}; }
};

struct ObjectElements {
  static constexpr Type kType = Type::kObject;
  static constexpr devhost::Counted::Kind kKind = devhost::Counted::Kind::kObject;
  using Handle = REALobjectStruct*;
  static Handle make() { return REALNewVariantInt32(7); }
  static void release(Handle object) { REALUnlockObject(object); }
  static Members<Handle> members() {
    return {kType, REALInsertArrayValueObject, REALSetArrayValueObject, REALGetArrayValueObject};
  }
  static Members<Handle> overloads() { return {kType, REALInsertArrayValue, REALSetArrayValue, REALGetArrayValue}; }
};

template <typename Elements>
class CountedElements : public FamilyTest {};

using CountedTypes = ::testing::Types<StringElements, TextElements, ObjectElements>;
TYPED_TEST_SUITE(CountedElements, CountedTypes);

TYPED_TEST(CountedElements, GoOverToTheArrayAndAreReadWithAReferenceOfTheirOwn) {
  using Handle = typename TypeParam::Handle;
  for (const Members<Handle>& members : {TypeParam::members(), TypeParam::overloads()}) {
    REALarrayStruct* const array = create(TypeParam::kType);
    const Handle first = TypeParam::make();
    const Handle second = TypeParam::make();
    members.insert(array, 0, second);
    members.insert(array, 0, first);
    EXPECT_EQ(this->host_.unreleased().size(), 1U) << "the array alone";
    EXPECT_EQ(elementAt(members, array, 0), first);
    EXPECT_EQ(elementAt(members, array, 1), second);
    this->handOver(array);
    EXPECT_EQ(this->living(TypeParam::kKind), 2U) << "those that were read";
    TypeParam::release(first);
    TypeParam::release(second);
    EXPECT_EQ(this->living(TypeParam::kKind), 0U);
  }
}

TYPED_TEST(CountedElements, ThatAreSetReplaceTheOldOnes) {
  using Handle = typename TypeParam::Handle;
  for (const Members<Handle>& members : {TypeParam::members(), TypeParam::overloads()}) {
    REALarrayStruct* const array = create(TypeParam::kType);
    members.insert(array, 0, TypeParam::make());
    const Handle replacement = TypeParam::make();
    members.set(array, 0, replacement);
    EXPECT_EQ(this->living(TypeParam::kKind), 1U);
    const Handle read = elementAt(members, array, 0);
    EXPECT_EQ(read, replacement);
    TypeParam::release(read);
    this->handOver(array);
    EXPECT_EQ(this->living(TypeParam::kKind), 0U);
  }
}

TYPED_TEST(CountedElements, MayBeNil) {
  const auto members = TypeParam::members();
  REALarrayStruct* const array = create(TypeParam::kType);
  members.insert(array, 0, nullptr);
  members.insert(array, 1, TypeParam::make());
  members.set(array, 1, nullptr);
  typename TypeParam::Handle read = TypeParam::make();
  TypeParam::release(read);
  for (const long long index : {0, 1}) {
    members.get(array, index, &read);
    EXPECT_EQ(read, nullptr);
  }
  EXPECT_EQ(REALGetArrayUBound(array), 1);
  EXPECT_EQ(this->living(TypeParam::kKind), 0U);
  this->handOver(array);
}

TYPED_TEST(CountedElements, AtAnIndexOutOfRangeAreDroppedAndNotKept) {
  const auto members = TypeParam::members();
  REALarrayStruct* const array = create(TypeParam::kType);
  members.insert(array, 1, TypeParam::make());
  members.insert(array, -1, TypeParam::make());
  members.set(array, 0, TypeParam::make());
  EXPECT_EQ(elementAt(members, array, 0), nullptr);
  EXPECT_EQ(this->takeFaults().size(), 4U);
  EXPECT_EQ(REALGetArrayUBound(array), -1);
  EXPECT_EQ(this->living(TypeParam::kKind), 0U);
  this->handOver(array);
}

TYPED_TEST(CountedElements, StayTheCallersWhenTheArrayIsOfAnotherType) {
  const auto members = TypeParam::members();
  REALarrayStruct* const array = create(Type::kInt16, 0);
  const auto handle = TypeParam::make();
  members.insert(array, 0, handle);
  members.set(array, 0, handle);
  EXPECT_EQ(this->host_.unreleased().size(), 2U) << "the array and the element";
  TypeParam::release(handle);
  this->handOver(array);
}

TEST_F(ElementMembers, KeepEmptyStrings) {
  REALarrayStruct* const array = create(Type::kString);
  REALInsertArrayValueString(array, 0, build(""));
  REALstringStruct* read = nullptr;
  REALGetArrayValueString(array, 0, &read);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(contents(read), "");
  REALUnlockString(read);
  handOver(array);
}

TEST_F(ElementMembers, KeepNulsAmongTheBytesOfAString) {
  REALarrayStruct* const array = create(Type::kString);
  REALInsertArrayValueString(array, 0, build(std::string_view("\0a\0", 3)));
  REALstringStruct* read = nullptr;
  REALGetArrayValueString(array, 0, &read);
  EXPECT_EQ(contents(read), std::string("\0a\0", 3));
  REALUnlockString(read);
  handOver(array);
}

}  // namespace
