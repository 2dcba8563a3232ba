// ostrevin-host on a real X server of the test's own, without a colour manager.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/process.h"
#include "support/xorg_server.h"

namespace {

using nlohmann::json;
using ::testing::IsEmpty;

class LiveTool : public ::testing::Test {
 protected:
  test_support::ProcessResult run(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), OSTREVIN_HOST);
    test_support::Environment environment = server_.environment();
    environment.insert(environment.end(), {"OSTREVIN_DESKTOP=", "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere",
                                           "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere"});
    return test_support::run(arguments, environment);
  }

  test_support::XorgServer server_;
};

TEST_F(LiveTool, ListsTheDisplaysOfTheServer) {
  test_support::Monitor monitor;
  monitor.name = "Live One";
  server_.setEdid("DUMMY0", test_support::makeEdid(monitor));
  const test_support::ProcessResult result = run({"--json"});
  EXPECT_EQ(result.exit_status, 0);
  EXPECT_THAT(result.errors, IsEmpty());
  const json displays = json::parse(result.output)["displays"];
  ASSERT_EQ(displays.size(), 1U);
  EXPECT_EQ(displays[0]["index"], 0);
  EXPECT_EQ(displays[0]["name"], "Live One");
  const test_support::PixelRect area = *server_.output("DUMMY0").area;
  EXPECT_EQ(displays[0]["bounds"],
            json({{"x", area.x}, {"y", area.y}, {"width", area.width}, {"height", area.height}}));
  EXPECT_EQ(displays[0]["profile"], "");
}

TEST_F(LiveTool, AServerWithoutDisplaysIsAnEmptyTable) {
  server_.off("DUMMY0");
  const test_support::ProcessResult result = run({"list"});
  EXPECT_EQ(result.exit_status, 0);
  EXPECT_EQ(result.output, "Number  Index  Name  Bounds  Scale  Profile\n");
  EXPECT_THAT(result.errors, IsEmpty());
}

}  // namespace
