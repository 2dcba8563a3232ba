#include "faults/matrix.h"

#include <atomic>
#include <cctype>
#include <iostream>

/// Under AddressSanitizer too, a request for an absurd amount of memory fails instead of ending the program.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=4096";
}

namespace faults {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

std::atomic<std::size_t> all_combinations{0};

/// Beyond what a query may wait for ColorSync: for a computer that is busy with other tests.
constexpr milliseconds kSlack{5000};

class Total : public testing::Environment {
  void TearDown() override { std::cout << all_combinations << " combinations in all" << std::endl; }
};

[[maybe_unused]] const auto* const total = testing::AddGlobalTestEnvironment(new Total);

void expectInTime(const Outcome& outcome, const Question& question) {
  EXPECT_LE(outcome.limits.size(), 1U) << "waits twice";
  for (const seconds limit : outcome.limits) {
    EXPECT_EQ(limit, question.limit);
  }
  EXPECT_LT(outcome.time, kSlack);
}

}  // namespace

MatrixTest::~MatrixTest() {
  RecordProperty("combinations", std::to_string(combinations_));
  std::cout << combinations_ << " combinations" << std::endl;
  all_combinations += combinations_;
}

void MatrixTest::tryFault(Scene& scene, const Question& question, const std::function<void()>& set,
                          const std::function<void()>& remove, const testing::Matcher<std::string>& allowed) {
  SCOPED_TRACE(question.name);
  ++combinations_;
  set();
  const Outcome disturbed = scene.run(question.ask);
  remove();
  EXPECT_THAT(disturbed.result, allowed);
  expectInTime(disturbed, question);
  const Outcome undisturbed = scene.run(question.ask_afterwards);
  EXPECT_EQ(undisturbed.result, question.right_afterwards) << "afterwards";
  expectInTime(undisturbed, question);
}

void MatrixTest::tryHost(Scene& scene, const Question& question, const std::string& expected) {
  SCOPED_TRACE(question.name);
  ++combinations_;
  const Outcome outcome = scene.run(question.ask);
  EXPECT_EQ(outcome.result, expected);
  expectInTime(outcome, question);
}

void MatrixTest::expectNoFaults(Scene& scene) {
  EXPECT_THAT(scene.host.faults(), testing::IsEmpty());
  EXPECT_THAT(scene.host.unreleased(), testing::IsEmpty());
}

std::string testName(const std::string& text) {
  std::string name;
  for (const char letter : text) {
    name += std::isalnum(static_cast<unsigned char>(letter)) != 0 ? letter : '_';
  }
  return name;
}

}  // namespace faults
