// How a ColorSync query waits for its walk. Host's thread; tests put a wait of their own in its place before any query.
#pragma once

#include <chrono>
#include <future>

namespace DisplayServices::internal {

using AnswerWait = std::future_status (*)(const std::future<bool>& answer, std::chrono::seconds limit);

/// Waits for the answer in real time, unless a test set another.
extern AnswerWait answer_wait;

}  // namespace DisplayServices::internal
