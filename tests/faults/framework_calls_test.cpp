// Every framework call times every answer that it may give, times every method.
#include <map>

#include "faults/answers.h"
#include "faults/matrix.h"

namespace {

using faults::NamedAnswer;
using faults::Question;
using faults::Scene;
using platform::calls::Answer;
using platform::calls::Call;
using platform::calls::kCallCount;

void removeHooks() { platform::calls::removeAllHooks(); }

/// The calls that the plugin makes are those that have answers; coverage_test.cpp sees to it.
std::vector<Call> walkedCalls() {
  std::vector<Call> calls;
  for (std::size_t i = 0; i < kCallCount; ++i) {
    if (!faults::answersOf(static_cast<Call>(i)).empty()) {
      calls.push_back(static_cast<Call>(i));
    }
  }
  return calls;
}

class EveryCall : public faults::MatrixTest, public testing::WithParamInterface<Call> {
 protected:
  const Call call = GetParam();
  const std::string name = platform::calls::name(call);
};

auto eachCall() { return testing::ValuesIn(walkedCalls()); }

const auto kNameOfCall = [](const auto& info) { return std::string(platform::calls::name(info.param)); };

class AnsweringAlways : public EveryCall {};

TEST_P(AnsweringAlways, LeavesEachMethodTheAnswerThatIsStated) {
  for (const NamedAnswer& named : faults::answersOf(call)) {
    SCOPED_TRACE(name + ": " + named.name);
    Scene scene;
    scene.load();
    const auto set = [&] { platform::calls::setHook(call, [&](std::uint64_t) { return named.answer; }); };
    for (const Question& question : faults::questions()) {
      const std::string answer = faults::expected(name, named.name, question);
      const bool may_fail = faults::asksForMuchMemory(name, named.name);
      tryFault(scene, question, set, removeHooks,
               testing::AnyOf(answer, may_fail ? faults::failureValue(question) : answer));
    }
    expectNoFaults(scene);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryCall, AnsweringAlways, eachCall(), kNameOfCall);

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

class AnsweringOnce : public EveryCall {};

TEST_P(AnsweringOnce, LeavesEachMethodAnAnswerThatMayComeThen) {
  const auto counts = callsPerQuestion(call);
  for (const NamedAnswer& named : faults::answersOf(call)) {
    for (std::uint64_t chosen = 1; chosen <= most(counts); ++chosen) {
      SCOPED_TRACE(name + " number " + std::to_string(chosen) + ": " + named.name);
      Scene scene;
      scene.load();
      scene.run(faults::questions().front().ask);  // the host object
      const auto set = [&] {
        platform::calls::setHook(call, [&](std::uint64_t nth) { return nth == chosen ? named.answer : Answer{}; });
      };
      for (const Question& question : faults::questions()) {
        if (counts.at(question.name) >= chosen) {
          tryFault(scene, question, set, removeHooks, testing::Truly([&](const std::string& got) {
                     return faults::mayComeOnce(got, name, named.name, question);
                   }));
        }
      }
      expectNoFaults(scene);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EveryCall, AnsweringOnce, eachCall(), kNameOfCall);

// --- displays that go away while a method is at work

/// What is left when the display is gone; 0 for all of them.
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

/// The answers about a display that is half there: the right one, that of a display that is not there, and of those
/// that are about all displays, the one for the displays that are left.
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

class ADisplayGoing : public EveryCall {};

TEST_P(ADisplayGoing, BeforeAnyOfTheCallsLeavesTheRightAnswerOrThatOfADisplayThatIsNotThere) {
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
            return Answer{};
          });
        };
        const auto restore = [&] {
          removeHooks();
          change(faults::fiveDisplays());
        };
        tryFault(scene, question, set, restore,
                 testing::Truly([&](const std::string& got) { return mayComeWhenADisplayGoes(got, question); }));
      }
      expectNoFaults(scene);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EveryCall, ADisplayGoing, eachCall(), kNameOfCall);

}  // namespace
