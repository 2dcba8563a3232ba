// Every framework call, dictionary and message with every fault that is tried, times every method.
#include <algorithm>
#include <map>

#include "faults/fault_values.h"
#include "faults/matrix.h"
#include "faults/plugin_library.h"

namespace platform::calls {

/// For the names of tests.
void PrintTo(Call call, std::ostream* out) { *out << name(call); }

}  // namespace platform::calls

namespace {

using faults::DictionaryEdit;
using faults::MessageFault;
using faults::NamedFault;
using faults::Question;
using faults::Scene;
using platform::calls::Call;
using platform::calls::Fault;
using platform::calls::kCallCount;
using std::chrono::milliseconds;
using std::chrono::seconds;

/// The calls that the plugin makes are those with faults, which coverage_test.cpp checks.
std::vector<Call> walkedCalls() {
  std::vector<Call> calls;
  for (std::size_t i = 0; i < kCallCount; ++i) {
    if (!faults::faultsOf(static_cast<Call>(i)).empty()) {
      calls.push_back(static_cast<Call>(i));
    }
  }
  return calls;
}

class FrameworkCall : public faults::MatrixTest, public testing::WithParamInterface<Call> {
 protected:
  const Call call = GetParam();
  const std::string name = platform::calls::name(call);
};

auto eachCall() { return testing::ValuesIn(walkedCalls()); }

const auto kNameOfCall = [](const auto& info) { return std::string(platform::calls::name(info.param)); };

// --- framework calls

class FaultAtEveryCall : public FrameworkCall {};

TEST_P(FaultAtEveryCall, GivesDocumentedAnswers) {
  for (const NamedFault& named : faults::faultsOf(call)) {
    if (faults::takesForeverAtEveryCall(name, named.name)) {
      continue;  // FaultAtOneCall tries it
    }
    SCOPED_TRACE(name + ": " + named.name);
    Scene scene;
    scene.load();
    const auto set = [&] { platform::calls::setHook(call, [&](std::uint64_t) { return named.fault; }); };
    for (const Question& question : faults::questions()) {
      const std::string result = faults::expected(name, named.name, question);
      tryFault(scene, question, set, platform::calls::removeAllHooks, testing::Eq(result));
    }
    expectNoFaults(scene);
  }
}

INSTANTIATE_TEST_SUITE_P(All, FaultAtEveryCall, eachCall(), kNameOfCall);

/// How often each question makes the call when nothing is wrong.
std::map<std::string, std::uint64_t> callsPerQuestion(Call call) {
  std::map<std::string, std::uint64_t> result;
  Scene scene;
  scene.load();
  for (const Question& question : faults::questions()) {
    const std::uint64_t before = platform::calls::count(call);
    scene.run(question.ask);
    result[question.name] = platform::calls::count(call) - before;
  }
  return result;
}

std::uint64_t most(const std::map<std::string, std::uint64_t>& counts) {
  std::uint64_t result = 0;
  for (const auto& [question, count] : counts) {
    result = std::max(result, count);
  }
  return result;
}

class FaultAtOneCall : public FrameworkCall {};

TEST_P(FaultAtOneCall, GivesAllowedAnswers) {
  const auto counts = callsPerQuestion(call);
  for (const NamedFault& named : faults::faultsOf(call)) {
    for (std::uint64_t chosen = 1; chosen <= most(counts); ++chosen) {
      SCOPED_TRACE(name + " number " + std::to_string(chosen) + ": " + named.name);
      Scene scene;
      scene.load();
      scene.run(faults::questions().front().ask);  // the host object
      const auto set = [&] {
        platform::calls::setHook(call, [&](std::uint64_t nth) { return nth == chosen ? named.fault : Fault{}; });
      };
      for (const Question& question : faults::questions()) {
        if (counts.at(question.name) >= chosen) {
          tryFault(scene, question, set, platform::calls::removeAllHooks, testing::Truly([&](const std::string& got) {
                     return faults::mayComeOnce(got, name, named.name, question);
                   }));
        }
      }
      expectNoFaults(scene);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, FaultAtOneCall, eachCall(), kNameOfCall);

// --- displays that go away while a method runs

/// The desktop without the display; 0 for without all of them.
platform::desktop::Script without(std::uint32_t display) {
  auto script = faults::fiveDisplays();
  auto& arrangement = script.arrangement;
  for (std::size_t i = arrangement.displays.size(); i-- > 0;) {
    if (display == 0 || arrangement.displays[i].number == display) {
      const auto at = static_cast<std::ptrdiff_t>(i);
      arrangement.displays.erase(arrangement.displays.begin() + at);
      arrangement.screens.erase(arrangement.screens.begin() + at);
      arrangement.services.erase(arrangement.services.begin() + at);
      script.device_profiles.erase(script.device_profiles.begin() + 2 * at,
                                   script.device_profiles.begin() + 2 * at + 2);
    }
  }
  if (arrangement.screens.empty()) {
    arrangement.main_screen.reset();
  }
  return script;
}

/// The display that the question is about.
std::uint32_t displayOf(const Question& question) {
  if (question.name == "GetName of display 4") {
    return 4;
  }
  if (question.name == "SetProfile") {
    return 3;
  }
  return question.name == "GetIndex" || question.name == "GetScale" || question.name == "GetCGRect" ? 2 : 1;
}

/// The right result, the one for an unknown display and, for questions about all displays, the one for the displays
/// that are left.
bool mayComeWhenADisplayGoes(const std::string& got, const Question& question) {
  static const std::map<std::string, std::vector<std::string>> more = {
      {"GetName of display 4", {R"("")"}},
      {"GetScale", {"0", "1.75"}},  // no screen is left, or another one is the main screen
      {"GetScale of display 77", {"1.5"}},
      {"DisplayIDForWindow", {"0"}},
      {"ListDisplayProfiles", {"B=DIR/a.icc"}},
      {"GetAssociatedProfilePathsArray", {R"(["DIR/a.icc"])"}},
      {"DisplaysChanged", {"True"}},
  };
  const auto others = more.find(question.name);
  return got == question.right || got == faults::failureValue(question) ||
         (others != more.end() && std::count(others->second.begin(), others->second.end(), got) > 0);
}

class DisplayGoneAtOneCall : public FrameworkCall {};

TEST_P(DisplayGoneAtOneCall, GivesAllowedAnswers) {
  const auto counts = callsPerQuestion(call);
  for (const bool all_go : {false, true}) {
    for (std::uint64_t chosen = 1; chosen <= most(counts); ++chosen) {
      SCOPED_TRACE((all_go ? "all displays go before " : "the display goes before ") + name + " number " +
                   std::to_string(chosen));
      Scene scene;
      scene.load();
      scene.run(faults::questions().front().ask);  // the host object
      for (const Question& question : faults::questions()) {
        if (counts.at(question.name) < chosen) {
          continue;
        }
        const auto change = [&](const platform::desktop::Script& to) {
          scene.session.desktop->change([&](platform::desktop::Script& script) { script = to; });
        };
        const auto set = [&] {
          platform::calls::setHook(call, [&, after = without(all_go ? 0 : displayOf(question))](std::uint64_t nth) {
            if (nth == chosen) {
              change(after);
            }
            return Fault{};
          });
        };
        const auto restore = [&] {
          platform::calls::removeAllHooks();
          change(faults::fiveDisplays());
        };
        tryFault(scene, question, set, restore,
                 testing::Truly([&](const std::string& got) { return mayComeWhenADisplayGoes(got, question); }));
      }
      expectNoFaults(scene);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, DisplayGoneAtOneCall, eachCall(), kNameOfCall);

// --- dictionaries that a framework returns

std::vector<std::string> editedThings() {
  std::vector<std::string> things;
  for (const DictionaryEdit& edit : faults::dictionaryEdits()) {
    if (std::find(things.begin(), things.end(), edit.what) == things.end()) {
      things.push_back(edit.what);
    }
  }
  return things;
}

class FaultInDictionary : public faults::MatrixTest, public testing::WithParamInterface<std::string> {};

TEST_P(FaultInDictionary, GivesDocumentedAnswers) {
  for (const DictionaryEdit& edit : faults::dictionaryEdits()) {
    if (edit.what != GetParam()) {
      continue;
    }
    SCOPED_TRACE(edit.what + ": " + edit.name);
    Scene scene;
    scene.load();
    const auto set = [&] {
      platform::calls::setHook(edit.call, [&](std::uint64_t) { return Fault{.edit = &edit.edit}; });
    };
    for (const Question& question : faults::questions()) {
      tryFault(scene, question, set, platform::calls::removeAllHooks,
               testing::Eq(faults::expected(edit.what, edit.name, question)));
    }
    expectNoFaults(scene);
  }
}

INSTANTIATE_TEST_SUITE_P(All, FaultInDictionary, testing::ValuesIn(editedThings()),
                         [](const auto& info) { return info.param; });

// --- messages to Foundation's objects

class FaultInMessage : public faults::MatrixTest, public testing::WithParamInterface<MessageFault> {};

TEST_P(FaultInMessage, GivesDocumentedAnswers) {
  const MessageFault& message = GetParam();
  Scene scene;
  scene.load();
  const auto set = [&] { faults::replaceMessageResult(message.selector, message.result); };
  for (const Question& question : faults::questions()) {
    tryFault(scene, question, set, faults::restoreMessageResults,
             testing::Eq(faults::expected(message.selector, message.name, question)));
  }
  expectNoFaults(scene);
}

INSTANTIATE_TEST_SUITE_P(All, FaultInMessage, testing::ValuesIn(faults::messageFaults()), [](const auto& info) {
  return faults::testName(info.param.selector + " " + info.param.name);
});

// --- a ColorSync that never comes back: the queries end in real time

class HungColorSync : public testing::TestWithParam<std::size_t> {};

TEST_P(HungColorSync, EndsTheQueryAtItsLimit) {
  constexpr milliseconds kSlack{5000};  // for a computer that is busy with other tests
  const Question& question = faults::questions()[GetParam()];
  Scene scene;
  scene.load(Scene::Wait::kInRealTime);
  scene.session.desktop->change([](platform::desktop::Script& script) { script.device_walk.hang = true; });
  const faults::Outcome outcome = scene.run(question.ask);
  EXPECT_EQ(outcome.result, faults::failureValue(question));
  EXPECT_GE(outcome.time, question.limit);
  EXPECT_LT(outcome.time, question.limit + kSlack);
  scene.session.desktop->change([](platform::desktop::Script& script) { script.device_walk.hang = false; });
  EXPECT_EQ(scene.run(question.ask_afterwards).result, question.right_afterwards);
}

/// The questions that reach ColorSync's queue when nothing else is wrong.
std::vector<std::size_t> queries() {
  std::vector<std::size_t> result;
  for (std::size_t i = 0; i < faults::questions().size(); ++i) {
    if (faults::questions()[i].limit > seconds(0) && faults::questions()[i].name != "GetName") {
      result.push_back(i);
    }
  }
  return result;
}

INSTANTIATE_TEST_SUITE_P(All, HungColorSync, testing::ValuesIn(queries()), [](const auto& info) {
  std::string name = faults::questions()[info.param].name;
  return name.substr(0, name.find(' '));
});

}  // namespace
