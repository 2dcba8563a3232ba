// Objective-C in a library that is compiled for the Mac here, over this system's runtime and Foundation.
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <stdexcept>

#include "frameworks/Foundation/autorelease_pool.h"
#include "tools/machorun/loader.h"

namespace {

class Messages : public testing::TestWithParam<const char*> {
 protected:
  template <typename Type>
  Type* symbol(const char* name) const {
    static std::map<std::string, const machorun::LoadedImage*> images;
    const machorun::LoadedImage*& image = images[GetParam()];
    if (image == nullptr) {
      image = &machorun::load(std::string(SAMPLE_FOLDER "/") + GetParam() + ".dylib");
    }
    return reinterpret_cast<Type*>(machorun::findSymbol(*image, name));
  }
  const platform::ScopedPool pool_;
};

TEST_P(Messages, ReachConstantStrings) {
  EXPECT_EQ(symbol<unsigned long()>("constantLength")(), 8U);
  EXPECT_STREQ(symbol<const char*()>("constantText")(), "constant");
}

TEST_P(Messages, ReachClassesByName) {
  EXPECT_EQ(symbol<unsigned long(const char*)>("madeLength")("four"), 4U);
  EXPECT_EQ(symbol<int()>("hasItsClass")(), 1);
}

TEST_P(Messages, ReturnStructuresAndNumbers) {
  EXPECT_EQ(symbol<unsigned long(const char*)>("placeInConstant")("stant"), 3U);
  EXPECT_EQ(symbol<double(const char*)>("number")("2.5"), 2.5);
  EXPECT_EQ(symbol<double(double, double, double, double)>("sumOfRectangle")(1, 2, 4, 8), 15);
}

TEST_P(Messages, ToNilReturnZero) { EXPECT_EQ(symbol<unsigned long()>("messagesToNil")(), 0U); }

/// A method that returns the whole register, or throws for 0.
std::uint64_t lowByteOf(void*, void*, std::uint64_t number) {
  return number != 0 ? number : throw std::runtime_error("thrown");
}

TEST_P(Messages, ReturnBooleansInTheWholeRegister) {
  class_addMethod(reinterpret_cast<Class>(objc_getClass("NSObject")), sel_registerName("lowByteOf:"),
                  reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(lowByteOf)), "C@:Q");
  auto* const low_byte = symbol<unsigned(std::uint64_t)>("lowByte");
  EXPECT_EQ(low_byte(0xABCDEF01ABCDEF01), 1U);
  EXPECT_EQ(low_byte(0xABCDEF01ABCDEF00), 0U);
  EXPECT_THROW(low_byte(0), std::runtime_error);
}

INSTANTIATE_TEST_SUITE_P(, Messages, testing::Values("messages_opcodes", "messages_chains"),
                         [](const auto& info) { return info.param; });

}  // namespace
