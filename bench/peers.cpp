// The tool beside other programs that do the same job, as whole processes: started, answered, ended.
#include <stdexcept>
#include <string>
#include <vector>

#include "groups.h"
#include "support/icc_maker.h"
#include "support/process.h"
#include "support/temporary_folder.h"

namespace bench {
namespace {

using Command = std::vector<std::string>;
using test_support::ProcessResult;
using test_support::XorgServer;

constexpr double kBar = 1;
constexpr Batches kRuns{.rounds = 25, .calls = 1};
constexpr const char* kProfile = "/usr/share/color/icc/colord/AdobeRGB1998.icc";

Command tool(const Command& arguments) {
  Command command{OSTREVIN_TOOL};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

std::string shortened(const std::string& word) {
  if (word.ends_with(".icc")) {
    return "FILE";
  }
  return word.starts_with("/org/") ? "DEVICE" : word;
}

/// Whole runs of a program, whose output must have `expected` in it: a program that found nothing has done no job.
Timer runs(const Command& command, const std::string& expected) {
  return timerOf([=] {
    const ProcessResult result = test_support::run(command);
    if ((result.output + result.errors).find(expected) == std::string::npos) {
      throw std::runtime_error(command.front() + " does not say \"" + expected + "\":\n" + result.output +
                               result.errors);
    }
  });
}

/// A job: what the tool is asked, what the peer is asked, and what both must say.
void compare(Suite& suite, const Command& arguments, const Command& peer, const std::string& expected,
             const std::string& peers_expected, const std::string& remark = {}) {
  std::string method = "ostrevin-host";
  for (const std::string& argument : arguments) {
    method += " " + shortened(argument);
  }
  std::string twin;
  for (const std::string& word : peer.front() == "sh" ? Command{peer.back()} : peer) {
    twin += (twin.empty() ? "" : " ") + shortened(word);
  }
  suite.compareTimers({method, twin + remark, kBar}, runs(tool(arguments), expected), runs(peer, peers_expected),
                      kRuns);
}

void compareDisplays(Suite& suite, const std::string& first) {
  suite.begin("Whole processes, displays", 3);
  compare(suite, {}, {"sh", "-c", "xrandr --query; colormgr get-devices"}, "1280 x 1024 at 1920, 56",
          "1280x1024+1920+56");
  compare(suite, {}, {"xrandr", "--query"}, "1280 x 1024 at 1920, 56", "1280x1024+1920+56", " (no names, no profiles)");
  compare(suite, {}, {"dispwin", "-?"}, "1280 x 1024 at 1920, 56", "at 1920, 56, width 1280",
          " (no names, no profiles)");
  compare(suite, {"call", "GetCGRect", first}, {"xrandr", "--query"}, "1920", "1920x1080+0+0");
  compare(suite, {"--json"}, {"colormgr", "get-devices"}, kProfile, "AdobeRGB1998", " (no geometry)");
}

/// In a file of ICC's version 2: iccdump reads no later one.
void compareTags(Suite& suite) {
  const support::TemporaryFolder folder;
  const std::string file =
      folder.write("a.icc", support::IccMaker().tag("rXYZ", support::xyzElement(0.4361, 0.2225, 0.0139)).bytes());
  suite.begin("Whole processes, tags", 1);
  compare(suite, {"tag", file, "rXYZ"}, {"iccdump", "-t", "rXYZ", file}, "yes", "No. elements = 1");
}

}  // namespace

void measurePeers(Suite& suite, XorgServer& server, test_support::PrivateColord& colord) {
  for (const auto& output : server.outputs()) {
    if (output.area) {
      test_support::runSuccessfully(tool({"call", "SetProfile", std::to_string(output.id), kProfile}));
    }
  }
  const std::string first = std::to_string(server.output("DUMMY0").id);
  const std::string device =
      test_support::PrivateColord::fields(colord.colormgr({"get-devices"}), "Object Path").front();
  compareDisplays(suite, first);
  compare(suite, {"call", "GetProfilePath", first}, {"colormgr", "device-get-default-profile", device}, kProfile,
          kProfile);
  const auto installed = test_support::PrivateColord::fields(colord.colormgr({"get-profiles"}), "Object Path").size();
  suite.begin("Whole processes, installed profiles", static_cast<long>(installed));
  compare(suite, {"profiles"}, {"colormgr", "get-profiles"}, kProfile, kProfile);
  compareTags(suite);
}

}  // namespace bench
