// Whether a display's current profile is a wide-gamut one, on real profiles.
#include "display/scripted_displays.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "plugin/display.h"

namespace {

using namespace display_tests;

class IsWideGamut : public DisplayTest {
 protected:
  bool isWide(const std::string& profile) {
    edit([&](Script& script) { script.device_profiles = {entry(1, "/usr/share/color/icc/colord/" + profile)}; });
    return ::Display::IsWideGamut(1);
  }

 private:
  const platform::ScopedPool pool_;
};

TEST_F(IsWideGamut, IsTrueForWideProfiles) {
  EXPECT_TRUE(isWide("ProPhotoRGB.icc"));
  EXPECT_TRUE(isWide("WideGamutRGB.icc"));
  EXPECT_TRUE(isWide("AdobeRGB1998.icc"));
}

TEST_F(IsWideGamut, IsFalseForSmallProfiles) {
  EXPECT_FALSE(isWide("sRGB.icc"));
  EXPECT_FALSE(isWide("Rec709.icc"));
  EXPECT_FALSE(isWide("AppleRGB.icc"));
}

TEST_F(IsWideGamut, IsFalseWithoutACurrentProfile) {
  edit([](Script& script) { script.device_profiles.clear(); });
  waitInNoTime([this] { waitForWalks(1); });
  EXPECT_FALSE(::Display::IsWideGamut(1));
}

TEST_F(IsWideGamut, PassesOnWhatEachStepReturned) {
  const auto counts = [] {
    return std::vector{count(Call::ColorSyncProfileCreateWithURL),
                       count(Call::CGColorSpaceCreateWithPlatformColorSpace), count(Call::CGColorSpaceIsWideGamutRGB)};
  };
  for (const Call failing : {Call::ColorSyncProfileCreateWithURL, Call::CGColorSpaceCreateWithPlatformColorSpace,
                             Call::CGDisplayCreateUUIDFromDisplayID}) {
    SCOPED_TRACE(testing::Message() << "failing: " << platform::calls::name(failing));
    fail(failing);
    auto expected = counts();
    for (auto& calls : expected) {
      ++calls;
    }
    EXPECT_FALSE(isWide("ProPhotoRGB.icc"));
    EXPECT_EQ(counts(), expected);
    platform::calls::removeAllHooks();
  }
}

TEST_F(IsWideGamut, IsFalseForAnUnreadableProfile) { EXPECT_FALSE(isWide("no such file.icc")); }

TEST_F(IsWideGamut, IsFalseWithoutAColourSpace) {
  fail(Call::CGColorSpaceCreateWithPlatformColorSpace);
  EXPECT_FALSE(isWide("ProPhotoRGB.icc"));
}

}  // namespace
