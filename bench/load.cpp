// Loading the plugin and having it register, beside loading an empty library with the same dependencies. Each time in a
// fresh process, which takes the time itself.
#include <string>

#include "groups.h"
#include "support/process.h"

namespace bench {
namespace {

constexpr double kBar = 1.05;

Timer probe(const std::vector<std::string>& arguments) {
  std::vector<std::string> command{OSTREVIN_LOAD_PROBE};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return [command](int calls) {
    double sum = 0;
    for (int i = 0; i < calls; ++i) {
      sum += std::stod(test_support::runSuccessfully(command));
    }
    return sum / calls;
  };
}

}  // namespace

void measureLoad(Suite& suite) {
  suite.begin("Load, fresh processes", 1);
  suite.compareTimers({"dlopen and REALPluginMain", "dlopen of an empty library with the same dependencies", kBar},
                      probe({OSTREVIN_LIBRARY, "REALPluginMain"}), probe({OSTREVIN_EMPTY_LIBRARY}),
                      {.rounds = 101, .calls = 1});
}

}  // namespace bench
