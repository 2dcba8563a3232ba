// What the facade leaves behind of a query for a profile: the reference that the query gave it.
#include "display/scripted_displays.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "plugin/display.h"

namespace {

using namespace display_tests;

class FacadeReferences : public DisplayTest {
 protected:
  /// References to the URL of the profile that was found, once the walk has let go of it. One is profile_path's.
  CFIndex referencesToTheUrl() {
    waitForWalks(1);
    return CFGetRetainCount(DisplayServices::device_iterator::profile_path);
  }

 private:
  const platform::ScopedPool pool_;
};

TEST_F(FacadeReferences, GetProfilePathKeepsItsReferenceToTheUrl) {
  EXPECT_STREQ(::Display::GetProfilePath(1), "/profiles/1.icc");
  EXPECT_EQ(referencesToTheUrl(), 2);
}

TEST_F(FacadeReferences, IsWideGamutKeepsItsReferenceToTheUrl) {
  EXPECT_FALSE(::Display::IsWideGamut(1));
  EXPECT_EQ(referencesToTheUrl(), 2);
}

}  // namespace
