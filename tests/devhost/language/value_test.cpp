// Values: what compares equal, how they read, and what each type admits.
#include "devhost/language/value.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "devhost/runtime/host.h"

namespace devhost {
namespace {

std::string shown(const Value& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

TEST(Value, NumbersCompareByValueWhateverTheirType) {
  EXPECT_EQ(Value(3), Value(3U));
  EXPECT_EQ(Value(3), Value(3.0));
  EXPECT_FALSE(Value(-1) == Value(0xFFFFFFFFFFFFFFFFU));
  EXPECT_FALSE(Value(1) == Value(true));
}

TEST(Value, TextsCompareByTheirBytes) {
  Host host;
  EXPECT_EQ(Value(host.makeString("a")), Value("a"));
  EXPECT_FALSE(Value("a") == Value("b"));
  EXPECT_FALSE(Value(host.makeString("")) == Value(nullptr));
  EXPECT_EQ(Value(Ref<String>()), Value(nullptr));
}

TEST(Value, ReadsAsAPersonWouldWriteIt) {
  Host host;
  EXPECT_EQ(shown(true), "True");
  EXPECT_EQ(shown(-3), "-3");
  EXPECT_EQ(shown(1440.0), "1440");
  EXPECT_EQ(shown(0.1), "0.1");
  EXPECT_EQ(shown("text"), "\"text\"");
  EXPECT_EQ(shown(nullptr), "nil");
  EXPECT_EQ(shown(host.makeArray(Type::kString, {"a", "b"})), "[\"a\", \"b\"]");
  EXPECT_EQ(shown(host.makeObject("Window")), "object of class Window");
}

TEST(NumberText, ReadsBackAsTheSameNumber) {
  EXPECT_EQ(numberText(-1440.5), "-1440.5");
  EXPECT_EQ(numberText(1.0 / 3), "0.3333333333333333");
  EXPECT_EQ(numberText(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(numberText(std::nan("")), "nan");
  EXPECT_EQ(numberText(-HUGE_VAL), "-inf");
}

TEST(Value, AsksForTheRightKind) {
  EXPECT_THROW(Value("a").integer(), ValueError);
  EXPECT_THROW(Value(1).boolean(), ValueError);
  EXPECT_THROW(Value(-1).unsignedNumber(), ValueError);
  EXPECT_THROW(Value(~0ULL).integer(), ValueError);
  EXPECT_THROW(Value(1).text(), ValueError);
  EXPECT_EQ(Value(nullptr).text(), "");
}

struct Bounds {
  Type type;
  std::int64_t lowest;
  std::uint64_t highest;
};

class BoundsTest : public ::testing::TestWithParam<Bounds> {};

TEST_P(BoundsTest, AreThoseOfTheArgumentsType) {
  Host host;
  const Bounds bounds = GetParam();
  const DeclaredType type{bounds.type, {}, false};
  EXPECT_EQ(convertToArgument(host, bounds.lowest, type), Value(bounds.lowest));
  EXPECT_EQ(convertToArgument(host, bounds.highest, type), Value(bounds.highest));
  EXPECT_THROW(convertToArgument(host, bounds.lowest - 1, type), ValueError);
  EXPECT_THROW(convertToArgument(host, bounds.highest + 1, type), ValueError);
  EXPECT_THROW(convertToArgument(host, 0.5, type), ValueError);
}

INSTANTIATE_TEST_SUITE_P(Types, BoundsTest,
                         ::testing::Values(Bounds{Type::kInt8, -128, 127}, Bounds{Type::kUInt8, 0, 255},
                                           Bounds{Type::kInt16, -32768, 32767}, Bounds{Type::kUInt16, 0, 65535},
                                           Bounds{Type::kInt32, -2147483648LL, 2147483647},
                                           Bounds{Type::kUInt32, 0, 4294967295U},
                                           Bounds{Type::kInteger, -2147483648LL, 2147483647},
                                           Bounds{Type::kUInteger, 0, 4294967295U}));

}  // namespace
}  // namespace devhost
