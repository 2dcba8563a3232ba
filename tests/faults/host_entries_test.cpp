// Every host entry that the plugin looks up, missing or returning something wrong, times every method.
#include <algorithm>

#include "faults/answers.h"
#include "faults/matrix.h"

namespace {

using faults::HostAnswer;
using faults::Question;
using faults::Scene;

/// All but those of the registration.
std::vector<HostAnswer> answersAfterRegistration() {
  std::vector<HostAnswer> answers;
  std::copy_if(faults::hostAnswers().begin(), faults::hostAnswers().end(), std::back_inserter(answers),
               [](const HostAnswer& answer) { return answer.entry != "PluginRegisterModule"; });
  return answers;
}

class FaultInHostEntry : public faults::MatrixTest, public testing::WithParamInterface<HostAnswer> {};

TEST_P(FaultInHostEntry, GivesDocumentedAnswers) {
  const HostAnswer& answer = GetParam();
  Scene scene;
  answer.apply(scene.host);
  scene.load();
  for (const Question& question : faults::questions()) {
    tryHost(scene, question, faults::expected(answer.entry, answer.name, question));
  }
  EXPECT_THAT(scene.host.faults(), testing::IsEmpty());
  // A fresh plugin in a whole host is right: nothing of the fault outlives the plugin.
  Scene whole;
  whole.load();
  for (const Question& question : faults::questions()) {
    EXPECT_EQ(whole.run(question.ask).answer, question.right) << question.name;
  }
}

INSTANTIATE_TEST_SUITE_P(All, FaultInHostEntry, testing::ValuesIn(answersAfterRegistration()),
                         [](const auto& info) { return faults::testName(info.param.entry + " " + info.param.name); });

class MissingHostEntry : public faults::MatrixTest, public testing::WithParamInterface<HostAnswer> {};

TEST_P(MissingHostEntry, IsFoundWhenItAppears) {
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
  std::vector<HostAnswer> answers = answersAfterRegistration();
  answers.erase(
      std::remove_if(answers.begin(), answers.end(), [](const HostAnswer& answer) { return answer.name != "missing"; }),
      answers.end());
  return answers;
}

INSTANTIATE_TEST_SUITE_P(All, MissingHostEntry, testing::ValuesIn(missingEntries()),
                         [](const auto& info) { return info.param.entry; });

class FaultInRegistration : public testing::TestWithParam<HostAnswer> {};

TEST_P(FaultInRegistration, MakesTheHostRefuseThePlugin) {
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

INSTANTIATE_TEST_SUITE_P(All, FaultInRegistration, testing::ValuesIn(registrations()),
                         [](const auto& info) { return faults::testName(info.param.name); });

}  // namespace
