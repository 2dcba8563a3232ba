// A ColorSync that never comes back: the two queries end in real time.
#include <gmock/gmock.h>

#include "faults/expectations.h"
#include "faults/scene.h"

namespace {

using faults::Question;
using faults::Scene;
using std::chrono::milliseconds;
using std::chrono::seconds;

class AQueryOfAColorSyncThatHangs : public testing::TestWithParam<std::size_t> {};

TEST_P(AQueryOfAColorSyncThatHangs, EndsAtItsLimitAndLeavesTheNextOneInOrder) {
  constexpr milliseconds kSlack{5000};  // for a computer that is busy with other tests
  const Question& question = faults::questions()[GetParam()];
  Scene scene;
  scene.load(Scene::Wait::kInRealTime);
  scene.session.desktop->change([](platform::desktop::Script& script) { script.device_walk.hang = true; });
  const faults::Outcome outcome = scene.run(question.ask);
  EXPECT_EQ(outcome.answer, faults::failureValue(question));
  EXPECT_GE(outcome.time, question.limit);
  EXPECT_LT(outcome.time, question.limit + kSlack);
  scene.session.desktop->change([](platform::desktop::Script& script) { script.device_walk.hang = false; });
  EXPECT_EQ(scene.run(question.ask_afterwards).answer, question.right_afterwards);
}

/// Those that reach ColorSync's queue when nothing else is wrong.
std::vector<std::size_t> queries() {
  std::vector<std::size_t> result;
  for (std::size_t i = 0; i < faults::questions().size(); ++i) {
    if (faults::questions()[i].limit > seconds(0) && faults::questions()[i].name != "GetName") {
      result.push_back(i);
    }
  }
  return result;
}

INSTANTIATE_TEST_SUITE_P(EveryQuery, AQueryOfAColorSyncThatHangs, testing::ValuesIn(queries()), [](const auto& info) {
  std::string name = faults::questions()[info.param].name;
  return name.substr(0, name.find(' '));
});

}  // namespace
