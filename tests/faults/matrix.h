// How a fault is tried, disturbed once and then undisturbed, and the documented results.
#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <set>
#include <string>

#include "faults/scene.h"

namespace faults {

// --- trying

/// Counts the combinations (a fault and a question) that a test tries and reports the number: as the test's property,
/// and for all tests of the process when it ends.
class MatrixTest : public testing::Test {
 protected:
  ~MatrixTest() override;

  /// Asks the question with the fault, then removes the fault and asks again. The first result must be one that
  /// `allowed` allows; the second must be right. Neither may be late.
  void tryFault(Scene& scene, const Question& question, const std::function<void()>& set,
                const std::function<void()>& remove, const testing::Matcher<std::string>& allowed);
  /// Asks a host that stays as it is.
  void tryHost(Scene& scene, const Question& question, const std::string& expected);
  /// The plugin has done nothing wrong with the host's handles, and holds none.
  static void expectNoFaults(Scene& scene);

 private:
  std::size_t combinations_ = 0;
};

/// The name of a test made from any text.
std::string testName(const std::string& text);

// --- expectations

/// The question's result while `what` (a framework call, a key of a dictionary, a message, an entry of the host)
/// has the fault `fault`: the right result unless the table in expectations.cpp has another.
std::string expected(const std::string& what, const std::string& fault, const Question& question);

/// Whether the fault, at every call, is a list that takes minutes to walk: each of its displays counts.
bool takesForeverAtEveryCall(const std::string& what, const std::string& fault);

/// The question's result when it fails altogether.
std::string failureValue(const Question& question);

/// Whether `got` may be the result when only one of several calls had the fault: the right result, the failure
/// value, the result when all calls had it or, for lists and names, one made of the pieces of these.
bool mayComeOnce(const std::string& got, const std::string& what, const std::string& fault, const Question& question);

/// The names in the table's first column, so that a test finds unused rows.
std::set<std::string> expectedSubjects();

}  // namespace faults
