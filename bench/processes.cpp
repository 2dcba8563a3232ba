// Whole processes: the tool beside other programs that do the same job, started and read to the end of their output. Of
// the tool's time counts what it adds to the loading of Foundation. And the load of the plugin in fresh processes,
// which take the time themselves (load_probe).
#include <stdexcept>
#include <string>
#include <vector>

#include "groups.h"
#include "support/icc_maker.h"
#include "support/process.h"
#include "support/temporary_folder.h"
#include "support/wayland_session.h"

namespace bench {
namespace {

using Command = std::vector<std::string>;

constexpr double kToolBar = 1;
constexpr double kNoBar = 0;  // the twin does a part of the job
constexpr double kListBar = 2;
constexpr double kWaylandBar = 1.10;
constexpr double kLoadBar = 1.05;
constexpr const char* kArea = "1280 x 1024 at 1920, 56";

Command tool(const Command& arguments) {
  Command command{OSTREVIN_TOOL};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

/// A program, and what its output must contain: one that found nothing has done no job.
struct Job {
  Command command;
  std::string expected;
};

Timer runs(const Job& job) {
  return timerOf([=] {
    const support::ProcessResult result = support::run(job.command);
    if ((result.output + result.errors).find(job.expected) == std::string::npos) {
      throw std::runtime_error(job.command.front() + " does not print \"" + job.expected + "\":\n" + result.output +
                               result.errors);
    }
  });
}

Pair jobs(const Job& plugin, const Job& twin) {
  return {runs(plugin), runs(twin), {.rounds = 25, .calls = 1}, runs({{OSTREVIN_FOUNDATION_FLOOR}, ""})};
}

/// A list of three displays without profiles, beside one of three with a profile each.
Pair listJobs() {
  const auto folder = std::make_shared<const support::TemporaryFolder>();
  const auto list = [&](const std::string& name, const std::string& profiles) {
    std::string displays;
    for (const char* const number : {"1", "2", "3"}) {
      displays += std::string(displays.empty() ? "" : ",") + R"({"bounds": [0, 0, 800, 600], "name": "A", "number": )" +
                  number + profiles + "}";
    }
    return Job{tool({"--desktop", folder->write(name, R"({"displays": [)" + displays + "]}"), "list"}), "800 x 600"};
  };
  const Timer without = runs(list("without.json", ""));
  const Timer with = runs(list("with.json", R"(, "profiles": ["/p/a.icc"])"));
  return {[folder, without](int calls) { return without(calls); }, with, {.rounds = 25, .calls = 1}};
}

/// The same three displays of sway and of the X server, both without colord, which keeps profiles for the latter only.
Pair displayServerJobs() {
  const auto sway = std::make_shared<const support::SwaySession>(3);
  sway->swaymsg({"output", "HEADLESS-1", "mode", "1920x1080", "position", "0", "0"});
  sway->swaymsg({"output", "HEADLESS-2", "mode", "1280x1024", "position", "1920", "56"});
  sway->swaymsg({"output", "HEADLESS-3", "mode", "800x600", "position", "300", "1080"});
  const auto list = [](const std::string& wayland) {
    return runs({{"env", "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent/bus", "WAYLAND_DISPLAY=" + wayland,
                  OSTREVIN_TOOL, "list"},
                 kArea});
  };
  return {[sway, run = list(sway->socket())](int calls) { return run(calls); }, list(""), {.rounds = 25, .calls = 1}};
}

/// In a file of ICC's version 2: iccdump reads no later one.
Pair tagJobs() {
  const auto folder = std::make_shared<const support::TemporaryFolder>();
  const std::string file =
      folder->write("a.icc", support::IccMaker().tag("rXYZ", support::xyzElement(0.4361, 0.2225, 0.0139)).bytes());
  Pair pair = jobs({tool({"tag", file, "rXYZ"}), "yes"}, {{"iccdump", "-t", "rXYZ", file}, "No. elements = 1"});
  return {[folder, run = pair.plugin](int calls) { return run(calls); }, pair.twin, pair.batches, pair.floor};
}

Timer probe(const Command& command) {
  return [command](int calls) {
    double sum = 0;
    for (int i = 0; i < calls; ++i) {
      sum += std::stod(support::runSuccessfully(command));
    }
    return sum / calls;
  };
}

}  // namespace

void addProcesses(const Suite& suite, LiveDesktop& live) {
  const auto add = [&](const char* method, const char* twin, double bar, Job plugin_job, Job twin_job) {
    suite.add({method, 3, "live displays", twin, bar}, [=, &live] {
      live.use(3);
      return jobs(plugin_job, twin_job);
    });
  };
  const Job all{tool({}), kArea};
  const Job xrandr{{"xrandr", "--query"}, "1280x1024+1920+56"};
  add("ostrevin-host", "xrandr --query; colormgr get-devices", kToolBar, all,
      {{"sh", "-c", "xrandr --query; colormgr get-devices"}, "1280x1024+1920+56"});
  add("ostrevin-host", "xrandr --query (no names, no profiles)", kNoBar, all, xrandr);
  add("ostrevin-host", "dispwin -? (no names, no profiles)", kNoBar, all,
      {{"dispwin", "-?"}, "at 1920, 56, width 1280"});
  add("ostrevin-host --json", "colormgr get-devices (no geometry)", kToolBar, {tool({"--json"}), kProfile},
      {{"colormgr", "get-devices"}, "AdobeRGB1998"});
  suite.add({"ostrevin-host call GetCGRect ID", 3, "live displays", "xrandr --query", kToolBar}, [=, &live] {
    live.use(3);
    return jobs({tool({"call", "GetCGRect", std::to_string(live.display("DUMMY0"))}), "1920"}, xrandr);
  });
  suite.add({"ostrevin-host call GetProfilePath ID", 3, "live displays", "colormgr device-get-default-profile DEVICE",
             kToolBar},
            [&live] {
              live.use(3);
              const std::string device =
                  support::PrivateColord::fields(live.colord().colormgr({"get-devices"}), "Object Path").front();
              return jobs({tool({"call", "GetProfilePath", std::to_string(live.display("DUMMY0"))}), kProfile},
                          {{"colormgr", "device-get-default-profile", device}, kProfile});
            });
  suite.add({"ostrevin-host profiles", 0, "colord's profiles", "colormgr get-profiles", kToolBar}, [&live] {
    live.use(3);
    return jobs({tool({"profiles"}), kProfile}, {{"colormgr", "get-profiles"}, kProfile});
  });
  suite.add({"ostrevin-host list", 3, "displays, no profile", "the same with profiles", kListBar}, listJobs);
  suite.add({"ostrevin-host list", 3, "displays of sway", "the same of the X server", kWaylandBar}, [&live] {
    live.use(3);
    return displayServerJobs();
  });
  suite.add({"ostrevin-host tag FILE rXYZ", 1, "tag", "iccdump -t rXYZ FILE", kToolBar}, tagJobs);
  suite.add({"dlopen and REALPluginMain", 0, "a fresh process", "dlopen of the dependencies alone", kLoadBar},
            []() -> Pair {
              return {probe({OSTREVIN_LOAD_PROBE, OSTREVIN_LIBRARY, "REALPluginMain"}),
                      probe({OSTREVIN_LOAD_PROBE, OSTREVIN_EMPTY_LIBRARY}),
                      {.rounds = 101, .calls = 1}};
            });
}

}  // namespace bench
