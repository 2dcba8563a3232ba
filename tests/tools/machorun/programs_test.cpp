// Programs that are compiled for the Mac (programs.cpp), run here.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace {

void* library() {
  static void* const handle = [] {
    EXPECT_NE(dlopen(OSTREVIN_LIBRARY, RTLD_NOW), nullptr) << dlerror();  // whose conversions a program calls
    void* const programs = dlopen(MAC_PROGRAMS, RTLD_NOW);
    EXPECT_NE(programs, nullptr) << dlerror();
    return programs;
  }();
  return handle;
}

class MacProgram : public testing::TestWithParam<const char*> {};

TEST_P(MacProgram, FindsWhatItExpects) {
  auto* const program = reinterpret_cast<const char* (*)()>(dlsym(library(), GetParam()));
  ASSERT_NE(program, nullptr) << dlerror();
  const char* const failure = program();
  EXPECT_EQ(failure, nullptr) << (failure == nullptr ? "" : failure);
}

INSTANTIATE_TEST_SUITE_P(, MacProgram,
                         testing::Values("catchesByTypeAndBase", "catchesValues", "catchesWhatTheLibraryThrows",
                                         "rethrowsAndNests", "destroysWhatItLeaves", "keepsVariablesOfTheCatchingFrame",
                                         "keepsExceptionsForLaterAndForOtherThreads", "reportsMissingMemory",
                                         "waitsUpToTheLimit", "waitsForAnotherThread",
                                         "sharesStaticMutexConditionAndOnceFlag", "initialisesStatics",
                                         "hasVariablesOfEachThread", "callsBlocksThatHoldObjects",
                                         "convertsTextOrThrows"),
                         [](const auto& info) { return info.param; });

TEST(MacLibrary, ThrowsExceptionsThatAreForeignHere) {
  auto* const throwOut = reinterpret_cast<void (*)(int)>(dlsym(library(), "throwOut"));
  ASSERT_NE(throwOut, nullptr) << dlerror();
  for (int kind = 0; kind < 8; ++kind) {
    bool is_foreign = false;
    try {
      throwOut(kind);
    } catch (const std::exception&) {
    } catch (...) {
      is_foreign = true;
    }
    EXPECT_TRUE(is_foreign) << kind;
  }
}

TEST(MacLibrary, ReportsMissingFileAndSymbol) {
  EXPECT_EQ(dlopen("/nowhere.dylib", RTLD_NOW), nullptr);
  EXPECT_NE(dlerror(), nullptr);
  EXPECT_EQ(dlerror(), nullptr);
  EXPECT_EQ(dlsym(library(), "nothing"), nullptr);
  EXPECT_STREQ(dlerror(), MAC_PROGRAMS ": exports no nothing");
}

}  // namespace
