// Each substitute for a function or variable of the Mac's libSystem: what differs there.
#include "tools/machorun/system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <thread>

#include "tools/machorun/linking.h"

namespace {

template <typename Type>
Type* mac(const char* symbol) {
  void* const found = machorun::findSubstitute(symbol);
  EXPECT_NE(found, nullptr) << symbol;
  return reinterpret_cast<Type*>(found);
}

constexpr int kMacTimedOut = 60;
constexpr int kMacBusy = 16;
constexpr int kMacOutOfRange = 34;

TEST(Errors, AreNumberedAsOnAMac) {
  for (const auto& [here, there] : {std::pair(EAGAIN, 35),
                                    {EDEADLK, 11},
                                    {ETIMEDOUT, 60},
                                    {ENOSYS, 78},
                                    {EOVERFLOW, 84},
                                    {ENOTSUP, 45},
                                    {ENAMETOOLONG, 63},
                                    {ENOTRECOVERABLE, 104},
                                    {EOWNERDEAD, 105},
                                    {ENOENT, 2},
                                    {EINVAL, 22}}) {
    EXPECT_EQ(machorun::toMacError(here), there);
    EXPECT_EQ(machorun::fromMacError(there), here);
  }
  errno = EDOM;
  EXPECT_EQ(*mac<int*()>("___error")(), EDOM);
}

TEST(Errors, HaveTextsInThePosixForm) {
  auto* const text = mac<int(int, char*, std::size_t)>("_strerror_r");
  char buffer[100];
  EXPECT_EQ(text(35, buffer, sizeof buffer), 0);
  EXPECT_STREQ(buffer, std::strerror(EAGAIN));
  EXPECT_EQ(text(35, buffer, 5), kMacOutOfRange);
  EXPECT_STREQ(buffer, std::string(std::strerror(EAGAIN)).substr(0, 4).c_str());
  EXPECT_EQ(text(35, buffer, 0), kMacOutOfRange);
}

TEST(Clocks, AreNumberedAsOnAMac) {
  auto* const clock = mac<int(int, timespec*)>("_clock_gettime");
  for (const auto& [there, here] : {std::pair(0, CLOCK_REALTIME),
                                    {4, CLOCK_MONOTONIC_RAW},
                                    {5, CLOCK_MONOTONIC_RAW},
                                    {6, CLOCK_BOOTTIME},
                                    {8, CLOCK_MONOTONIC},
                                    {9, CLOCK_MONOTONIC},
                                    {12, CLOCK_PROCESS_CPUTIME_ID},
                                    {16, CLOCK_THREAD_CPUTIME_ID}}) {
    timespec expected{};
    timespec found{};
    ASSERT_EQ(clock_gettime(here, &expected), 0);
    ASSERT_EQ(clock(there, &found), 0);
    EXPECT_LT(std::abs(static_cast<double>(found.tv_sec - expected.tv_sec)), 5) << there;
  }
  timespec time{};
  EXPECT_EQ(clock(1, &time), -1);
  EXPECT_EQ(errno, EINVAL);
}

/// What a Mac's headers write for a static variable, with room behind that must stay as it is.
struct MutexWithRoom {
  std::uint64_t words[8] = {0x32AAABA7};
  std::uint64_t after = 77;
};
struct ConditionWithRoom {
  std::uint64_t words[6] = {0x3CB0B1BB};
  std::uint64_t after = 77;
};

TEST(Mutexes, WorkFromTheirStaticInitialiser) {
  MutexWithRoom mutex;
  EXPECT_EQ(mac<int(void*)>("_pthread_mutex_lock")(&mutex), 0);
  std::thread([&] { EXPECT_EQ(mac<int(void*)>("_pthread_mutex_trylock")(&mutex), kMacBusy); }).join();
  EXPECT_EQ(mac<int(void*)>("_pthread_mutex_unlock")(&mutex), 0);
  EXPECT_EQ(mac<int(void*)>("_pthread_mutex_trylock")(&mutex), 0);
  EXPECT_EQ(mac<int(void*)>("_pthread_mutex_unlock")(&mutex), 0);
  EXPECT_EQ(mac<int(void*)>("_pthread_mutex_destroy")(&mutex), 0);
  EXPECT_EQ(mutex.after, 77U);
}

TEST(Mutexes, AreInitialisedWithTheMacsTypes) {
  MutexWithRoom mutex;
  std::uint64_t attributes[3] = {1, 2, 77};
  EXPECT_EQ(mac<int(void*)>("_pthread_mutexattr_init")(attributes), 0);
  EXPECT_EQ(mac<int(void*, int)>("_pthread_mutexattr_settype")(attributes, 3), EINVAL);
  EXPECT_EQ(mac<int(void*, int)>("_pthread_mutexattr_settype")(attributes, 2), 0);  // recursive
  EXPECT_EQ(mac<int(void*, const void*)>("_pthread_mutex_init")(&mutex, attributes), 0);
  EXPECT_EQ(mac<int(void*)>("_pthread_mutexattr_destroy")(attributes), 0);
  EXPECT_EQ(mac<int(void*)>("_pthread_mutex_lock")(&mutex), 0);
  EXPECT_EQ(mac<int(void*)>("_pthread_mutex_trylock")(&mutex), 0);
  EXPECT_EQ(mac<int(void*, const void*)>("_pthread_mutex_init")(&mutex, nullptr), 0);
  EXPECT_EQ(mac<int(void*)>("_pthread_mutex_lock")(&mutex), 0);
  EXPECT_EQ(mac<int(void*)>("_pthread_mutex_trylock")(&mutex), kMacBusy);
  EXPECT_EQ(attributes[2], 77U);
  EXPECT_EQ(mutex.after, 77U);
}

TEST(Conditions, TimeOutWithTheMacsNumber) {
  MutexWithRoom mutex;
  ConditionWithRoom condition;
  timespec until{};
  clock_gettime(CLOCK_REALTIME, &until);
  EXPECT_EQ(mac<int(void*)>("_pthread_mutex_lock")(&mutex), 0);
  EXPECT_EQ(mac<int(void*, void*, const timespec*)>("_pthread_cond_timedwait")(&condition, &mutex, &until),
            kMacTimedOut);
  EXPECT_EQ(mac<int(void*)>("_pthread_mutex_unlock")(&mutex), 0);
  EXPECT_EQ(mac<int(void*)>("_pthread_cond_destroy")(&condition), 0);
  EXPECT_EQ(condition.after, 77U);
}

class Signalled : public testing::TestWithParam<const char*> {};

TEST_P(Signalled, ConditionWakesTheWaitingThread) {
  MutexWithRoom mutex;
  ConditionWithRoom condition;
  bool is_ready = false;
  std::thread waiting([&] {
    mac<int(void*)>("_pthread_mutex_lock")(&mutex);
    while (!is_ready) {
      EXPECT_EQ(mac<int(void*, void*)>("_pthread_cond_wait")(&condition, &mutex), 0);
    }
    mac<int(void*)>("_pthread_mutex_unlock")(&mutex);
  });
  mac<int(void*)>("_pthread_mutex_lock")(&mutex);
  is_ready = true;
  EXPECT_EQ(mac<int(void*)>(GetParam())(&condition), 0);
  mac<int(void*)>("_pthread_mutex_unlock")(&mutex);
  waiting.join();
}

INSTANTIATE_TEST_SUITE_P(, Signalled, testing::Values("_pthread_cond_signal", "_pthread_cond_broadcast"),
                         [](const auto& info) { return std::string(info.param + 1); });

int runs = 0;

TEST(Once, WorksFromItsStaticInitialiser) {
  std::uint64_t control[3] = {0x30B1BCBA, 0, 77};
  runs = 0;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(mac<int(void*, void (*)())>("_pthread_once")(control, [] { ++runs; }), 0);
  }
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(control[2], 77U);
}

