// Libraries that are compiled for the Mac here, loaded and called.
#include "tools/machorun/loader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "tools/machorun/linking.h"

namespace {

using machorun::LoadedImage;
using testing::HasSubstr;
using testing::StartsWith;

std::string sample(const std::string& name) { return std::string(SAMPLE_FOLDER "/") + name + ".dylib"; }

class Sample : public testing::TestWithParam<const char*> {
 protected:
  template <typename Type>
  Type* symbol(const char* name) const {
    void* const found = machorun::findSymbol(image_, name);
    EXPECT_NE(found, nullptr) << name;
    return reinterpret_cast<Type*>(found);
  }
  const LoadedImage& image_ = loaded(sample(GetParam()));

 private:
  static const LoadedImage& loaded(const std::string& path) {
    const LoadedImage* const image = machorun::imageOf(path);
    return image != nullptr ? *image : machorun::load(path);
  }
};

}  // namespace

// What the library imports from this program.
extern "C" {
__attribute__((visibility("default"))) int sample_variable_of_test = 1000;
__attribute__((visibility("default"))) int sample_function_of_test(int number) { return 2 * number; }

// In place of platform/'s: the argument is the result, whose low byte counts; or is thrown.
__attribute__((visibility("default"))) const void* CGColorSpaceIsWideGamutRGB(const void* space) { return space; }
__attribute__((visibility("default"))) bool CFNumberGetValue(const char* number, long, void*) {
  throw std::runtime_error(number);
}
}

namespace {

TEST_P(Sample, PointsIntoItself) {
  EXPECT_EQ(symbol<int()>("readNumber")(), 41);
  EXPECT_EQ(symbol<int()>("pointerDistance")(), 1);
  EXPECT_EQ(*symbol<int>("exportedNumber"), 5);
}

TEST_P(Sample, IsBoundToSymbolsOfThisProcess) {
  EXPECT_EQ(symbol<std::size_t(const char*)>("callLibrary")("four"), 4U);
  EXPECT_EQ(symbol<int(int)>("callTest")(21), 1042);
  EXPECT_EQ(symbol<int(int)>("callThroughPointer")(4), 8);
  EXPECT_EQ(symbol<int()>("hasMissingFunction")(), 0);
}

TEST_P(Sample, SeesWholeRegisterOfBooleanResults) {
  const void* const garbage_true = reinterpret_cast<const void*>(0xABCDEF01ABCDEF01);
  const void* const garbage_false = reinterpret_cast<const void*>(0xABCDEF01ABCDEF00);
  EXPECT_EQ(symbol<unsigned(const void*)>("isWideGamut")(garbage_true), 1U);
  EXPECT_EQ(symbol<unsigned(const void*)>("isWideGamut")(garbage_false), 0U);
  auto* const imported = machorun::resolveFromProcess("_CGColorSpaceIsWideGamutRGB");
  EXPECT_EQ(reinterpret_cast<std::uint64_t (*)(const void*)>(imported)(garbage_true), 1U);
}

TEST_P(Sample, PassesExceptionsOfFunctionsWithBooleanResults) {
  try {
    symbol<unsigned(const void*)>("readValue")("thrown");
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "thrown");
  }
}

TEST_P(Sample, RunsItsInitialisersInOrder) { EXPECT_EQ(symbol<int()>("initialisedValue")(), 30); }

TEST_P(Sample, HasVariablesOfEachThread) {
  auto* const next = symbol<int()>("nextCount");
  const int first = next();
  EXPECT_EQ(next(), first + 1);
  long* const own = symbol<long*()>("zerosOfThread")();
  own[3] = 5;
  std::thread([&] {
    EXPECT_EQ(next(), 8);
    long* const other = symbol<long*()>("zerosOfThread")();
    EXPECT_NE(other, own);
    EXPECT_EQ(other[3], 0);
  }).join();
  EXPECT_EQ(own[3], 5);
}

TEST_P(Sample, KeepsArgumentsWhileItReachesThreadLocalVariables) {
  auto* const mixed = symbol<double(double, double, double, double, long, long, long, long)>("mixed");
  std::thread([&] { EXPECT_EQ(mixed(1, 2, 3, 4, 5, 6, 7, 8), 1 + 4 + 9 + 16 + 25 + 36 + 49 + 64); }).join();
}

TEST_P(Sample, CallsBlocksOfItsOwnAndOfThisSystem) {
  EXPECT_EQ(symbol<int(int)>("makeBlock")(5), 105);
  EXPECT_EQ(symbol<int(int (^)(int), int)>("callBlock")(
                ^(int value) {
                  return value * 2;
                },
                21),
            42);
}

