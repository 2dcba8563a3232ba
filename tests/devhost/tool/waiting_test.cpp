// What ostrevin-host shows while a call takes long, and how Ctrl-C ends it.
#include <gmock/gmock.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <utility>

#include "devhost/tool/tool_runner.h"

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using tool_test::runTool;
using tool_test::ToolTest;

constexpr const char* kInterrupt = "\x03";
constexpr const char* kCleared = "\r\x1b[K";

std::string noticeOf(const std::string& what) {
  return "\r\x1b[?7lostrevin-host: waiting for " + what + "; Ctrl-C ends it\x1b[?7h";
}

/// ostrevin-host on a terminal of its own.
class ToolOnTerminal {
 public:
  explicit ToolOnTerminal(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), OSTREVIN_HOST);
    std::vector<char*> texts;
    for (std::string& argument : arguments) {
      texts.push_back(argument.data());
    }
    texts.push_back(nullptr);
    pid_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
    if (pid_ == 0) {
      execv(OSTREVIN_HOST, texts.data());
      _exit(127);
    }
  }
  ~ToolOnTerminal() {
    if (pid_ > 0) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    close(terminal_);
  }
  ToolOnTerminal(const ToolOnTerminal&) = delete;
  ToolOnTerminal& operator=(const ToolOnTerminal&) = delete;

  /// Reads until the output contains the text, or to its end, and returns all output.
  std::string readUntil(const std::string& text) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (output_.find(text) == std::string::npos) {
      const auto left =
          std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
      pollfd end{terminal_, POLLIN, 0};
      std::array<char, 4096> buffer;
      ssize_t count = 0;
      if (left <= 0 || poll(&end, 1, static_cast<int>(left)) <= 0 ||
          (count = read(terminal_, buffer.data(), buffer.size())) <= 0) {
        break;
      }
      output_.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return output_;
  }
  std::string readToEnd() { return readUntil("\x04 never printed"); }

  void type(const char* text) const {
    EXPECT_EQ(write(terminal_, text, std::strlen(text)), ssize_t(std::strlen(text)));
  }

  /// As a shell reports it: the exit status, or 128 and the signal.
  int status() {
    int status = 0;
    waitpid(std::exchange(pid_, -1), &status, 0);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  }

 private:
  int terminal_ = -1;
  pid_t pid_ = -1;
  std::string output_;
};

class WaitingTest : public ToolTest {
 protected:
  /// A display with a profile, whose service has an empty name, so that its name comes from the walk over devices too.
  std::string desktopWithWalk(const std::string& walk) {
    return write("desktop.json", R"({"displays": [{"number": 7, "bounds": [0, 0, 800, 600], "name": "Seven",
        "profiles": ["/p/a.icc"]}], "services": [{"vendor": 0, "product": 0, "names": {"en": ""}}],
        "device_walk": )" + walk + "}");
  }
};

TEST_F(WaitingTest, ListAsksForProfilesOfDisplaysWithAssociatedProfilesOnly) {
  const std::string desktop = write("desktop.json", R"({"displays": [
      {"number": 7, "bounds": [0, 0, 800, 600], "name": "With", "profiles": ["/p/a.icc"]},
      {"number": 8, "bounds": [800, 0, 800, 600], "name": "Without"},
      {"number": 9, "bounds": [1600, 0, 800, 600], "name": "With", "profiles": ["/p/b.icc"]}]})");
  const auto run = runTool({"--plugin", WATCHED_PLUGIN, "--desktop", desktop, "--json"});
  EXPECT_EQ(run.errors, "GetProfilePath 7\nGetProfilePath 9\n");
  EXPECT_EQ(run.document()["displays"][1]["profile"], "");
}

TEST_F(WaitingTest, TerminalShowsWhatIsWaitedForUntilItComes) {
  ToolOnTerminal tool({"--desktop", desktopWithWalk(R"({"delay_ms": 1200})"), "list"});
  const std::string output = tool.readToEnd();
  EXPECT_THAT(output, HasSubstr(noticeOf("the name of display 7") + kCleared));
  EXPECT_THAT(output, HasSubstr(noticeOf("the profile of display 7") + kCleared));
  EXPECT_THAT(output, HasSubstr(std::string(kCleared) + "Number  Index  Name"));
  EXPECT_EQ(tool.status(), 0);
}

TEST_F(WaitingTest, TerminalShowsCalledMethod) {
  ToolOnTerminal tool({"--desktop", desktopWithWalk(R"({"delay_ms": 1200})"), "call", "GetProfilePath", "7"});
  EXPECT_THAT(tool.readToEnd(), HasSubstr(noticeOf("GetProfilePath") + kCleared + "path: "));
}

TEST_F(WaitingTest, TerminalShowsNothingForShortCalls) {
  ToolOnTerminal tool({"--desktop", write("desktop.json", tool_test::kThreeDisplays), "list"});
  EXPECT_THAT(tool.readToEnd(), Not(HasSubstr("waiting for")));
}

TEST_F(WaitingTest, PipeGetsNoNotice) {
  const auto run = runTool({"--desktop", desktopWithWalk(R"({"delay_ms": 1200})"), "--json"});
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.document()["displays"][0]["name"], "Seven");
}

struct Interrupted {
  std::string command;
  int status = 0;
};

class InterruptTest : public WaitingTest, public testing::WithParamInterface<Interrupted> {};

TEST_P(InterruptTest, EndsAWaitAndClearsTheLine) {
  ToolOnTerminal tool({"--desktop", desktopWithWalk(R"({"hang": true})"), GetParam().command});
  ASSERT_THAT(tool.readUntil("Ctrl-C ends it"), HasSubstr("waiting for the name of display 7"));
  tool.type(kInterrupt);
  EXPECT_THAT(tool.readToEnd(), EndsWith(kCleared));
  EXPECT_EQ(tool.status(), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(, InterruptTest, testing::Values(Interrupted{"list", 130}, Interrupted{"watch", 0}),
                         [](const auto& info) { return info.param.command; });

}  // namespace
