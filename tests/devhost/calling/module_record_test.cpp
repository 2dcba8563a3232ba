// Module records as raw memory, sound and malformed.
#include "devhost/calling/module_record.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

namespace devhost {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// A record of two rows, which tests damage.
class ReadModule : public ::testing::Test {
 protected:
  ReadModule() {
    put(record_, 0, 13);
    put(record_, 8, address("Sample"));
    put(record_, 16, address(rows_));
    put(record_, 24, 2);
    for (std::size_t row = 0; row < 2; ++row) {
      put(rows_, row * 48, address(&code_));
      put(rows_, row * 48 + 16, address(row == 0 ? "First()" : "Second(a As Integer) As Double"));
    }
  }

  static std::uint64_t address(const void* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }
  template <std::size_t kSize>
  static void put(unsigned char (&memory)[kSize], std::size_t offset, std::uint64_t value) {
    std::memcpy(memory + offset, &value, sizeof value);
  }

  std::string error() const {
    try {
      readModule(record_);
    } catch (const PluginError& error) {
      return error.what();
    }
    return "no error";
  }

  char code_ = 0;
  unsigned char record_[kModuleRecordSize] = {};
  unsigned char rows_[2 * kMethodRowSize] = {};
};

TEST_F(ReadModule, ReadsRecordAndRows) {
  put(record_, 32, 7);
  put(record_, 184, 8);
  put(rows_, 8, address(&rows_));
  put(rows_, 40, 9);
  const Module module = readModule(record_);
  EXPECT_EQ(module.record, record_);
  EXPECT_EQ(module.version, 13);
  EXPECT_EQ(module.name, "Sample");
  EXPECT_EQ(module.further.front(), 7U);
  EXPECT_EQ(module.further.back(), 8U);
  ASSERT_EQ(module.methods.size(), 2U);
  EXPECT_EQ(module.methods[0].declaration.text, "First()");
  EXPECT_EQ(module.methods[0].function, &code_);
  EXPECT_EQ(module.methods[0].second_function, &rows_);
  EXPECT_THAT(module.methods[0].further, ElementsAre(0, 0, 9));
  EXPECT_EQ(module.methods[1].declaration.name, "Second");
}

TEST_F(ReadModule, RefusesNull) { EXPECT_THROW(readModule(nullptr), PluginError); }

TEST_F(ReadModule, RefusesNullName) {
  put(record_, 8, 0);
  EXPECT_EQ(error(), "module record: the name is null");
}

TEST_F(ReadModule, RefusesNameWithoutEnd) {
  const std::string endless(5000, 'n');
  put(record_, 8, address(endless.data()));
  EXPECT_EQ(error(), "module record: the name has no end within 4096 bytes");
}

TEST_F(ReadModule, RefusesModuleWithoutRows) {
  put(record_, 24, 0);
  EXPECT_EQ(error(), "module Sample: 0 method rows, expected 1 to 4096");
}

TEST_F(ReadModule, RefusesAbsurdNumberOfRows) {
  put(record_, 24, ~0ULL);
  EXPECT_THAT(error(), HasSubstr("-1 method rows"));
  put(record_, 24, 1ULL << 40);
  EXPECT_THAT(error(), HasSubstr("1099511627776 method rows"));
}

TEST_F(ReadModule, RefusesNullTable) {
  put(record_, 16, 0);
  EXPECT_EQ(error(), "module Sample: the method table is null");
}

TEST_F(ReadModule, RefusesNullFunction) {
  put(rows_, 48, 0);
  EXPECT_EQ(error(), "module Sample, method row 2: the function is null");
}

TEST_F(ReadModule, RefusesNullDeclaration) {
  put(rows_, 16, 0);
  EXPECT_EQ(error(), "module Sample, method row 1: the declaration is null");
}

TEST_F(ReadModule, RefusesBrokenDeclaration) {
  put(rows_, 16, address("First("));
  EXPECT_THAT(error(), HasSubstr("module Sample, method row 1: declaration \"First(\": expected"));
}

}  // namespace
}  // namespace devhost
