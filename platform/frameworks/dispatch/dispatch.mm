// libdispatch: serial queues, each on its own thread while it has work. An idle thread waits some seconds for another
// queue before it ends, so that one queue after another costs one thread.
//
// A worker may still run a block while the process exits, or never return from one. So nothing that a worker touches is
// freed: queues live as long as the process, no destructor runs at exit, and threads are detached.
#include <dispatch/dispatch.h>

#import <Foundation/Foundation.h>

#include <Block.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <new>
#include <string>

#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/hooks/calls.h"

using platform::requireObject;
using platform::ScopedPool;
using platform::calls::Call;
namespace calls = platform::calls;

struct dispatch_queue_s {
  std::string label;
  std::mutex mutex;
  std::deque<dispatch_block_t> blocks;  // copies, in order
  bool has_worker = false;
};

namespace {

std::atomic<std::size_t> unfinished{0};

/// The next block; null when there is none, and then the queue has no worker.
dispatch_block_t takeBlock(dispatch_queue_s& queue) {
  const std::lock_guard lock(queue.mutex);
  if (queue.blocks.empty()) {
    queue.has_worker = false;
    return nullptr;
  }
  const dispatch_block_t block = queue.blocks.front();
  queue.blocks.pop_front();
  return block;
}

/// Names the thread after its queue, within the system's 15 characters.
void nameThread(const std::string& label) {
  constexpr std::size_t kLongestName = 15;
  if (!label.empty()) {
    pthread_setname_np(pthread_self(), label.substr(0, kLongestName).c_str());
  }
}

/// Gives queues to idle workers. There are never more queues here than waiting workers.
class IdleWorkers {
 public:
  /// Gives the queue to a waiting worker; false when none is free.
  bool take(dispatch_queue_s& queue) {
    const std::lock_guard lock(mutex_);
    if (queues_.size() >= waiting_) {
      return false;
    }
    queues_.push_back(&queue);
    wake_.notify_one();
    return true;
  }

  /// Waits for a queue; null on timeout.
  dispatch_queue_s* await() {
    constexpr std::chrono::seconds kPatience(5);
    std::unique_lock lock(mutex_);
    ++waiting_;
    wake_.wait_for(lock, kPatience, [this] { return !queues_.empty(); });
    --waiting_;
    if (queues_.empty()) {
      return nullptr;
    }
    dispatch_queue_s* const queue = queues_.front();
    queues_.pop_front();
    return queue;
  }

 private:
  std::mutex mutex_;
  std::condition_variable wake_;
  std::size_t waiting_ = 0;
  std::deque<dispatch_queue_s*> queues_;
};

IdleWorkers& idleWorkers() {
  static auto* const only = new IdleWorkers;
  return *only;
}

void runBlocks(dispatch_queue_s& queue) {
  nameThread(queue.label);
  while (const dispatch_block_t block = takeBlock(queue)) {
    const ScopedPool pool;
    block();
    Block_release(block);
    --unfinished;
  }
}

void* work(void* argument) {
  // Otherwise Foundation registers the thread at its first autorelease, and frees that only while the thread's data is
  // being destroyed.
  GSRegisterCurrentThread();
  for (auto* queue = static_cast<dispatch_queue_s*>(argument); queue != nullptr; queue = idleWorkers().await()) {
    runBlocks(*queue);
  }
  GSUnregisterCurrentThread();
  return nullptr;
}

bool startThread(dispatch_queue_s& queue) {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) {
    return false;
  }
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_t thread{};
  const bool started = pthread_create(&thread, &attributes, work, &queue) == 0;
  pthread_attr_destroy(&attributes);
  return started;
}

bool startWorker(dispatch_queue_s& queue) { return idleWorkers().take(queue) || startThread(queue); }

}  // namespace

std::size_t platform::unfinishedBlocks() { return unfinished.load(); }

extern "C" {

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t) noexcept {
  if (calls::shouldFail(Call::dispatch_queue_create)) {
    return nullptr;
  }
  auto* const queue = new (std::nothrow) dispatch_queue_s;  // never freed
  if (queue == nullptr) {
    return nullptr;
  }
  queue->label = label != nullptr ? label : "";
  return queue;
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) noexcept {
  if (calls::shouldFail(Call::dispatch_async)) {
    return;
  }
  requireObject(queue, "dispatch_async");
  requireObject(reinterpret_cast<const void*>(block), "dispatch_async");
  const std::lock_guard lock(queue->mutex);
  queue->blocks.push_back(Block_copy(block));
  ++unfinished;
  if (!queue->has_worker) {
    // Without a thread the block stays in the queue for the worker of a later call.
    queue->has_worker = startWorker(*queue);
  }
}

}  // extern "C"
