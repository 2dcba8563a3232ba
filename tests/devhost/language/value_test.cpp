// Values: which compare equal, how they read, and what each type admits.
#include "devhost/language/value.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

namespace devhost {
namespace {

std::string shown(const Value& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

TEST(Value, NumbersOfDifferentTypesCompareByValue) {
  EXPECT_EQ(Value(3), Value(3U));
  EXPECT_EQ(Value(3), Value(3.0));
  EXPECT_FALSE(Value(-1) == Value(0xFFFFFFFFFFFFFFFFU));
  EXPECT_FALSE(Value(1) == Value(true));
}

TEST(Value, TextsCompareByTheirBytes) {
  EXPECT_EQ(Value("a"), Value(std::string("a")));
  EXPECT_FALSE(Value("a") == Value("b"));
  EXPECT_FALSE(Value("") == Value(nullptr));
}

TEST(Value, ArraysCompareByTheirElements) {
  EXPECT_EQ(Value::array({"a", nullptr}), Value::array({"a", nullptr}));
  EXPECT_FALSE(Value::array({"a"}) == Value::array({"b"}));
  EXPECT_FALSE(Value::array({}) == Value(nullptr));
}

TEST(Value, IsWrittenAsAPersonWritesIt) {
  EXPECT_EQ(shown(true), "True");
  EXPECT_EQ(shown(-3), "-3");
  EXPECT_EQ(shown(1440.0), "1440");
  EXPECT_EQ(shown(0.1), "0.1");
  EXPECT_EQ(shown("text"), "\"text\"");
  EXPECT_EQ(shown(nullptr), "nil");
  EXPECT_EQ(shown(Value::array({"a", "b"})), "[\"a\", \"b\"]");
}

TEST(Value, ThrowsForAnotherKind) {
  EXPECT_THROW(Value("a").integer(), ValueError);
  EXPECT_THROW(Value(1).boolean(), ValueError);
  EXPECT_THROW(Value(-1).unsignedNumber(), ValueError);
  EXPECT_THROW(Value(~0ULL).integer(), ValueError);
  EXPECT_THROW(Value(1).text(), ValueError);
  EXPECT_THROW(Value("a").elements(), ValueError);
  EXPECT_EQ(Value(nullptr).text(), "");
}

TEST(NumberText, ReadsBackAsTheSameNumber) {
  EXPECT_EQ(numberText(-1440.5), "-1440.5");
  EXPECT_EQ(numberText(1.0 / 3), "0.3333333333333333");
  EXPECT_EQ(numberText(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(numberText(std::nan("")), "nan");
  EXPECT_EQ(numberText(-HUGE_VAL), "-inf");
}

struct Bounds {
  Type type;
  std::int64_t lowest;
  std::uint64_t highest;

  friend std::ostream& operator<<(std::ostream& out, const Bounds& bounds) {
    return out << bounds.lowest << " to " << bounds.highest;
  }
};

class ConvertTest : public ::testing::TestWithParam<Bounds> {};

TEST_P(ConvertTest, AdmitsWholeNumbersWithinTheTypesBounds) {
  const Bounds bounds = GetParam();
  const DeclaredType type{bounds.type, {}, false};
  EXPECT_EQ(convert(bounds.lowest, type), Value(bounds.lowest));
  EXPECT_EQ(convert(bounds.highest, type), Value(bounds.highest));
  EXPECT_THROW(convert(0.5, type), ValueError);
  if (factsOf(bounds.type).width < sizeof(std::int64_t)) {
    EXPECT_THROW(convert(bounds.lowest - 1, type), ValueError);
    EXPECT_THROW(convert(bounds.highest + 1, type), ValueError);
  }
}

INSTANTIATE_TEST_SUITE_P(Types, ConvertTest,
                         ::testing::Values(Bounds{Type::kInt8, -128, 127}, Bounds{Type::kUInt8, 0, 255},
                                           Bounds{Type::kInt16, -32768, 32767}, Bounds{Type::kUInt16, 0, 65535},
                                           Bounds{Type::kInt32, -2147483648LL, 2147483647},
                                           Bounds{Type::kUInt32, 0, 4294967295U},
                                           Bounds{Type::kInteger, -2147483648LL, 2147483647},
                                           Bounds{Type::kUInteger, 0, 4294967295U},
                                           Bounds{Type::kInt64, INT64_MIN, std::numeric_limits<std::int64_t>::max()},
                                           Bounds{Type::kUInt64, 0, UINT64_MAX}),
                         [](const auto& info) { return factsOf(info.param.type).name; });

TEST(Convert, RefusesSignedAndUnsignedNumbersBeyond64Bits) {
  EXPECT_THROW(convert(UINT64_MAX, {Type::kInt64, {}, false}), ValueError);
  EXPECT_THROW(convert(-1, {Type::kUInt64, {}, false}), ValueError);
}

TEST(Convert, RefusesAnArrayWithAnElementOfAnotherType) {
  const DeclaredType strings{Type::kString, "String", true};
  EXPECT_EQ(convert(Value::array({"a", nullptr}), strings), Value::array({"a", nullptr}));
  EXPECT_THROW(convert(Value::array({"a", 1}), strings), ValueError);
  EXPECT_THROW(convert("a", strings), ValueError);
}

}  // namespace
}  // namespace devhost