void throwNumber(long number) { throw std::runtime_error("thrown " + std::to_string(number)); }
void doNothing(long) {}

constexpr long kNumbers[] = {1, 2, 3, 4, 5, 6};

class Unwinding : public Sample {
 protected:
  /// Has the callback throw through the function, and returns what the function's cleanups added up.
  template <typename... Sizes>
  long sumAfterThrow(const char* function, Sizes... sizes) {
    symbol<long>("unwoundSum")[0] = 0;
    auto* const called = symbol<long(void (*)(long), const long*, Sizes...)>(function);
    try {
      called(throwNumber, kNumbers, sizes...);
      ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "thrown 3");
    }
    return symbol<long>("unwoundSum")[0];
  }
};

TEST_P(Unwinding, RunsCleanupsWithTheRegistersOfTheirFrame) {
  EXPECT_EQ(sumAfterThrow("passThrough"), 54321);
  EXPECT_EQ(sumAfterThrow("passThroughLargeFrame"), 21);
  EXPECT_EQ(sumAfterThrow("passThroughVariableFrame", std::size_t{100}), 1);
}

TEST_P(Unwinding, LeavesCallsThatReturnAlone) {
  EXPECT_EQ(symbol<long(void (*)(long), const long*)>("passThrough")(doNothing, kNumbers),
            (3 ^ 10 ^ 21 ^ 44 ^ 65 ^ 102) + 15);
}

TEST_P(Sample, IsFoundByItsPathAndByAddressesInIt) {
  EXPECT_EQ(machorun::imageOf(sample(GetParam())), &image_);
  EXPECT_EQ(machorun::imageAt(symbol<void>("readNumber")), &image_);
  EXPECT_EQ(machorun::imageAt(&image_), nullptr);
  EXPECT_EQ(machorun::findSymbol(image_, "nothing"), nullptr);
}

constexpr const char* kSamples[] = {"opcodes", "chains", "opcodes_frameless", "chains_frameless"};
INSTANTIATE_TEST_SUITE_P(, Sample, testing::ValuesIn(kSamples), [](const auto& info) { return info.param; });
INSTANTIATE_TEST_SUITE_P(, Unwinding, testing::ValuesIn(kSamples), [](const auto& info) { return info.param; });

// --- files that cannot be loaded

std::string problemWith(const std::string& path) {
  try {
    machorun::load(path);
  } catch (const macho::MachoError& error) {
    return error.what();
  }
  return "was loaded";
}

TEST(Load, NamesFileAndSymbolThatNothingProvides) {
  EXPECT_EQ(problemWith(sample("needy")), sample("needy") + ": nothing provides _function_of_nobody");
}

TEST(Load, NamesFileThatCannotBeReadOrIsOfAnotherKind) {
  EXPECT_EQ(problemWith("/nowhere.dylib"), "/nowhere.dylib: cannot be read");
  EXPECT_EQ(problemWith("/proc/self/exe"), "/proc/self/exe: not a 64-bit, little-endian Mach-O file");
  EXPECT_TRUE(machorun::isForMac(sample("opcodes")));
  EXPECT_FALSE(machorun::isForMac("/proc/self/exe"));
  EXPECT_FALSE(machorun::isForMac("/nowhere.dylib"));
}

// --- hostile files: the sample with changes that its reader has to see

class HostileFile : public testing::TestWithParam<const char*> {
 protected:
  HostileFile() {
    std::ifstream file(sample(GetParam()), std::ios::binary);
    contents_.assign(std::istreambuf_iterator<char>(file), {});
  }
  ~HostileFile() override { std::filesystem::remove(path_); }

  /// What keeps the contents from being loaded, without the path: nothing when they can be. They are not run.
  std::string problem() {
    std::filesystem::remove(path_);  // a file system may write a file that is truncated to the disk at once
    std::ofstream(path_, std::ios::binary) << contents_;
    std::string text;
    try {
      machorun::checkLoadable(path_);
      return "";
    } catch (const macho::MachoError& error) {
      text = error.what();
    }
    EXPECT_THAT(text, StartsWith(path_ + ": "));
    EXPECT_EQ(text.find('\n'), std::string::npos);
    return text.substr(std::min(text.size(), path_.size() + 2));
  }
  template <typename Number>
  Number& at(std::size_t offset) {
    return *reinterpret_cast<Number*>(contents_.data() + offset);
  }
  /// The load command of a segment.
  std::size_t segment(const std::string& name) {
    const std::size_t found = contents_.find(name + std::string(16 - name.size(), '\0'));
    EXPECT_NE(found, std::string::npos) << name;
    return found - 8;
  }

