// Threads. A Mac's mutex, condition and once-control have room for this system's, and a static initialiser of theirs is
// a number, which the first use replaces by this system's, zeros.
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <ctime>

#include "tools/machorun/system.h"

namespace machorun {
namespace {

constexpr std::size_t kMutexSize = 64;
constexpr std::size_t kConditionSize = 48;
constexpr std::size_t kOnceSize = 16;
static_assert(sizeof(pthread_mutex_t) <= kMutexSize && sizeof(pthread_cond_t) <= kConditionSize &&
              sizeof(pthread_once_t) <= kOnceSize);

constexpr std::uint64_t kMutexInitialiser = 0x32AAABA7;
constexpr std::uint64_t kConditionInitialiser = 0x3CB0B1BB;
constexpr std::uint64_t kOnceInitialiser = 0x30B1BCBA;

template <typename Object>
Object* converted(void* object, std::uint64_t initialiser) {
  auto* const word = static_cast<std::uint64_t*>(object);
  if (__atomic_load_n(word, __ATOMIC_ACQUIRE) == initialiser) {
    std::uint64_t expected = initialiser;
    __atomic_compare_exchange_n(word, &expected, 0, false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE);
  }
  return static_cast<Object*>(object);
}
pthread_mutex_t* mutexOf(void* object) { return converted<pthread_mutex_t>(object, kMutexInitialiser); }
pthread_cond_t* conditionOf(void* object) { return converted<pthread_cond_t>(object, kConditionInitialiser); }
pthread_once_t* onceOf(void* object) { return converted<pthread_once_t>(object, kOnceInitialiser); }

// --- mutexes and conditions

constexpr int kInvalidArgument = 22;  // on both systems
constexpr int kMacRecursiveMutex = 2;
constexpr std::size_t kMutexTypeOffset = 8;  // of our own record in a Mac's attributes of 16 bytes

int mutexAttributesInit(void* attributes) {
  std::memset(attributes, 0, 16);
  return 0;
}
int mutexAttributesSetType(void* attributes, int type) {
  std::memcpy(static_cast<char*>(attributes) + kMutexTypeOffset, &type, sizeof type);
  return type >= 0 && type <= kMacRecursiveMutex ? 0 : kInvalidArgument;
}
int mutexAttributesDestroy(void*) { return 0; }

int mutexInit(void* mutex, const void* attributes) {
  int type = 0;
  if (attributes != nullptr) {
    std::memcpy(&type, static_cast<const char*>(attributes) + kMutexTypeOffset, sizeof type);
  }
  std::memset(mutex, 0, kMutexSize);
  pthread_mutexattr_t own;
  pthread_mutexattr_init(&own);
  pthread_mutexattr_settype(&own, type == kMacRecursiveMutex ? PTHREAD_MUTEX_RECURSIVE : PTHREAD_MUTEX_NORMAL);
  const int result = pthread_mutex_init(static_cast<pthread_mutex_t*>(mutex), &own);
  pthread_mutexattr_destroy(&own);
  return toMacError(result);
}
int mutexLock(void* mutex) { return toMacError(pthread_mutex_lock(mutexOf(mutex))); }
int mutexTryLock(void* mutex) { return toMacError(pthread_mutex_trylock(mutexOf(mutex))); }
int mutexUnlock(void* mutex) { return toMacError(pthread_mutex_unlock(mutexOf(mutex))); }
int mutexDestroy(void* mutex) { return toMacError(pthread_mutex_destroy(mutexOf(mutex))); }

int conditionWait(void* condition, void* mutex) {
  return toMacError(pthread_cond_wait(conditionOf(condition), mutexOf(mutex)));
}
int conditionTimedWait(void* condition, void* mutex, const timespec* until) {
  return toMacError(pthread_cond_timedwait(conditionOf(condition), mutexOf(mutex), until));
}
int conditionSignal(void* condition) { return toMacError(pthread_cond_signal(conditionOf(condition))); }
int conditionBroadcast(void* condition) { return toMacError(pthread_cond_broadcast(conditionOf(condition))); }
int conditionDestroy(void* condition) { return toMacError(pthread_cond_destroy(conditionOf(condition))); }

int once(void* control, void (*function)()) { return toMacError(pthread_once(onceOf(control), function)); }

// --- keys, which have 8 bytes on a Mac, and threads

int keyCreate(std::uint64_t* key, void (*destructor)(void*)) {
  pthread_key_t own = 0;
  const int result = pthread_key_create(&own, destructor);
  *key = own;
  return toMacError(result);
}
int keyDelete(std::uint64_t key) { return toMacError(pthread_key_delete(static_cast<pthread_key_t>(key))); }
void* getSpecific(std::uint64_t key) { return pthread_getspecific(static_cast<pthread_key_t>(key)); }
int setSpecific(std::uint64_t key, const void* value) {
  return toMacError(pthread_setspecific(static_cast<pthread_key_t>(key), value));
}

/// The library gives its own thread only.
std::uint32_t machThread(pthread_t) { return static_cast<std::uint32_t>(syscall(SYS_gettid)); }
int create(pthread_t* thread, const void*, void* (*function)(void*), void* argument) {
  return toMacError(pthread_create(thread, nullptr, function, argument));
}

}  // namespace

std::span<const Substitute> threadSubstitutes() {
  static const Substitute kTable[] = {
      substitute("_pthread_mutexattr_init", mutexAttributesInit),
      substitute("_pthread_mutexattr_settype", mutexAttributesSetType),
      substitute("_pthread_mutexattr_destroy", mutexAttributesDestroy),
      substitute("_pthread_mutex_init", mutexInit),
      substitute("_pthread_mutex_lock", mutexLock),
      substitute("_pthread_mutex_trylock", mutexTryLock),
      substitute("_pthread_mutex_unlock", mutexUnlock),
      substitute("_pthread_mutex_destroy", mutexDestroy),
      substitute("_pthread_cond_wait", conditionWait),
      substitute("_pthread_cond_timedwait", conditionTimedWait),
      substitute("_pthread_cond_signal", conditionSignal),
      substitute("_pthread_cond_broadcast", conditionBroadcast),
      substitute("_pthread_cond_destroy", conditionDestroy),
      substitute("_pthread_once", once),
      substitute("_pthread_key_create", keyCreate),
      substitute("_pthread_key_delete", keyDelete),
      substitute("_pthread_getspecific", getSpecific),
      substitute("_pthread_setspecific", setSpecific),
      substitute("_pthread_mach_thread_np", machThread),
      substitute("_pthread_create", create),
  };
  return kTable;
}

}  // namespace machorun
