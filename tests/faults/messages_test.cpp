// Every message to Foundation's objects times every answer that it may give, times every method.
#include <algorithm>

#include "faults/matrix.h"
#include "faults/message_answers.h"
#include "faults/messages.h"

namespace {

using faults::MessageAnswer;
using faults::Question;
using faults::Scene;

class AMessage : public faults::MatrixTest, public testing::WithParamInterface<MessageAnswer> {};

TEST_P(AMessage, AnsweredSoLeavesEachMethodTheAnswerThatIsStated) {
  const MessageAnswer& message = GetParam();
  Scene scene;
  scene.load();
  const auto set = [&] { faults::answerMessage(message.selector, message.result); };
  for (const Question& question : faults::questions()) {
    tryFault(scene, question, set, faults::answerNoMessage,
             testing::Eq(faults::expected(message.selector, message.name, question)));
  }
  expectNoFaults(scene);
}

INSTANTIATE_TEST_SUITE_P(EveryMessage, AMessage, testing::ValuesIn(faults::messageAnswers()), [](const auto& info) {
  return faults::testName(info.param.selector + " " + info.param.name);
});

}  // namespace
