// How a fault is tried: disturbed once, and then, undisturbed, once more.
#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <string>

#include "faults/expectations.h"
#include "faults/scene.h"

namespace faults {

/// Counts the combinations (a fault and a question) that a test tries, and says the number: as the test's property, and
/// for all tests of the process when it ends.
class MatrixTest : public testing::Test {
 protected:
  ~MatrixTest() override;

  /// Asks the question with the fault, then removes the fault and asks again. The first answer must be one that
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

}  // namespace faults
