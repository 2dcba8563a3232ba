// What the plugin answers when there is no memory for a buffer that it may do without. The requests of the plugin's
// objects come to the functions below; those of the libraries do not.
#include <gmock/gmock.h>

#include <cstddef>
#include <new>
#include <string>

#include "display/display_services.h"
#include "display/monitors_set.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "plugin/display.h"
#include "profile/profile_services.h"
#include "support/scripted.h"

namespace {

/// How many requests of each kind were refused, while they are to be.
struct Refusals {
  bool on = false;
  int calloc = 0;
  int array = 0;
};
Refusals refusals;

bool refuse(int& counter) {
  if (!refusals.on) {
    return false;
  }
  ++counter;
  return true;
}

}  // namespace

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __real__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept;

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return refuse(refusals.calloc) ? nullptr : __real_calloc(count, size);
}
void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept {
  return refuse(refusals.array) ? nullptr : __real__ZnamRKSt9nothrow_t(size, tag);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace {

constexpr std::uint32_t kNotFound = 4099018739;

class WithoutMemory : public testing::Test {
 protected:
  WithoutMemory() : session_(script()) {}
  ~WithoutMemory() override { refusals = {}; }

  static platform::desktop::Script script() {
    platform::desktop::Script script;
    script.arrangement.displays = {support::display(1, {0, 0, 100, 100})};
    script.installed_profiles = {{"mntr", std::string(5000, 'n'), "/a.icc"}, {"mntr", "b", "/b.icc"}};
    return script;
  }

 private:
  const support::ScriptedSession session_;
  const platform::ScopedPool pool_;
};

TEST_F(WithoutMemory, GetIndexFindsNoDisplay) {
  EXPECT_EQ(Display::GetIndex(1), 0U);
  refusals.on = true;
  const std::uint32_t index = Display::GetIndex(1);
  refusals.on = false;
  EXPECT_EQ(index, kNotFound);
  EXPECT_EQ(refusals.calloc, 1);
  EXPECT_EQ(Display::GetIndex(1), 0U);
}

TEST_F(WithoutMemory, DisplayIDForWindowFindsNoDisplay) {
  const CGRect rect = CGRectMake(10, 10, 10, 10);
  EXPECT_EQ(DisplayServices::DisplayIDForRect(rect), 1U);
  refusals.on = true;
  const CGDirectDisplayID display = DisplayServices::DisplayIDForRect(rect);
  refusals.on = false;
  EXPECT_EQ(display, 0U);
  EXPECT_EQ(refusals.calloc, 1);
  EXPECT_EQ(DisplayServices::DisplayIDForRect(rect), 1U);
}

TEST_F(WithoutMemory, TheSetOfDisplaysStaysEmpty) {
  DisplayServices::monitors_set::UuidSet set;
  refusals.on = true;
  DisplayServices::monitors_set::buildSet(&set);
  refusals.on = false;
  EXPECT_THAT(set, testing::IsEmpty());
  EXPECT_EQ(refusals.calloc, 1);
  DisplayServices::monitors_set::buildSet(&set);
  EXPECT_THAT(set, testing::SizeIs(1));
}

TEST_F(WithoutMemory, AProfileWithALongNameIsLeftOut) {
  refusals.on = true;
  const auto profiles = ProfileServices::ListAllInstalledProfiles();
  refusals.on = false;
  EXPECT_THAT(profiles, testing::ElementsAre(testing::Pair("/b.icc", "b")));
  EXPECT_EQ(refusals.array, 1);
  EXPECT_THAT(ProfileServices::ListAllInstalledProfiles(), testing::SizeIs(2));
}

}  // namespace
