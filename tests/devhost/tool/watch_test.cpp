// ostrevin-host watch on a private X server.
#include <gmock/gmock.h>

#include <chrono>
#include <sstream>
#include <thread>

#include "devhost/tool/tool_runner.h"
#include "support/temporary_folder.h"
#include "support/xorg_server.h"

namespace {

using nlohmann::json;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;

/// ostrevin-host watch, running in parallel to the test.
class Watcher {
 public:
  Watcher(const support::XorgServer& server, const std::vector<std::string>& options)
      : process_(command(options), environment(server), log()) {
    awaitText("watching ");
  }

  static support::Environment environment(const support::XorgServer& server) {
    support::Environment variables = server.environment();
    variables.insert(variables.end(), {"OSTREVIN_DESKTOP=", "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere",
                                       "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere"});
    return variables;
  }

  /// Waits until the output contains the text, and returns the output.
  std::string awaitText(const std::string& text) const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    std::string content;
    while (content.find(text) == std::string::npos) {
      if (std::chrono::steady_clock::now() > deadline) {
        throw std::runtime_error("\"" + text + "\" was not printed: " + content);
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      std::ifstream file(log());
      content.assign(std::istreambuf_iterator<char>(file), {});
    }
    return content;
  }

  /// Waits for so many lines of the standard output, and returns them; the log's first line is a message.
  std::vector<std::string> awaitLines(std::size_t count) const {
    std::vector<std::string> lines;
    while (lines.size() < count) {
      std::istringstream content(awaitText(lines.empty() ? "\n" : lines.back()));
      lines.clear();
      std::string line;
      for (std::getline(content, line); std::getline(content, line) && !content.eof();) {
        lines.push_back(line);
      }
    }
    return lines;
  }

 private:
  std::filesystem::path log() const { return folder_.path("log"); }
  static std::vector<std::string> command(const std::vector<std::string>& options) {
    std::vector<std::string> words{OSTREVIN_HOST, "watch", "--interval", "0.02"};
    words.insert(words.end(), options.begin(), options.end());
    return words;
  }

  support::TemporaryFolder folder_;
  support::ChildProcess process_;
};

class Watch : public ::testing::Test {
 protected:
  std::string number(const std::string& output) { return std::to_string(server_.output(output).id); }
  void setMonitor(const std::string& output, const std::string& name) {
    support::Monitor monitor;
    monitor.name = name;
    monitor.product = static_cast<std::uint16_t>(std::hash<std::string>()(name));  // names go by vendor and model
    server_.setEdid(output, support::makeEdid(monitor));
  }
  support::ProcessResult run(std::vector<std::string> command) const {
    return support::run(command, Watcher::environment(server_));
  }

