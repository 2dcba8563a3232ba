// The profile services while framework calls fail.
#include <string>
#include <tuple>
#include <vector>

#include "frameworks/hooks/calls.h"
#include "profile/profile_fixture.h"

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
};

TEST_F(ProfileServicesUnderFaults, LeaveOutAnEntryWhoseTextCannotBeRead) {
  support::answerOnce(Call::CFStringGetCString, 1, {.fail = true});
  EXPECT_THAT(ProfileServices::ListAllInstalledProfiles(),
              testing::ElementsAre(testing::Pair("/b", std::string(5000, 'B'))));
}

TEST_F(ProfileServicesUnderFaults, LeaveOutAnEntryWhosePathCannotBeMade) {
  support::answerOnce(Call::CFURLCopyFileSystemPath, 2, {.fail = true});
  EXPECT_THAT(ProfileServices::ListAllInstalledProfiles(), testing::ElementsAre(testing::Pair("/a", "A")));
}

TEST_F(ProfileServicesUnderFaults, KeepTheLastDisplaysProfilesWhenNoUuidTextCanBeMade) {
  const auto before = ProfileServices::ListProfilesForDisplay(1);
  support::answerOnce(Call::CFUUIDCreateString, 1, {.fail = true});
  EXPECT_EQ(ProfileServices::ListProfilesForDisplay(2), before);
}

TEST_F(ProfileServicesUnderFaults, ListNothingWhenNoWalkIsMade) {
  setHook(Call::ColorSyncIterateInstalledProfiles, [](std::uint64_t) { return Answer{true}; });
  EXPECT_THAT(ProfileServices::ListAllInstalledProfiles(), testing::IsEmpty());
}

}  // namespace
