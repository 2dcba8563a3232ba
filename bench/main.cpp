// ostrevin-bench: runs all pairs and prints one table. See bench/run.
#include <CLI/CLI.hpp>

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "groups.h"
#include "instructions.h"
#include "machine.h"
#include "report.h"
#include "support/edid_maker.h"

namespace bench {
namespace {

struct Options {
  bool quick = false;
  bool json = false;
  bool strict = false;
  bool count = false;
  std::string plot;
  std::string doc;
};

constexpr const char* kDescription =
    "Measures every method of the plugin beside a twin, the same work done without the plugin, by turns in one run, "
    "and\n"
    "prints a table. What takes more than its bar allows is marked \"over\".";

constexpr const char* kFooter =
    "Examples:\n"
    "  bench/run                    everything: several minutes\n"
    "  bench/run --quick            a try whether everything works; its times mean nothing\n"
    "  bench/run --json > all.json\n"
    "  bench/run --doc              measures for docs/performance.md and its plot\n"
    "Exit status: 0 done, 1 something failed to run, or with --strict something is over its bar.";

Options readOptions(CLI::App& app, int count, char** texts) {
  Options options;
  app.footer(kFooter);
  app.add_flag("--quick", options.quick, "Few rounds and small sizes");
  app.add_flag("--json", options.json, "Print a JSON document; times are in nanoseconds");
  app.add_flag("--strict", options.strict, "Exit status 1 when anything is over its bar");
  app.add_option("--plot", options.plot, "Write the plot of how costs grow")->type_name("FILE.svg");
  app.add_option("--doc", options.doc, "Put the results between the marks in this document, and the plot beside it")
      ->type_name("FILE.md")
      ->expected(0, 1)
      ->default_str(OSTREVIN_PERFORMANCE_DOCUMENT);
  app.add_flag("--count", options.count, "What callgrind runs: makes the calls, takes no times")->group("");
  app.parse(count, texts);
  return options;
}

/// What is counted, and timed too: pairs that need no server.
void measureOnScriptedDesktop(Suite& suite) {
  measureScriptedGeometry(suite);
  measureNameGrowth(suite);
}

/// What needs a server; the servers are this program's own.
void measureLive(Suite& suite) {
  test_support::PrivateColord colord;
  test_support::XorgServer server;
  unsetenv("OSTREVIN_DESKTOP");
  setenv("DISPLAY", server.display().c_str(), 1);
  setenv("XAUTHORITY", (server.directory() / "no-authority").c_str(), 1);
  server.place({{"DUMMY0", {1920, 1080, 0, 0}}, {"DUMMY1", {1280, 1024, 1920, 56}}, {"DUMMY2", {800, 600, 300, 1080}}});
  server.setEdid("DUMMY0", test_support::makeEdid({.vendor = "DEL", .serial = 1502, .name = kMonitorName}));
  measurePeers(suite, server, colord);
  measureStart(suite);
  measureLiveIdentity(suite, server, colord);
  measureLiveGeometry(suite, server);
}

Results measure(const Options& options, const std::string& program) {
  Suite suite(options.quick ? Suite::Mode::kQuick : Suite::Mode::kFull);
  suite.results().machine = describeMachine();
  measureLive(suite);
  measureScriptedGeometry(suite);
  measureDisplayGrowth(suite);
  measureNameGrowth(suite);
  measureProfileLists(suite);
  measureDisplayProfiles(suite);
  measureTags(suite);
  measureDocuments(suite);
  measureText(suite);
  measureLoad(suite);
  Results results = suite.results();
  results.instructions = countInstructions({program, "--count"});
  const std::vector<Instructions> host_calls = countHostCalls({OSTREVIN_HOST_CALL_COST});
  results.instructions.insert(results.instructions.end(), host_calls.begin(), host_calls.end());
  return results;
}

void write(const std::string& path, const std::string& text) {
  std::ofstream file(path);
  file << text;
  if (!file.flush()) {
    throw std::runtime_error("cannot write " + path);
  }
}

int run(const Options& options, const std::string& program) {
  if (options.count) {
    Suite suite(Suite::Mode::kCount);
    measureOnScriptedDesktop(suite);
    return 0;
  }
  const Results results = measure(options, program);
  if (!options.plot.empty()) {
    write(options.plot, plotSvg(results));
  }
  if (!options.doc.empty()) {
    replaceMeasured(options.doc, markdown(results));
    write(options.doc.substr(0, options.doc.rfind('.')) + ".svg", plotSvg(results));
  }
  if (options.json) {
    printJson(std::cout, results);
  } else {
    printTable(std::cout, results);
  }
  return options.strict && shortfalls(results) > 0 ? 1 : 0;
}

int main(int count, char** texts) {
  CLI::App app(kDescription, "bench/run");
  Options options;
  try {
    options = readOptions(app, count, texts);
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
  try {
    return run(options, texts[0]);
  } catch (const std::exception& error) {
    std::cerr << "bench: " << error.what() << '\n';
    return 1;
  }
}

}  // namespace
}  // namespace bench

int main(int count, char** texts) { return bench::main(count, texts); }