  support::XorgServer server_;
};

constexpr const char* kTime = "[0-9]+-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+[+-][0-9]+  ";

TEST_F(Watch, PrintsAddedAndRemovedDisplays) {
  setMonitor("DUMMY0", "First");
  setMonitor("DUMMY1", "Second");
  const Watcher watcher(server_, {});
  server_.setMode("DUMMY1", 800, 600, 1024, 0);
  EXPECT_THAT(watcher.awaitLines(1).back(), MatchesRegex(kTime + ("added " + number("DUMMY1")) + " \\(Second\\)"));
  server_.off("DUMMY0");
  EXPECT_THAT(watcher.awaitLines(2).back(), MatchesRegex(kTime + ("removed " + number("DUMMY0")) + " \\(First\\)"));
  EXPECT_THAT(watcher.awaitText("watching"), HasSubstr("ostrevin-host: watching 1 display\n"));
}

TEST_F(Watch, IgnoresChangeOfResolution) {
  server_.setMode("DUMMY1", 800, 600, 1024, 0);
  const Watcher watcher(server_, {});
  server_.setMode("DUMMY1", 640, 480, 1024, 0);
  server_.off("DUMMY1");
  EXPECT_THAT(watcher.awaitLines(1).front(), HasSubstr("  removed " + number("DUMMY1") + " "));
}

TEST_F(Watch, ReportsOtherMonitorAtSameConnector) {
  setMonitor("DUMMY0", "Old");
  const Watcher watcher(server_, {});
  setMonitor("DUMMY0", "New");
  EXPECT_THAT(watcher.awaitLines(1).back(),
              EndsWith("  removed " + number("DUMMY0") + " (Old); added " + number("DUMMY0") + " (New)"));
}

TEST_F(Watch, PrintsJsonObjectPerLine) {
  setMonitor("DUMMY0", "First");
  setMonitor("DUMMY1", "Second");
  const Watcher watcher(server_, {"--json"});
  server_.setMode("DUMMY1", 800, 600, 1024, 0);
  server_.xrandr({"--query"});
  const json added = json::parse(watcher.awaitLines(1).back());
  EXPECT_EQ(added["command"], "watch");
  EXPECT_EQ(added["added"], json::parse(R"([{"number": )" + number("DUMMY1") + R"(, "name": "Second"}])"));
  EXPECT_EQ(added["removed"], json::array());
  EXPECT_EQ(added["displays"].size(), 2U);
  EXPECT_EQ(added["displays"][0], json::parse(R"({"number": )" + number("DUMMY0") + R"(, "name": "First"})"));
  server_.off("DUMMY1");
  const json removed = json::parse(watcher.awaitLines(2).back());
  EXPECT_EQ(removed["removed"].size(), 1U);
  EXPECT_EQ(removed["displays"].size(), 1U);
}

TEST_F(Watch, EndsAtSignal) {
  for (const char* signal : {"INT", "TERM"}) {
    const support::TemporaryFolder folder;
    const auto ended = run({"sh", "-c",
                            "mkfifo \"$2\"; \"$1\" watch 2>\"$2\" & read -r line <\"$2\"; kill -" +
                                std::string(signal) + " $!; wait $!; echo \"ended $?\"",
                            "sh", OSTREVIN_HOST, folder.path("messages")});
    EXPECT_EQ(ended.output, "ended 0\n") << signal;
    EXPECT_THAT(ended.errors, IsEmpty());
  }
}

TEST_F(Watch, EndsWhenOutputIsClosed) {
  // "true" ends at once and closes the pipe; watch notices without a change of the displays.
  const auto ended =
      run({"sh", "-c", "{ \"$1\" watch --interval 60; echo \"ended $?\" >&2; } | true", "sh", OSTREVIN_HOST});
  EXPECT_THAT(ended.errors, EndsWith("ended 0\n"));
  EXPECT_THAT(ended.errors, Not(HasSubstr("could not be written")));
}

TEST_F(Watch, EndsAfterTime) {
  EXPECT_EQ(run({OSTREVIN_HOST, "watch", "--for", "0.05"}).exit_status, 0);
  const auto too_few = run({OSTREVIN_HOST, "watch", "--for", "0.05", "--count", "1"});
  EXPECT_EQ(too_few.exit_status, 1);
  EXPECT_THAT(too_few.output, IsEmpty());
}

TEST_F(Watch, EndsAfterCount) {
  const support::TemporaryFolder folder;
  const auto ended = run({"sh", "-c",
                          "mkfifo \"$2\"; \"$1\" watch --interval 0.02 --count 1 2>\"$2\" & read -r line <\"$2\"; "
                          "xrandr --output DUMMY0 --off; wait $!; echo \"ended $?\"",
                          "sh", OSTREVIN_HOST, folder.path("messages")});
  EXPECT_THAT(ended.output, MatchesRegex("[^\n]*  removed [0-9]+ [^\n]*\nended 0\n")) << ended.errors;
}

TEST_F(Watch, RefusesUnusableOptions) {
  for (const std::vector<std::string>& options : std::vector<std::vector<std::string>>{{"--interval", "0"},
                                                                                       {"--interval", "x"},
                                                                                       {"--interval", "nan"},
                                                                                       {"--for", "-1"},
                                                                                       {"--count", "0"},
                                                                                       {"--count", "-1"}}) {
    std::vector<std::string> command{OSTREVIN_HOST, "watch"};
    command.insert(command.end(), options.begin(), options.end());
    const auto result = run(command);
    EXPECT_EQ(result.exit_status, 2) << options[0] << options[1];
  }
}

TEST_F(Watch, ReportsUnwritableOutput) {
  const support::TemporaryFolder folder;
  const auto ended =
      run({"sh", "-c",
           "mkfifo \"$2\"; \"$1\" watch --interval 0.02 2>\"$2\" >/dev/full & exec 3<\"$2\"; read -r line <&3; "
           "xrandr --output DUMMY0 --off; wait $!; echo \"ended $?\"; cat <&3",
           "sh", OSTREVIN_HOST, folder.path("messages")});
  EXPECT_EQ(ended.output, "ended 1\nostrevin-host: the output could not be written\n");
}

TEST(WatchWithoutServer, ReportsPluginWithoutFunctionsInOneLine) {
  const auto run = tool_test::runTool({"--desktop", "live", "--plugin", SAMPLE_PLUGIN, "watch"});
  EXPECT_EQ(run.exit_status, 1);
  EXPECT_THAT(run.errors, HasSubstr(" does not export "));
  EXPECT_EQ(run.errorLines(), 1U);
}

}  // namespace
