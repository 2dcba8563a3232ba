// Serial queues.
#include <dispatch/dispatch.h>
#include <gmock/gmock.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "frameworks/hooks/calls.h"
#include "platform/frameworks/foundation_probe.h"

namespace {

using platform::calls::Call;
using platform::calls::Fault;

constexpr std::chrono::seconds kDeadline(20);

/// Waits until everything that was put into the queue before has run.
testing::AssertionResult drained(dispatch_queue_t queue) {
  const auto done = std::make_shared<std::promise<void>>();
  dispatch_async(queue, ^{
    done->set_value();
  });
  return done->get_future().wait_for(kDeadline) == std::future_status::ready
             ? testing::AssertionSuccess()
             : testing::AssertionFailure() << "the queue did not get there in time";
}

TEST(Queue, RunsBlocksInOrder) {
  auto* const queue = dispatch_queue_create("ORDER", nullptr);
  constexpr int kBlocks = 1000;
  std::vector<int> order;
  std::vector<int>* const ran = &order;
  for (int i = 0; i < kBlocks; ++i) {
    dispatch_async(queue, ^{
      ran->push_back(i);
    });
  }
  ASSERT_TRUE(drained(queue));
  ASSERT_EQ(order.size(), kBlocks);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(Queue, RunsOneBlockAtATime) {
  auto* const queue = dispatch_queue_create("ONE", nullptr);
  constexpr int kCallers = 4;
  constexpr int kBlocks = 500;
  std::atomic<int> running = 0;
  std::atomic<int> overlaps = 0;
  std::atomic<int> ran = 0;
  std::atomic<int>* const running_now = &running;
  std::atomic<int>* const overlapped = &overlaps;
  std::atomic<int>* const total = &ran;
  std::vector<std::thread> callers;
  callers.reserve(kCallers);
  for (int caller = 0; caller < kCallers; ++caller) {
    callers.emplace_back([=] {
      for (int i = 0; i < kBlocks; ++i) {
        dispatch_async(queue, ^{
          *overlapped += static_cast<int>(++*running_now != 1);
          --*running_now;
          ++*total;
        });
      }
    });
  }
  for (std::thread& caller : callers) {
    caller.join();
  }
  ASSERT_TRUE(drained(queue));
  EXPECT_EQ(ran, kCallers * kBlocks);
  EXPECT_EQ(overlaps, 0);
}

TEST(Queue, RunsOnAThreadOfItsOwn) {
  auto* const queue = dispatch_queue_create("THREAD", nullptr);
  __block std::thread::id worker;
  dispatch_async(queue, ^{
    worker = std::this_thread::get_id();
  });
  ASSERT_TRUE(drained(queue));
  EXPECT_NE(worker, std::this_thread::get_id());
  EXPECT_NE(worker, std::thread::id());
}

TEST(Queue, StartsAgainAfterItWasIdle) {
  auto* const queue = dispatch_queue_create("AGAIN", nullptr);
  for (int round = 0; round < 200; ++round) {
    ASSERT_TRUE(drained(queue)) << round;
  }
}

TEST(Queue, ReusesAnIdleThread) {
  constexpr int kQueues = 200;
  const auto threads = std::make_shared<std::set<pid_t>>();
  for (int i = 0; i < kQueues; ++i) {
    auto* const queue = dispatch_queue_create("NEXT", nullptr);
    dispatch_async(queue, ^{
      threads->insert(gettid());
    });
    ASSERT_TRUE(drained(queue));
  }
  // A second worker is started when the first is not idle yet.
  EXPECT_LT(threads->size(), kQueues / 2);
}

TEST(Queue, RunsAtOnceWhileOthersAreBusy) {
  const auto release = std::make_shared<std::promise<void>>();
  const auto released = std::make_shared<std::shared_future<void>>(release->get_future());
  constexpr int kBusy = 20;
  std::vector<dispatch_queue_t> queues;
  std::atomic<int> started = 0;
  std::atomic<int>* const busy = &started;
  for (int i = 0; i < kBusy; ++i) {
    queues.push_back(dispatch_queue_create("BUSY", nullptr));
    dispatch_async(queues.back(), ^{
      ++*busy;
      released->wait();
    });
  }
  EXPECT_TRUE(drained(dispatch_queue_create("ONE MORE", nullptr)));
  release->set_value();
  for (auto* const queue : queues) {
    EXPECT_TRUE(drained(queue));
  }
  EXPECT_EQ(started, kBusy);
}

TEST(Queue, NamesItsThreadAfterItself) {
  for (const char* const label : {"ONE NAME", "ANOTHER"}) {
    const auto name = std::make_shared<std::string>(32, '\0');
    auto* const queue = dispatch_queue_create(label, nullptr);
    dispatch_async(queue, ^{
      pthread_getname_np(pthread_self(), name->data(), name->size());
    });
    ASSERT_TRUE(drained(queue));
    EXPECT_STREQ(name->c_str(), label);
  }
}

TEST(Queue, DoesNotWaitForAnotherQueue) {
  auto* const stuck = dispatch_queue_create("STUCK", nullptr);
  const auto release = std::make_shared<std::promise<void>>();
  const auto released = std::make_shared<std::shared_future<void>>(release->get_future());
  dispatch_async(stuck, ^{
    released->wait();
  });
  EXPECT_TRUE(drained(dispatch_queue_create("FREE", nullptr)));
  release->set_value();
  EXPECT_TRUE(drained(stuck));
}

TEST(Queue, DrainsAPoolAfterEachBlock) {
  auto* const queue = dispatch_queue_create("POOL", nullptr);
  int deaths = 0;
  int deaths_before_second = -1;
  int* const died = &deaths;
  int* const seen = &deaths_before_second;
  dispatch_async(queue, ^{
    probe::autoreleaseCounter(died);
  });
  dispatch_async(queue, ^{
    *seen = *died;
  });
  ASSERT_TRUE(drained(queue));
  EXPECT_EQ(deaths_before_second, 1);
}

TEST(Async, ReleasesTheBlockAfterItRan) {
  auto* const queue = dispatch_queue_create("LET GO", nullptr);
  auto held = std::make_shared<int>(1);
  const std::weak_ptr<int> seen = held;
  {
    const std::shared_ptr<int> captured = std::move(held);
    dispatch_async(queue, ^{
      EXPECT_EQ(*captured, 1);
    });
  }
  ASSERT_TRUE(drained(queue));
  EXPECT_TRUE(seen.expired());
}

TEST(Async, ReturnsBeforeTheBlockHasRun) {
  auto* const queue = dispatch_queue_create("AT ONCE", nullptr);
  const auto release = std::make_shared<std::promise<void>>();
  const auto released = std::make_shared<std::shared_future<void>>(release->get_future());
  const auto done = std::make_shared<std::promise<void>>();
  dispatch_async(queue, ^{
    released->wait();
    done->set_value();
  });
  std::future<void> finished = done->get_future();
  EXPECT_EQ(finished.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  release->set_value();
  EXPECT_EQ(finished.wait_for(kDeadline), std::future_status::ready);
}

TEST(QueueCreate, AcceptsNoLabel) { EXPECT_TRUE(drained(dispatch_queue_create(nullptr, nullptr))); }

TEST(QueueCreate, ReturnsNullOnFailure) {
  platform::calls::setHook(Call::dispatch_queue_create, [](std::uint64_t) { return Fault{.fail = true}; });
  EXPECT_EQ(dispatch_queue_create("NONE", nullptr), nullptr);
  platform::calls::removeAllHooks();
  EXPECT_NE(dispatch_queue_create("ONE", nullptr), nullptr);
}

TEST(Async, NeverRunsTheBlockOnFailure) {
  auto* const queue = dispatch_queue_create("DROPPED", nullptr);
  __block bool ran = false;
  platform::calls::setHook(Call::dispatch_async, [](std::uint64_t) { return Fault{.fail = true}; });
  dispatch_async(queue, ^{
    ran = true;
  });
  platform::calls::removeAllHooks();
  ASSERT_TRUE(drained(queue));
  EXPECT_FALSE(ran);
}

TEST(AsyncDeath, AbortsForNull) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(dispatch_async(nullptr,
                              ^{
                              }),
               "dispatch_async: null object");
  EXPECT_DEATH(dispatch_async(dispatch_queue_create("Q", nullptr), nullptr), "dispatch_async: null object");
}

/// Exits with status 0 while the workers of several queues are at work: some are waiting for ever, the others run one
/// block after another.
[[noreturn]] void exitWithBusyWorkers() {
  static std::atomic<int> started = 0;
  constexpr int kQueues = 4;
  static std::promise<void> never;
  static std::shared_future<void> end_of_time = never.get_future();
  for (int i = 0; i < kQueues; ++i) {
    dispatch_async(dispatch_queue_create("HANGS", nullptr), ^{
      const std::shared_future<void> forever = end_of_time;
      ++started;
      forever.wait();
    });
    auto* const busy = dispatch_queue_create("BUSY", nullptr);
    dispatch_async(busy, ^{
      ++started;
      for (;;) {
        CFRelease(
            CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>("text"), 4, kCFStringEncodingUTF8, false));
        dispatch_async(dispatch_queue_create("SHORT", nullptr), ^{
                       });
        std::this_thread::yield();
      }
    });
  }
  while (started < 2 * kQueues) {
    std::this_thread::yield();
  }
  std::exit(0);
}

TEST(ExitDeath, SucceedsWithBusyWorkers) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (int round = 0; round < 5; ++round) {
    EXPECT_EXIT(exitWithBusyWorkers(), testing::ExitedWithCode(0), "^$");
  }
}

}  // namespace
