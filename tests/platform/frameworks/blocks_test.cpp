// The block run-time.
#include <Block.h>
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <future>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Action = void (^)();
using Question = int (^)();

/// Counts how many of its kind are alive.
class Counted {
 public:
  explicit Counted(int& alive) : alive_(alive) { ++alive_; }
  Counted(const Counted& other) : alive_(other.alive_) { ++alive_; }
  ~Counted() { --alive_; }
  Counted& operator=(const Counted&) = delete;

 private:
  int& alive_;
};

Question makeQuestion(int answer) {
  return Block_copy(^{
    return answer;
  });
}

/// Writes over what the frames of functions that have returned left on the stack.
__attribute__((noinline)) int overwriteStack() {
  std::array<volatile int, 4096> rubbish{};
  for (volatile int& cell : rubbish) {
    cell = -1;
  }
  return rubbish[17];
}

TEST(BlockCopy, OutlivesTheScopeOfTheBlock) {
  const Question first = makeQuestion(1);
  const Question second = makeQuestion(2);
  EXPECT_EQ(overwriteStack(), -1);
  EXPECT_EQ(first(), 1);
  EXPECT_EQ(second(), 2);
  Block_release(first);
  Block_release(second);
}

TEST(BlockCopy, ReturnsTheSameBlockForACopy) {
  const Question question = makeQuestion(7);
  const Question again = Block_copy(question);
  EXPECT_EQ(again, question);
  Block_release(question);
  EXPECT_EQ(again(), 7);
  Block_release(again);
}

TEST(BlockCopy, ReturnsTheSameBlockWithoutCaptures) {
  const Question constant = ^{
    return 3;
  };
  EXPECT_EQ(Block_copy(constant), constant);
  Block_release(constant);
  EXPECT_EQ(constant(), 3);
}

TEST(BlockCopy, ReturnsNullForNull) {
  EXPECT_EQ(_Block_copy(nullptr), nullptr);
  _Block_release(nullptr);
}

TEST(BlockRelease, DestroysCapturesWithTheLastReference) {
  int alive = 0;
  Question question = nullptr;
  {
    const Counted counted(alive);
    question = Block_copy(^{
      (void)counted;
      return 0;
    });
  }
  EXPECT_EQ(alive, 1);
  Block_copy(question);
  Block_release(question);
  EXPECT_EQ(alive, 1);
  Block_release(question);
  EXPECT_EQ(alive, 0);
}

TEST(BlockCopy, RetainsCapturedBlocks) {
  Question outer = nullptr;
  {
    const Question inner = makeQuestion(5);
    outer = Block_copy(^{
      return inner() + 1;
    });
    Block_release(inner);
  }
  EXPECT_EQ(overwriteStack(), -1);
  EXPECT_EQ(outer(), 6);
  Block_release(outer);
}

TEST(BlockVariable, IsSharedByItsScopeAndAllBlocks) {
  __block int value = 1;
  const Action add = Block_copy(^{
    value += 10;
  });
  const Question read = Block_copy(^{
    return value;
  });
  value = 2;
  add();
  EXPECT_EQ(value, 12);
  EXPECT_EQ(read(), 12);
  Block_release(add);
  Block_release(read);
  EXPECT_EQ(value, 12);
}

TEST(BlockVariable, OutlivesItsScopeWhileABlockHoldsIt) {
  int alive = 0;
  Question use = nullptr;
  {
    __block Counted counted(alive);
    __block int uses = 0;
    const Question count = ^{
      (void)counted;
      return ++uses;
    };
    use = Block_copy(count);
  }
  EXPECT_EQ(alive, 1);
  EXPECT_EQ(overwriteStack(), -1);
  EXPECT_EQ(use(), 1);
  EXPECT_EQ(use(), 2);
  Block_release(use);
  EXPECT_EQ(alive, 0);
}

TEST(BlockVariable, IsMovedWhenItCannotBeCopied) {
  std::future<bool> answer;
  {
    __block std::promise<bool> promise;
    answer = promise.get_future();
    const Action keep = Block_copy(^{
      promise.set_value(true);
    });
    std::thread([keep] {
      keep();
      Block_release(keep);
    }).join();
  }
  EXPECT_TRUE(answer.get());
}

TEST(BlockVariable, IsDestroyedByItsLastHolder) {
  std::future<bool> answer;
  Action last = nullptr;
  {
    __block std::promise<bool> promise;
    answer = promise.get_future();
    last = Block_copy(^{
      promise.set_value(true);
    });
  }
  EXPECT_EQ(answer.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  Block_release(last);
  EXPECT_THROW(answer.get(), std::future_error);
}

TEST(BlockReferences, AreCountedByManyThreadsAtOnce) {
  int alive = 0;
  Question question = nullptr;
  {
    const Counted counted(alive);
    question = Block_copy(^{
      (void)counted;
      return 0;
    });
  }
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([question] {
      for (int round = 0; round < 10000; ++round) {
        Block_release(Block_copy(question));
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(alive, 1);
  Block_release(question);
  EXPECT_EQ(alive, 0);
}

}  // namespace