TEST(Keys, HaveEightBytesAndRunTheirDestructors) {
  std::uint64_t key = ~std::uint64_t{0};
  runs = 0;
  ASSERT_EQ(mac<int(std::uint64_t*, void (*)(void*))>("_pthread_key_create")(&key, [](void*) { ++runs; }), 0);
  EXPECT_LT(key, 1U << 16);
  std::thread([&] {
    EXPECT_EQ(mac<void*(std::uint64_t)>("_pthread_getspecific")(key), nullptr);
    EXPECT_EQ(mac<int(std::uint64_t, const void*)>("_pthread_setspecific")(key, &key), 0);
    EXPECT_EQ(mac<void*(std::uint64_t)>("_pthread_getspecific")(key), &key);
  }).join();
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(mac<int(std::uint64_t)>("_pthread_key_delete")(key), 0);
}

TEST(Threads, AreMadeAndNumbered) {
  pthread_t thread = 0;
  std::uint32_t number = 0;
  ASSERT_EQ(mac<int(pthread_t*, const void*, void* (*)(void*), void*)>("_pthread_create")(
                &thread, nullptr,
                [](void* result) -> void* {
                  *static_cast<std::uint32_t*>(result) =
                      mac<std::uint32_t(pthread_t)>("_pthread_mach_thread_np")(pthread_self());
                  return nullptr;
                },
                &number),
            0);
  pthread_join(thread, nullptr);
  EXPECT_NE(number, 0U);
  EXPECT_NE(number, mac<std::uint32_t(pthread_t)>("_pthread_mach_thread_np")(pthread_self()));
}