  const std::string path_ = testing::TempDir() + "hostile_" + std::to_string(getpid()) + ".dylib";
  std::string contents_;
};

constexpr std::size_t kSegmentAddress = 24;
constexpr std::size_t kSegmentSize = 32;
constexpr std::size_t kSegmentFileOffset = 40;
constexpr std::size_t kSegmentFileSize = 48;
constexpr std::size_t kCommandCount = 16;

TEST_P(HostileFile, TruncatedAnywhereIsRefused) {
  const std::string whole = contents_;
  for (std::size_t parts = 0; parts < 64; ++parts) {
    contents_ = whole.substr(0, whole.size() * parts / 64);
    EXPECT_NE(problem(), "");
  }
}

TEST_P(HostileFile, OfAnotherProcessorOrKindIsRefused) {
  at<std::uint32_t>(12) = 2;
  EXPECT_EQ(problem(), "is a program, not a library");
  at<std::uint32_t>(4) = 7;
  EXPECT_THAT(problem(), StartsWith("has no code for "));
}

TEST_P(HostileFile, WithMoreLoadCommandsThanItHoldsIsRefused) {
  at<std::uint32_t>(kCommandCount) = 0xFFFFFFFF;
  EXPECT_THAT(problem(), HasSubstr("load command"));
}

TEST_P(HostileFile, WithOverlappingSegmentsIsRefused) {
  at<std::uint64_t>(segment("__LINKEDIT") + kSegmentAddress) = 0;
  EXPECT_THAT(problem(), HasSubstr("overlaps another one"));
}

TEST_P(HostileFile, WithSegmentBetweenPagesIsRefused) {
  at<std::uint64_t>(segment("__LINKEDIT") + kSegmentAddress) += 8;
  EXPECT_EQ(problem(), "the segment __LINKEDIT does not begin at a page");
}

TEST_P(HostileFile, WithLargeOrDistantSegmentIsRefused) {
  at<std::uint64_t>(segment("__LINKEDIT") + kSegmentSize) = std::uint64_t{1} << 40;
  EXPECT_EQ(problem(), "the segment __LINKEDIT takes too much memory");
  at<std::uint64_t>(segment("__LINKEDIT") + kSegmentSize) = 0x1000;
  at<std::uint64_t>(segment("__LINKEDIT") + kSegmentAddress) = ~std::uint64_t{0xFFF};
  EXPECT_EQ(problem(), "the segment __LINKEDIT takes too much memory");
}

TEST_P(HostileFile, WithMoreContentsThanMemoryIsRefused) {
  at<std::uint64_t>(segment("__LINKEDIT") + kSegmentSize) = 1;
  EXPECT_EQ(problem(), "the segment __LINKEDIT has more contents than memory");
}

TEST_P(HostileFile, WithContentsOutsideFileIsRefused) {
  at<std::uint64_t>(segment("__LINKEDIT") + kSegmentFileSize) = std::uint64_t{1} << 63;
  EXPECT_EQ(problem(), "a segment lies outside the file");
}

/// Every fifth byte meets each byte of the numbers, which have four or eight.
constexpr std::size_t kStep = 5;

/// The load commands: nothing may crash, and what fails is one line.
TEST_P(HostileFile, WithChangedBytesOfItsCommandsIsPreparedOrRefused) {
  const std::string whole = contents_;
  const auto commands_end = 32 + at<std::uint32_t>(20);
  std::size_t refused = 0;
  for (std::size_t place = 0; place < commands_end; place += kStep) {
    contents_ = whole;
    contents_[place] = static_cast<char>(contents_[place] ^ 0xFF);
    refused += problem().empty() ? 0 : 1;
  }
  EXPECT_GT(refused, commands_end / kStep / 4);
}

/// The tables behind the segments' contents: fixups, exports, symbols.
TEST_P(HostileFile, WithChangedBytesOfItsTablesIsPreparedOrRefused) {
  const std::string whole = contents_;
  for (std::size_t place = at<std::uint64_t>(segment("__LINKEDIT") + kSegmentFileOffset); place < whole.size();
       ++place) {
    contents_ = whole;
    contents_[place] = static_cast<char>(contents_[place] ^ 0xFF);
    problem();
  }
}

INSTANTIATE_TEST_SUITE_P(, HostileFile, testing::Values("opcodes", "chains"),
                         [](const auto& info) { return info.param; });

}  // namespace
