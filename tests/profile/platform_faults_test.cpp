// The profile services while framework calls fail.
#include <string>
#include <tuple>
#include <vector>

#include "frameworks/calls.h"
#include "profile/profile_fixture.h"
#include "strings/owned_ref.h"
#include "support/icc_maker.h"
#include "support/temporary_folder.h"

namespace {

using platform::calls::Answer;
using platform::calls::Call;
using platform::calls::setHook;
using support::associated;
using support::installed;

class ProfileServicesUnderFaults : public support::ProfileServicesTest {
 protected:
  ProfileServicesUnderFaults() {
    setInstalled({installed("/a", "A"), installed("/b", std::string(5000, 'B'))});
    setAssociated({associated(1, "/a", true, true), associated(1, "/c")});
  }

  /// Runs everything that the services do; answers nothing, must only come to an end.
  void runEverything() {
    ProfileServices::ListAllInstalledProfiles();
    ProfileServices::ListProfilesForDisplay(1);
    ProfileServices::GetAssociatedProfilesCount(2);
    const auto url = OwnedRef<CFURLRef>::adopt(
        CFURLCreateWithFileSystemPath(nullptr, CFSTR("/usr/share/color/icc/sRGB.icc"), kCFURLPOSIXPathStyle, false));
    std::optional<std::string> xml;
    ProfileServices::ICCTagExists(url.get(), CFSTR("desc"));
    ProfileServices::QV02Read(url.get(), xml);
  }
};

TEST_F(ProfileServicesUnderFaults, SurviveEveryCallFailingAlways) {
  for (std::size_t i = 0; i < platform::calls::kCallCount; ++i) {
    setHook(static_cast<Call>(i), [](std::uint64_t) { return Answer{true}; });
    runEverything();
    platform::calls::removeAllHooks();
  }
}

TEST_F(ProfileServicesUnderFaults, SurviveEverySingleCallFailing) {
  for (std::size_t i = 0; i < platform::calls::kCallCount; ++i) {
    for (std::uint64_t failing = 1; failing <= 12; ++failing) {
      setHook(static_cast<Call>(i), [=](std::uint64_t nth) { return Answer{nth == failing}; });
      runEverything();
      platform::calls::removeAllHooks();
    }
  }
}

TEST_F(ProfileServicesUnderFaults, LeaveOutAnEntryWhoseTextCannotBeRead) {
  setHook(Call::CFStringGetCString, [](std::uint64_t nth) { return Answer{nth == 1}; });
  EXPECT_THAT(ProfileServices::ListAllInstalledProfiles(),
              testing::ElementsAre(testing::Pair("/b", std::string(5000, 'B'))));
}

TEST_F(ProfileServicesUnderFaults, LeaveOutAnEntryWhosePathCannotBeMade) {
  setHook(Call::CFURLCopyFileSystemPath, [](std::uint64_t nth) { return Answer{nth == 2}; });
  EXPECT_THAT(ProfileServices::ListAllInstalledProfiles(), testing::ElementsAre(testing::Pair("/a", "A")));
}

TEST_F(ProfileServicesUnderFaults, KeepTheLastDisplaysProfilesWhenNoUuidTextCanBeMade) {
  const auto before = ProfileServices::ListProfilesForDisplay(1);
  setHook(Call::CFUUIDCreateString, [](std::uint64_t nth) { return Answer{nth == 1}; });
  EXPECT_EQ(ProfileServices::ListProfilesForDisplay(2), before);
}

TEST_F(ProfileServicesUnderFaults, ListNothingWhenNoWalkIsMade) {
  setHook(Call::ColorSyncIterateInstalledProfiles, [](std::uint64_t) { return Answer{true}; });
  EXPECT_THAT(ProfileServices::ListAllInstalledProfiles(), testing::IsEmpty());
}

}  // namespace
