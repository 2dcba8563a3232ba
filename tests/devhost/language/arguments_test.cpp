// Arguments that are written as texts.
#include "devhost/language/arguments.h"

#include <gtest/gtest.h>

#include <cmath>

namespace devhost {
namespace {

Value parsed(const std::string& type, const std::string& text) {
  return parseArguments(parseDeclaration("f(a As " + type + ")"), {text}).front();
}

std::string errorOf(const std::string& declaration, const std::vector<std::string>& texts) {
  try {
    parseArguments(parseDeclaration(declaration), texts);
  } catch (const ValueError& error) {
    return error.what();
  }
  return "no error";
}

bool isRefused(const std::string& type, const std::string& text) {
  return errorOf("f(a As " + type + ")", {text}) != "no error";
}

TEST(ParseArguments, ReadsDecimalAndHexadecimalNumbers) {
  EXPECT_EQ(parsed("UInt32", "4294967295"), 4294967295U);
  EXPECT_EQ(parsed("UInt32", "0xF4520FF3"), 0xF4520FF3U);
  EXPECT_EQ(parsed("Integer", "-2147483648"), INT32_MIN);
  EXPECT_EQ(parsed("Int64", "-9223372036854775808"), INT64_MIN);
  EXPECT_EQ(parsed("Int64", "9223372036854775807"), INT64_MAX);
  EXPECT_EQ(parsed("UInt64", "18446744073709551615"), UINT64_MAX);
  EXPECT_EQ(parsed("Int8", "-0x80"), -128);
  EXPECT_EQ(parsed("Integer", "+5"), 5);
  EXPECT_EQ(parsed("UInt8", "-0"), 0);
}

TEST(ParseArguments, RefusesMalformedAndOutOfRangeNumbers) {
  for (const char* text : {"", "-", "+", "x", "1.5", "1 ", " 1", "1x", "0x", "0xg", "--1", "99999999999999999999999"}) {
    EXPECT_TRUE(isRefused("Int64", text)) << text;
    EXPECT_TRUE(isRefused("UInt64", text)) << text;
  }
  EXPECT_TRUE(isRefused("UInt32", "-1"));
  EXPECT_TRUE(isRefused("UInt32", "4294967296"));
  EXPECT_TRUE(isRefused("Integer", "2147483648"));
  EXPECT_TRUE(isRefused("Integer", "-2147483649"));
  EXPECT_TRUE(isRefused("Int64", "9223372036854775808"));
  EXPECT_TRUE(isRefused("Int64", "-9223372036854775809"));
}

TEST(ParseArguments, ReadsRealNumbersAsInC) {
  EXPECT_EQ(parsed("Double", "-1440.5"), -1440.5);
  EXPECT_EQ(parsed("Double", "1e3"), 1000.0);
  EXPECT_EQ(parsed("Single", "0x1p-1"), 0.5);
  EXPECT_EQ(parsed("Double", "inf"), HUGE_VAL);
  EXPECT_TRUE(std::isnan(parsed("Double", "nan").real()));
  EXPECT_EQ(parsed("Double", "1e-400"), 0.0);
  for (const char* text : {"", "x", "1.5x", " 1", "1e999", "1,5"}) {
    EXPECT_TRUE(isRefused("Double", text)) << text;
  }
}

TEST(ParseArguments, ReadsTruthValuesInAnyCase) {
  EXPECT_EQ(parsed("Boolean", "TRUE"), true);
  EXPECT_EQ(parsed("Boolean", "false"), false);
  EXPECT_TRUE(isRefused("Boolean", "1"));
  EXPECT_TRUE(isRefused("Boolean", ""));
}

TEST(ParseArguments, CopiesTexts) {
  EXPECT_EQ(parsed("String", ""), "");
  EXPECT_EQ(parsed("String", " nil\n"), " nil\n");
}

TEST(ParseArguments, ReadsOnlyNilForObjects) {
  EXPECT_TRUE(parsed("Object", "Nil").isNil());
  EXPECT_EQ(errorOf("f(a As Object)", {"x"}),
            "f, argument a: expected nil (no other object can be written as a text), got \"x\": f(a As Object)");
}

TEST(ParseArguments, RefusesArraysAndPointers) {
  EXPECT_TRUE(isRefused("String()", "a"));
  EXPECT_TRUE(isRefused("Ptr", "0"));
}

TEST(ParseArguments, AcceptsMissingByReferenceArguments) {
  const Declaration declaration = parseDeclaration("f(byref a As Integer, b As String, byref c As String)");
  EXPECT_EQ(parseArguments(declaration, {"text"}), Values{"text"});
  EXPECT_EQ(parseArguments(declaration, {"1", "text", "before"}), (Values{1, "text", "before"}));
}

TEST(ParseArguments, StatesWhatItExpectedInOneLine) {
  EXPECT_EQ(errorOf("f(a As UInt32, byref b As String)", {}),
            "f: expected 1 argument (2 with those by reference), got 0: f(a As UInt32, byref b As String)");
  EXPECT_EQ(errorOf("f()", {"1"}), "f: expected 0 arguments, got 1: f()");
  EXPECT_EQ(errorOf("f(a As Int8)", {"x"}), "f, argument a: expected Int8 (-128 to 127), got \"x\": f(a As Int8)");
  EXPECT_EQ(errorOf("f(a As Double)", {"x"}), "f, argument a: expected a number (Double), got \"x\": f(a As Double)");
  EXPECT_EQ(errorOf("f(a\nAs UInt8)", {"1\r\n\x1B"}),
            "f, argument a: expected UInt8 (0 to 255), got \"1\\r\\n\\x1b\": f(a\\nAs UInt8)");
  EXPECT_EQ(errorOf("f(\t)", {"1"}), "f: expected 0 arguments, got 1: f(\\t)");
}

}  // namespace
}  // namespace devhost
