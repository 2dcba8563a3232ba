// The facade leaks the reference that a profile query returns.
#include "display/scripted_displays.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "plugin/display.h"

namespace {

using namespace display_tests;

class FacadeReferences : public DisplayTest {
 protected:
  /// References to the URL of the profile that was found, once the walk has released it. One is profile_path's.
  CFIndex referencesToTheUrl() {
    waitForWalks(1);
    return CFGetRetainCount(DisplayServices::device_iterator::profile_path);
  }

 private:
  const platform::ScopedPool pool_;
};

TEST_F(FacadeReferences, GetProfilePathLeaksTheUrl) {
  EXPECT_STREQ(::Display::GetProfilePath(1), "/profiles/1.icc");
  EXPECT_EQ(referencesToTheUrl(), 2);
}

TEST_F(FacadeReferences, IsWideGamutLeaksTheUrl) {
  EXPECT_FALSE(::Display::IsWideGamut(1));
  EXPECT_EQ(referencesToTheUrl(), 2);
}

}  // namespace
