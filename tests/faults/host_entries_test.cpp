// Every host entry that the plugin looks up, missing or answering wrongly, times every method.
#include <algorithm>

#include "faults/host_answers.h"
#include "faults/matrix.h"

namespace {

using faults::HostAnswer;
using faults::Question;
using faults::Scene;

/// All but the one by which the plugin is known to the host at all.
std::vector<HostAnswer> answersOfAKnownPlugin() {
  std::vector<HostAnswer> answers;
  std::copy_if(faults::hostAnswers().begin(), faults::hostAnswers().end(), std::back_inserter(answers),
               [](const HostAnswer& answer) { return answer.entry != "PluginRegisterModule"; });
  return answers;
}

class AHostWhose : public faults::MatrixTest, public testing::WithParamInterface<HostAnswer> {};

TEST_P(AHostWhose, EntryIsSoGetsFromEachMethodTheAnswerThatIsStated) {
  const HostAnswer& answer = GetParam();
  Scene scene;
  answer.apply(scene.host);
  scene.load();
  for (const Question& question : faults::questions()) {
    tryHost(scene, question, faults::expected(answer.entry, answer.name, question));
  }
  EXPECT_THAT(scene.host.faults(), testing::IsEmpty());
  // The plugin has found the entry, or asks for it again each time; a fresh one in a whole host is right.
  Scene whole;
  whole.load();
  for (const Question& question : faults::questions()) {
    EXPECT_EQ(whole.run(question.ask).answer, question.right) << question.name;
  }
}

INSTANTIATE_TEST_SUITE_P(EveryEntry, AHostWhose, testing::ValuesIn(answersOfAKnownPlugin()),
                         [](const auto& info) { return faults::testName(info.param.entry + " " + info.param.name); });

class AMissingEntry : public faults::MatrixTest, public testing::WithParamInterface<HostAnswer> {};

TEST_P(AMissingEntry, IsFoundOnceTheHostHasIt) {
  const HostAnswer& answer = GetParam();
  Scene scene;
  void* const function = scene.host.entries().find(answer.entry);
  answer.apply(scene.host);
  scene.load();
  for (const Question& question : faults::questions()) {
    scene.run(question.ask);
  }
  scene.host.entries().set(answer.entry, function);
  for (const Question& question : faults::questions()) {
    const bool remembers = question.right != question.right_afterwards;
    const auto outcome = scene.run(remembers ? question.ask_afterwards : question.ask);
    EXPECT_EQ(outcome.answer, remembers ? question.right_afterwards : question.right) << question.name;
  }
}

std::vector<HostAnswer> missingEntries() {
  std::vector<HostAnswer> answers = answersOfAKnownPlugin();
  answers.erase(
      std::remove_if(answers.begin(), answers.end(), [](const HostAnswer& answer) { return answer.name != "missing"; }),
      answers.end());
  return answers;
}

INSTANTIATE_TEST_SUITE_P(EveryEntry, AMissingEntry, testing::ValuesIn(missingEntries()),
                         [](const auto& info) { return info.param.entry; });

class NoRegistration : public testing::TestWithParam<HostAnswer> {};

TEST_P(NoRegistration, MeansThatThePluginIsRefusedAndTheHostGoesOn) {
  Scene scene;
  GetParam().apply(scene.host);
  EXPECT_THROW(scene.load(), devhost::PluginError);
  Scene whole;
  whole.load();
  EXPECT_EQ(whole.run(faults::questions().front().ask).answer, faults::questions().front().right);
}

std::vector<HostAnswer> registrations() {
  std::vector<HostAnswer> answers;
  std::copy_if(faults::hostAnswers().begin(), faults::hostAnswers().end(), std::back_inserter(answers),
               [](const HostAnswer& answer) { return answer.entry == "PluginRegisterModule"; });
  return answers;
}

INSTANTIATE_TEST_SUITE_P(EveryEntry, NoRegistration, testing::ValuesIn(registrations()),
                         [](const auto& info) { return faults::testName(info.param.name); });

}  // namespace
