// Texts, built and read through the family. Text properties, variants and elements are with the others of their kind.
#include "host_end_to_end/family_test.h"

namespace {

struct TextData {
  const char* bytes = nullptr;
  std::int64_t size = 0;
  std::uint32_t encoding = 0;
  void* owner = nullptr;
};

class Texts : public FamilyTest {
 protected:
  static std::string contents(const RuntimeText* text) {
    TextData data;
    if (REALGetTextData(text, kHostEncodingUTF8, &data) == 0) {
      return "(none)";
    }
    std::string utf8(data.bytes, static_cast<std::size_t>(data.size));
    REALDisposeTextData(&data);
    return utf8;
  }
};

TEST_F(Texts, HaveTheBytesTheyWereBuiltOf) {
  for (const std::string& bytes : {std::string(), std::string("Grün"), std::string("a\0b", 3)}) {
    const RuntimeText* const text = buildText(bytes);
    EXPECT_EQ(contents(text), bytes);
    REALUnlockText(text);
  }
  EXPECT_EQ(living(devhost::Counted::Kind::kText), 0U);
}

TEST_F(Texts, LiveUntilEveryLockIsUndone) {
  const RuntimeText* const text = buildText("abc");
  REALLockText(text);
  REALUnlockText(text);
  EXPECT_EQ(contents(text), "abc");
  REALUnlockText(text);
  EXPECT_EQ(living(devhost::Counted::Kind::kText), 0U);
}

TEST_F(Texts, AreKeptByTheirDataUntilItIsDisposedOf) {
  const RuntimeText* const text = buildText("abc");
  TextData data;
  EXPECT_EQ(REALGetTextData(text, std::uint32_t{0}, &data), 1);
  REALUnlockText(text);
  EXPECT_EQ(std::string(data.bytes, static_cast<std::size_t>(data.size)), "abc");
  REALDisposeTextData(&data);
  EXPECT_EQ(living(devhost::Counted::Kind::kText), 0U);
}

TEST_F(Texts, CompareByTheirBytes) {
  const RuntimeText* const a = buildText("a");
  const RuntimeText* const b = buildText("b");
  EXPECT_LT(REALCompareText(a, b), 0);
  EXPECT_GT(REALCompareText(b, a), 0);
  EXPECT_EQ(REALCompareText(a, a), 0);
  REALUnlockText(a);
  REALUnlockText(b);
}

TEST_F(Texts, AreConcatenatedIntoANewOne) {
  const RuntimeText* const a = buildText("ä");
  const RuntimeText* const b = buildText("b");
  const auto* const both = reinterpret_cast<const RuntimeText*>(REALConcatenateText(a, b));
  REALUnlockText(a);
  REALUnlockText(b);
  EXPECT_EQ(contents(both), "äb");
  REALUnlockText(both);
}

}  // namespace
