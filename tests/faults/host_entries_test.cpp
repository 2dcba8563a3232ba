// Every host entry that the plugin looks up, missing or returning something wrong, times every method.
#include <algorithm>

#include "faults/fault_values.h"
#include "faults/matrix.h"

namespace {

using faults::HostFault;
using faults::Question;
using faults::Scene;

/// All but those of the registration.
std::vector<HostFault> faultsAfterRegistration() {
  std::vector<HostFault> faults;
  std::copy_if(faults::hostFaults().begin(), faults::hostFaults().end(), std::back_inserter(faults),
               [](const HostFault& fault) { return fault.entry != "PluginRegisterModule"; });
  return faults;
}

class FaultInHostEntry : public faults::MatrixTest, public testing::WithParamInterface<HostFault> {};

TEST_P(FaultInHostEntry, GivesDocumentedAnswers) {
  const HostFault& fault = GetParam();
  Scene scene;
  fault.apply(scene.host);
  scene.load();
  for (const Question& question : faults::questions()) {
    tryHost(scene, question, faults::expected(fault.entry, fault.name, question));
  }
  EXPECT_THAT(scene.host.faults(), testing::IsEmpty());
  // A fresh plugin in a whole host is right: nothing of the fault outlives the plugin.
  Scene whole;
  whole.load();
  for (const Question& question : faults::questions()) {
    EXPECT_EQ(whole.run(question.ask).result, question.right) << question.name;
  }
}

INSTANTIATE_TEST_SUITE_P(All, FaultInHostEntry, testing::ValuesIn(faultsAfterRegistration()),
                         [](const auto& info) { return faults::testName(info.param.entry + " " + info.param.name); });

class MissingHostEntry : public faults::MatrixTest, public testing::WithParamInterface<HostFault> {};

TEST_P(MissingHostEntry, IsFoundWhenItAppears) {
  const HostFault& fault = GetParam();
  Scene scene;
  void* const function = scene.host.entries().find(fault.entry);
  fault.apply(scene.host);
  scene.load();
  for (const Question& question : faults::questions()) {
    scene.run(question.ask);
  }
  scene.host.entries().set(fault.entry, function);
  for (const Question& question : faults::questions()) {
    const bool remembers = question.right != question.right_afterwards;
    const auto outcome = scene.run(remembers ? question.ask_afterwards : question.ask);
    EXPECT_EQ(outcome.result, remembers ? question.right_afterwards : question.right) << question.name;
  }
}

std::vector<HostFault> missingEntries() {
  std::vector<HostFault> faults = faultsAfterRegistration();
  faults.erase(
      std::remove_if(faults.begin(), faults.end(), [](const HostFault& fault) { return fault.name != "missing"; }),
      faults.end());
  return faults;
}

INSTANTIATE_TEST_SUITE_P(All, MissingHostEntry, testing::ValuesIn(missingEntries()),
                         [](const auto& info) { return info.param.entry; });

class FaultInRegistration : public testing::TestWithParam<HostFault> {};

TEST_P(FaultInRegistration, MakesTheHostRefuseThePlugin) {
  Scene scene;
  GetParam().apply(scene.host);
  EXPECT_THROW(scene.load(), devhost::PluginError);
  Scene whole;
  whole.load();
  EXPECT_EQ(whole.run(faults::questions().front().ask).result, faults::questions().front().right);
}

std::vector<HostFault> registrations() {
  std::vector<HostFault> faults;
  std::copy_if(faults::hostFaults().begin(), faults::hostFaults().end(), std::back_inserter(faults),
               [](const HostFault& fault) { return fault.entry == "PluginRegisterModule"; });
  return faults;
}

INSTANTIATE_TEST_SUITE_P(All, FaultInRegistration, testing::ValuesIn(registrations()),
                         [](const auto& info) { return faults::testName(info.param.name); });

}  // namespace
