// The records of modules and methods, as the memory that the host reads.
#include "host/records.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace {

void method(int /*argument*/) {}

// As the plugin has them: constant-initialised writable globals. Members left out are zero.
REALmethodDefinition gMethods[] = {{reinterpret_cast<REALfunction>(&method), nullptr, "First( a as Integer )"},
                                   {reinterpret_cast<REALfunction>(&method), nullptr, "Second()"}};
constinit REALmoduleDefinition gModule = {13, "Name", gMethods, 2};

template <std::size_t kWords, typename Record>
std::array<std::uint64_t, kWords> wordsOf(const Record& record) {
  static_assert(sizeof(Record) == 8 * kWords);
  std::array<std::uint64_t, kWords> words;
  std::memcpy(words.data(), &record, sizeof record);
  return words;
}

std::uint64_t bitsOf(const void* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }

TEST(ModuleRecord, Is192BytesOfWhichAllButTheFirst32AreZero) {
  const auto words = wordsOf<24>(gModule);
  EXPECT_EQ(words[0], 13U);
  EXPECT_STREQ(reinterpret_cast<const char*>(words[1]), "Name");
  EXPECT_EQ(words[2], bitsOf(gMethods));
  EXPECT_EQ(words[3], 2U);
  for (std::size_t word = 4; word < words.size(); ++word) {
    EXPECT_EQ(words[word], 0U) << word;
  }
}

TEST(MethodRecord, Is48BytesInRowsWithoutGaps) {
  static_assert(sizeof gMethods == 96);
  for (const REALmethodDefinition& row : gMethods) {
    const auto words = wordsOf<6>(row);
    EXPECT_EQ(words[0], reinterpret_cast<std::uintptr_t>(&method));
    EXPECT_EQ(words[1], 0U);
    EXPECT_EQ(words[2], bitsOf(row.declaration));
    EXPECT_EQ(words[3], 0U);
    EXPECT_EQ(words[4], 0U);
    EXPECT_EQ(words[5], 0U);
  }
  EXPECT_STREQ(gMethods[1].declaration, "Second()");
}

}  // namespace
