// Calls by declaration: widths, by-reference slots, ownership of handles, and wrong arguments.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "devhost/entries/host.h"

namespace devhost {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class NativeCall : public ::testing::Test {
 protected:
  std::string errorOf(const char* method, const Values& arguments) const {
    try {
      plugin_.call(method, arguments);
    } catch (const ValueError& error) {
      return error.what();
    }
    return "no error";
  }

  Host host_;
  Plugin plugin_ = host_.load(SAMPLE_PLUGIN);
};

TEST_F(NativeCall, PassesArgumentsAtTheirWidths) {
  const CallResult lowest = plugin_.call("Widths", {-128, 0, -32768, 0, std::numeric_limits<std::int32_t>::min(), 0,
                                                    std::numeric_limits<std::int64_t>::min(), 0, false, -1.5, -2.25,
                                                    std::numeric_limits<std::int32_t>::min(), 0});
  EXPECT_EQ(lowest.result, "-128 0 -32768 0 -2147483648 0 -9223372036854775808 0 0 -1.5 -2.25 -2147483648 0");
  const CallResult highest =
      plugin_.call("Widths", {127, 255, 32767, 65535, 2147483647, 4294967295U, std::numeric_limits<std::int64_t>::max(),
                              std::numeric_limits<std::uint64_t>::max(), true, 1.5, 2.25, 2147483647, 4294967295U});
  EXPECT_EQ(highest.result,
            "127 255 32767 65535 2147483647 4294967295 9223372036854775807 18446744073709551615 1 1.5 2.25 2147483647 "
            "4294967295");
}

TEST_F(NativeCall, ReadsResultsAtTheirWidths) {
  EXPECT_EQ(plugin_.call("Add", {-3, 1}).result, -2);
  EXPECT_EQ(plugin_.call("Smallest").result, -128);
  EXPECT_EQ(plugin_.call("Largest16").result, 65535);
  EXPECT_EQ(plugin_.call("Most").result, std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(plugin_.call("Half", {-1440.5}).result, -720.25);
  EXPECT_EQ(plugin_.call("HalfSingle", {0.5}).result, 0.25);
  EXPECT_EQ(plugin_.call("Not_", {false}).result, true);
  EXPECT_EQ(plugin_.call("Not_", {true}).result, false);
}

TEST_F(NativeCall, ReturnsNothingForMethodWithoutResult) {
  EXPECT_TRUE(plugin_.call("Listen", {nullptr}).result.isNothing());
}

TEST_F(NativeCall, RecordsFaultForBooleanOf2) {
  EXPECT_EQ(plugin_.call("BadBoolean").result, true);
  EXPECT_THAT(host_.faults(), ElementsAre("BadBoolean, result: a Boolean of 2"));
}

TEST_F(NativeCall, PassesNotANumberAndInfinities) {
  EXPECT_TRUE(std::isnan(plugin_.call("Half", {std::nan("")}).result.real()));
  EXPECT_EQ(plugin_.call("Half", {HUGE_VAL}).result, HUGE_VAL);
}

TEST_F(NativeCall, AcceptsMissingByReferenceArguments) {
  const CallResult result = plugin_.call("SetAll");
  EXPECT_EQ(result["truth"], true);
  EXPECT_EQ(result["WHOLE"], -5);
  EXPECT_EQ(result["number"], 0.5);
  EXPECT_EQ(result["text"], "new");
  EXPECT_THROW(result["other"], ValueError);
  EXPECT_THAT(host_.unreleased(), IsEmpty());
}

TEST_F(NativeCall, PassesByReferenceArguments) {
  const CallResult result = plugin_.call("LeaveAlone", {-7, "kept"});
  EXPECT_EQ(result["whole"], -7);
  EXPECT_EQ(result["text"], "kept");
  EXPECT_EQ(result.slot("whole"), static_cast<std::uint64_t>(-7));
  EXPECT_THAT(host_.unreleased(), IsEmpty());
}

TEST_F(NativeCall, LeavesUpperHalfOfIntegerSlotAlone) {
  const CallResult result = plugin_.call("WriteFive", {RawSlot{0xFFFFFFFFFFFFFFFF}});
  EXPECT_EQ(result.slot("whole"), 0xFFFFFFFF00000005U);
  EXPECT_EQ(result["whole"], 5);
}

TEST_F(NativeCall, AcceptsReleaseOfASlotsOldString) {
  EXPECT_EQ(plugin_.call("SetAll", {false, 0, 0, "old"})["text"], "new");
  EXPECT_THAT(host_.unreleased(), IsEmpty());
  EXPECT_EQ(host_.handles().count(), 0U);
}

TEST_F(NativeCall, ReportsUnreleasedOldStringOfASlot) {
  EXPECT_EQ(plugin_.call("ForgetOld", {"old"})["text"], "new");
  EXPECT_THAT(host_.unreleased(), ElementsAre("string \"old\" (3 bytes)"));
}

TEST_F(NativeCall, ReportsUnreleasedBuiltString) {
  plugin_.call("Keep", {"kept"});
  EXPECT_THAT(host_.unreleased(), ElementsAre("string \"kept\" (4 bytes)"));
}

TEST_F(NativeCall, TakesOverResults) {
  EXPECT_EQ(plugin_.call("Echo", {"text"}).result, "text");
  EXPECT_THAT(host_.unreleased(), IsEmpty());
  EXPECT_EQ(host_.handles().count(), 0U);
}

TEST_F(NativeCall, RecordsFaultForReleasedArgument) {
  plugin_.call("ReleaseTwice", {"text"});
  EXPECT_THAT(host_.faults(), ElementsAre(HasSubstr("REALUnlockString: releases a reference that it does not hold")));
}

TEST_F(NativeCall, RecordsFaultForReturnedArgumentWithoutReference) {
  EXPECT_EQ(plugin_.call("ReturnArgument", {"text"}).result, "text");
  EXPECT_THAT(host_.faults(), ElementsAre(HasSubstr("ReturnArgument, result: hands over a reference")));
}

TEST_F(NativeCall, PassesAndReadsArrays) {
  const CallResult result = plugin_.call("Words", {"one two three"});
  EXPECT_THAT(result.result.texts(), ElementsAre("one", "two", "three"));
  EXPECT_THAT(plugin_.call("Words", {""}).result.texts(), IsEmpty());
  EXPECT_EQ(plugin_.call("IsNil", {result.result}).result, false);
  EXPECT_EQ(plugin_.call("IsNil", {nullptr}).result, true);
  EXPECT_THAT(host_.unreleased(), IsEmpty());
  EXPECT_THAT(host_.faults(), IsEmpty());
}

TEST_F(NativeCall, RefusesArrayOfOtherElements) {
  EXPECT_THAT(errorOf("IsNilNumbers", {Value::array({"a"})}),
              HasSubstr("argument numbers: expected an array (Int64())"));
}

TEST_F(NativeCall, RefusesUnknownMethod) { EXPECT_EQ(errorOf("Subtract", {1}), "no method is called Subtract"); }

TEST_F(NativeCall, RefusesWrongCountWithDeclaration) {
  EXPECT_EQ(errorOf("Add", {1}), "Add: expected 2 arguments, got 1: Add(a As Integer, b As Integer) As Integer");
  EXPECT_EQ(errorOf("Echo", {}), "Echo: expected 1 argument, got 0: Echo(text As String) As String");
  EXPECT_EQ(errorOf("WriteFive", {1, 2}),
            "WriteFive: expected 0 arguments (1 with those by reference), got 2: WriteFive(byref whole As Integer)");
}

TEST_F(NativeCall, RefusesWrongTypeWithExpectedType) {
  EXPECT_EQ(errorOf("Add", {1, "two"}), "Add, argument b: expected Integer (-2147483648 to 2147483647), got \"two\"");
  EXPECT_EQ(errorOf("Add", {1, 2147483648}),
            "Add, argument b: expected Integer (-2147483648 to 2147483647), got 2147483648");
  EXPECT_EQ(errorOf("Half", {true}), "Half, argument number: expected a number (Double), got True");
  EXPECT_EQ(errorOf("Not_", {1}), "Not_, argument truth: expected True or False, got 1");
  EXPECT_EQ(errorOf("Echo", {3}), "Echo, argument text: expected a text (String), got 3");
  EXPECT_EQ(errorOf("Listen", {"x"}), "Listen, argument obj: expected an object, got \"x\"");
}

void throwOverflow(String**) { throw std::overflow_error("too much"); }

TEST_F(NativeCall, RethrowsExceptionsAndReclaimsSlots) {
  const Declaration declaration = parseDeclaration("Throw(byref text As String)");
  const auto* const function = reinterpret_cast<const void*>(&throwOverflow);
  EXPECT_THROW(callFunction(host_, declaration, function, {"old"}), std::overflow_error);
  EXPECT_THAT(host_.unreleased(), IsEmpty());
}

TEST(AutoreleasePool, SurroundsLoadingAndEveryCall) {
  Host host;
  const Plugin plugin = host.load(POOL_PLUGIN);
  const auto events = reinterpret_cast<const char* (*)()>(plugin.symbol("poolEvents"));
  ASSERT_NE(events, nullptr);
  EXPECT_STREQ(events(), "(m)");
  plugin.call("Work");
  plugin.call("Work");
  EXPECT_STREQ(events(), "(m)(w)(w)");
}

}  // namespace
}  // namespace devhost