TEST(CharacterClasses, AreWhereTheMacsHeadersReadThem) {
  const auto* const table = mac<const std::uint8_t>("__DefaultRuneLocale");
  const auto kind = [&](unsigned char c) {
    std::uint32_t result = 0;
    std::memcpy(&result, table + 60 + 4 * c, sizeof result);
    return result;
  };
  const auto converted = [&](std::size_t offset, unsigned char c) {
    std::int32_t result = 0;
    std::memcpy(&result, table + 60 + offset + 4 * c, sizeof result);
    return result;
  };
  EXPECT_EQ(kind('A'), 0x100U | 0x800 | 0x8000 | 0x10000 | 0x40000);
  EXPECT_EQ(kind('z'), 0x100U | 0x800 | 0x1000 | 0x40000);
  EXPECT_EQ(kind('7'), 0x400U | 7 | 0x800 | 0x10000 | 0x40000);
  EXPECT_EQ(kind(' '), 0x4000U | 0x20000 | 0x40000);
  EXPECT_EQ(kind('\n'), 0x200U | 0x4000);
  EXPECT_EQ(kind('!'), 0x800U | 0x2000 | 0x40000);
  EXPECT_EQ(kind(0xE4), 0U);
  EXPECT_EQ(converted(4 * 256, 'Q'), 'q');
  EXPECT_EQ(converted(8 * 256, 'q'), 'Q');
}

TEST(Variables, AreFilled) {
  EXPECT_NE(*mac<std::uint64_t>("___stack_chk_guard"), 0U);
  EXPECT_EQ(*mac<std::uint64_t>("___stack_chk_guard") & 0xFF, 0U);
  EXPECT_EQ(*mac<FILE*>("___stderrp"), stderr);
  EXPECT_EQ(*mac<FILE*>("___stdoutp"), stdout);
  EXPECT_NE(mac<void>("__NSConcreteStackBlock"), mac<void>("__NSConcreteGlobalBlock"));
}

TEST(Memory, IsZeroedByAnotherName) {
  char bytes[] = "bytes";
  mac<void(void*, std::size_t)>("___bzero")(bytes, 3);
  EXPECT_EQ(std::memcmp(bytes, "\0\0\0es", 6), 0);
}

#ifdef __aarch64__
TEST(Memory, HoldsCodeThatIsMadeVisible) {
  char bytes[] = "code";
  mac<void(void*, std::size_t)>("_sys_icache_invalidate")(bytes, sizeof bytes);
  EXPECT_STREQ(bytes, "code");
}
#endif

TEST(Libraries, AreSearchedByTheMacsNumbersAndNeverOpened) {
  auto* const find = reinterpret_cast<void* (*)(void*, const char*)>(machorun::resolveFromProcess("_dlsym"));
  auto* const open = reinterpret_cast<void* (*)(const char*, int)>(machorun::resolveFromProcess("_dlopen"));
  EXPECT_EQ(find(reinterpret_cast<void*>(std::intptr_t{-2}), "strlen"), reinterpret_cast<void*>(std::strlen));
  EXPECT_EQ(find(reinterpret_cast<void*>(std::intptr_t{-2}), "_availability_version_check"),
            machorun::findSubstitute("__availability_version_check"));
  EXPECT_EQ(find(&runs, "strlen"), nullptr);
  EXPECT_EQ(open("/usr/lib/libc++.1.dylib", 1), nullptr);
}

TEST(Availability, IsOfTheSystemThatTheEnvironmentNames) {
  auto* const check = mac<int(std::uint32_t, const std::uint32_t*)>("__availability_version_check");
  const auto has = [&](std::uint32_t version, std::uint32_t platform = 1) {
    const std::uint32_t wanted[] = {platform, version};
    return check(1, wanted) == 1;
  };
  unsetenv("MACHORUN_SYSTEM");
  EXPECT_TRUE(has(0xA0D00));
  EXPECT_FALSE(has(0xA0E00));
  EXPECT_TRUE(has(0xA0E00, 2));  // of another platform
  setenv("MACHORUN_SYSTEM", "14.2", 1);
  EXPECT_TRUE(has(0xE0200));
  EXPECT_FALSE(has(0xE0300));
  setenv("MACHORUN_SYSTEM", "15", 1);
  EXPECT_TRUE(has(0xF0000));
  EXPECT_FALSE(has(0xF0100));
}

using AtExit = int(void (*)(void*), void*, void*);

TEST(Ends, OfProcessAndThreadRunTheirFunctions) {
  runs = 0;
  std::thread([] {
    EXPECT_EQ((mac<int(void (*)(void*), void*)>("__tlv_atexit")([](void*) { ++runs; }, nullptr)), 0);
  }).join();
  EXPECT_EQ(runs, 1);
  EXPECT_EXIT(
      {
        mac<AtExit>("___cxa_atexit")([](void*) { _Exit(7); }, nullptr, nullptr);
        std::exit(0);
      },
      testing::ExitedWithCode(7), "");
}

TEST(Ends, OfAssertionNameTheirPlace) {
  EXPECT_DEATH(mac<void(const char*, const char*, int, const char*)>("___assert_rtn")("f", "file.c", 12, "a == b"),
               "Assertion failed: \\(a == b\\), function f, file file.c, line 12");
  EXPECT_DEATH(mac<void()>("dyld_stub_binder")(), "");
}

}  // namespace
