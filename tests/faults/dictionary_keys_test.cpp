// Every dictionary that a framework hands out, with a key missing or with a value of another type, times every method.
#include <algorithm>

#include "faults/answers.h"
#include "faults/matrix.h"

namespace {

using faults::DictionaryEdit;
using faults::Question;
using faults::Scene;
using platform::calls::Answer;

std::vector<std::string> editedThings() {
  std::vector<std::string> things;
  for (const DictionaryEdit& edit : faults::dictionaryEdits()) {
    if (std::find(things.begin(), things.end(), edit.what) == things.end()) {
      things.push_back(edit.what);
    }
  }
  return things;
}

class ADictionaryWith : public faults::MatrixTest, public testing::WithParamInterface<std::string> {};

TEST_P(ADictionaryWith, AnythingElseThereLeavesEachMethodTheAnswerThatIsStated) {
  for (const DictionaryEdit& edit : faults::dictionaryEdits()) {
    if (edit.what != GetParam()) {
      continue;
    }
    SCOPED_TRACE(edit.what + ": " + edit.name);
    Scene scene;
    scene.load();
    const auto set = [&] {
      platform::calls::setHook(edit.call, [&](std::uint64_t) { return Answer{.edit = &edit.edit}; });
    };
    for (const Question& question : faults::questions()) {
      tryFault(scene, question, set, platform::calls::removeAllHooks,
               testing::Eq(faults::expected(edit.what, edit.name, question)));
    }
    expectNoFaults(scene);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryKey, ADictionaryWith, testing::ValuesIn(editedThings()),
                         [](const auto& info) { return info.param; });

}  // namespace
