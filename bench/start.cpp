// The start of a process that uses the plugin, part by part, as medians over fresh processes.
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "groups.h"
#include "support/process.h"

namespace bench {

void measureStart(Suite& suite) {
  const int processes = suite.isQuick() ? 1 : 25;
  std::vector<double> empty;
  for (int i = 0; i < processes; ++i) {
    empty.push_back(nanoseconds([] { test_support::runSuccessfully({"true"}); }) / 1e6);
  }
  suite.results().start.push_back({"a process that does nothing, started and waited for", median(empty)});
  std::vector<std::string> names;
  std::map<std::string, std::vector<double>> milliseconds;
  for (int i = 0; i < processes; ++i) {
    std::istringstream output(test_support::runSuccessfully({OSTREVIN_START_PROBE, OSTREVIN_LIBRARY}));
    double microseconds = 0;
    for (std::string name; output >> microseconds && std::getline(output >> std::ws, name);) {
      if (i == 0) {
        names.push_back(name);
      }
      milliseconds[name].push_back(microseconds / 1000);
    }
  }
  for (const std::string& name : names) {
    suite.results().start.push_back({name, median(milliseconds[name])});
  }
}

}  // namespace bench
