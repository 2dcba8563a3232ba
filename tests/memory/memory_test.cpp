// The plugin's own requests for memory, refused or watched. Requests of the plugin's objects reach the function below;
// those of the libraries do not.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>

#include "display/display_services.h"
#include "display/monitors_set.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "plugin/display.h"
#include "support/scripted.h"

namespace {

/// What happens to requests, and what has happened.
struct Requests {
  bool refuse = false;
  int refused = 0;
  unsigned char* guard = nullptr;  ///< of the last request that was granted
};
Requests requests;

/// Behind each buffer that is granted, and never written to by correct code.
constexpr std::size_t kGuardSize = 64;
constexpr unsigned char kGuard = 0xA5;

}  // namespace

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);

void* __wrap_calloc(std::size_t count, std::size_t size) {
  if (requests.refuse) {
    ++requests.refused;
    return nullptr;
  }
  auto* const buffer = static_cast<unsigned char*>(__real_calloc(1, count * size + kGuardSize));
  requests.guard = buffer + count * size;
  std::fill_n(requests.guard, kGuardSize, kGuard);
  return buffer;
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace {

constexpr std::uint32_t kNotFound = 4099018739;

class Memory : public testing::Test {
 protected:
  Memory() : session_(script()) {}
  ~Memory() override { requests = {}; }

  /// Two displays that both lie under one rectangle.
  static platform::desktop::Script script() {
    platform::desktop::Script script;
    script.arrangement.displays = {support::display(1, {0, 0, 100, 100}), support::display(2, {100, 0, 100, 100})};
    return script;
  }
  const CGRect rect_across_both_ = CGRectMake(90, 10, 20, 10);

  static void refuse() { requests = {.refuse = true}; }
  static void grant() { requests.refuse = false; }
  static bool guardIsIntact() {
    return std::all_of(requests.guard, requests.guard + kGuardSize, [](unsigned char byte) { return byte == kGuard; });
  }

 private:
  const support::ScriptedSession session_;
  const platform::ScopedPool pool_;
};

TEST_F(Memory, GetIndexReturnsNotFoundWithoutABuffer) {
  refuse();
  EXPECT_EQ(Display::GetIndex(1), kNotFound);
  EXPECT_EQ(requests.refused, 1);
  grant();
  EXPECT_EQ(Display::GetIndex(1), 0U);
}

TEST_F(Memory, DisplayIDForRectReturnsNoDisplayWithoutABuffer) {
  refuse();
  EXPECT_EQ(DisplayServices::DisplayIDForRect(rect_across_both_), 0U);
  EXPECT_EQ(requests.refused, 1);
  grant();
  EXPECT_EQ(DisplayServices::DisplayIDForRect(rect_across_both_), 1U);
}

TEST_F(Memory, BuildSetAddsNothingWithoutABuffer) {
  DisplayServices::monitors_set::UuidSet set;
  refuse();
  DisplayServices::monitors_set::buildSet(&set);
  EXPECT_THAT(set, testing::IsEmpty());
  EXPECT_EQ(requests.refused, 1);
  grant();
  DisplayServices::monitors_set::buildSet(&set);
  EXPECT_THAT(set, testing::SizeIs(2));
}

TEST_F(Memory, DisplayIDForRectWritesOneDisplayOfTwo) {
  EXPECT_EQ(DisplayServices::DisplayIDForRect(rect_across_both_), 1U);
  ASSERT_NE(requests.guard, nullptr);
  EXPECT_TRUE(guardIsIntact());
}

TEST_F(Memory, GetIndexWritesNoMoreDisplaysThanItCounted) {
  support::faultOnce(platform::calls::Call::CGGetActiveDisplayList, 1, {.number = 1});
  EXPECT_EQ(Display::GetIndex(1), 0U);
  ASSERT_NE(requests.guard, nullptr);
  EXPECT_TRUE(guardIsIntact());
}

}  // namespace
