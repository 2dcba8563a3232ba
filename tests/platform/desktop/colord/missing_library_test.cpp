// The platform library without the one beside it that speaks with colord.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/process.h"
#include "support/xorg_server.h"

namespace {

using test_support::ProcessResult;

TEST(WithoutTheColordLibrary, ThereAreNoProfilesAndEverythingElseIsThere) {
  const test_support::TemporaryDirectory folder;
  const std::filesystem::path platform = OSTREVIN_PLATFORM_LIBRARY;
  std::filesystem::copy_file(platform, folder.path() / platform.filename());
  test_support::XorgServer server;
  test_support::Environment environment = server.environment();
  environment.push_back("LD_LIBRARY_PATH=" + folder.path().string());
  const std::string display = std::to_string(server.output("DUMMY0").id);
  const auto tool = [&](const std::vector<std::string>& arguments) {
    std::vector<std::string> command{OSTREVIN_HOST, "--desktop", "live"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return test_support::run(command, environment);
  };
  const ProcessResult scale = tool({"call", "GetScale", display});
  EXPECT_EQ(scale.exit_status, 0);
  EXPECT_THAT(scale.output, testing::HasSubstr("1"));
  const ProcessResult profiles = tool({"profiles", display});
  EXPECT_EQ(profiles.exit_status, 0);
  EXPECT_EQ(profiles.errors, "");
  EXPECT_THAT(profiles.output, testing::Not(testing::HasSubstr(".icc")));
  EXPECT_NE(tool({"call", "SetProfile", display, "/usr/share/color/icc/colord/AdobeRGB1998.icc"}).exit_status, 0);
}

}  // namespace
