// Compiled for the Mac with its C++ library and run by programs_test.cpp: what compiled C++ needs of the system around
// it. Each program returns null, or the text of the first condition that does not hold.
#include <pthread.h>

#include <chrono>
#include <condition_variable>
#include <exception>
#include <future>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "strings/utils.h"

#define PROGRAM(name) extern "C" __attribute__((visibility("default"))) const char* name()
#define EXPECT(condition) \
  do {                    \
    if (!(condition)) {   \
      return #condition;  \
    }                     \
  } while (false)

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

int destroyed = 0;

struct Counted {
  std::string text = "longer than what a string holds without memory of its own";
  ~Counted() { ++destroyed; }
};

struct First {
  virtual ~First() = default;
  int first = 1;
};
struct Second {
  virtual ~Second() = default;
  int second = 2;
};
struct Both : First, Second {
  int own = 3;
};

enum Kind { kRangeError, kNumber, kString, kObject, kPointer, kOutOfRange, kFutureError, kSystemError };

[[gnu::noinline]] void throwKind(int kind, int depth) {
  const Counted counted;
  if (depth > 0) {
    throwKind(kind, depth - 1);
    asm volatile("");  // keeps the call from being the last one
    return;
  }
  switch (kind) {
    case kRangeError:
      throw std::range_error("range");
    case kNumber:
      throw 42;
    case kString:
      throw std::string("text");
    case kObject:
      throw Both();
    case kPointer:
      throw std::make_unique<int>(7);
    case kOutOfRange:
      static_cast<void>(std::vector<int>().at(3));
      return;
    case kFutureError: {
      std::promise<bool> promise;
      promise.set_value(true);
      promise.set_value(true);
      return;
    }
    default:
      throw std::system_error(EAGAIN, std::generic_category());
  }
}

/// What a catch clause of the type got, or nothing when another one did.
template <typename Type, typename Check>
bool isCaught(int kind, Check check) {
  try {
    throwKind(kind, 3);
  } catch (const Type& value) {
    return check(value);
  } catch (...) {
  }
  return false;
}

}  // namespace

// --- exceptions

PROGRAM(catchesByTypeAndBase) {
  const auto is_range = [](const std::exception& error) { return error.what() == std::string("range"); };
  EXPECT(isCaught<std::range_error>(kRangeError, is_range));
  EXPECT(isCaught<std::runtime_error>(kRangeError, is_range));
  EXPECT(isCaught<std::exception>(kRangeError, is_range));
  EXPECT(!isCaught<std::logic_error>(kRangeError, is_range));
  EXPECT(isCaught<Second>(kObject, [](const Second& object) {
    return object.second == 2 && dynamic_cast<const Both*>(&object)->own == 3;
  }));
  return nullptr;
}

PROGRAM(catchesValues) {
  EXPECT(isCaught<int>(kNumber, [](int number) { return number == 42; }));
  EXPECT(isCaught<std::string>(kString, [](const std::string& text) { return text == "text"; }));
  EXPECT(isCaught<std::unique_ptr<int>>(kPointer, [](const std::unique_ptr<int>& pointer) { return *pointer == 7; }));
  return nullptr;
}

PROGRAM(catchesWhatTheLibraryThrows) {
  EXPECT(isCaught<std::out_of_range>(kOutOfRange, [](const auto&) { return true; }));
  EXPECT(isCaught<std::future_error>(
      kFutureError, [](const auto& error) { return error.code() == std::future_errc::promise_already_satisfied; }));
  EXPECT(isCaught<std::system_error>(kSystemError, [](const auto& error) {
    return error.code() == std::errc::resource_unavailable_try_again && !std::string(error.what()).empty();
  }));
  return nullptr;
}

PROGRAM(rethrowsAndNests) {
  const int uncaught = std::uncaught_exceptions();  // what other code catches still counts
  try {
    try {
      throwKind(kRangeError, 1);
    } catch (...) {
      throw;
    }
  } catch (const std::runtime_error& error) {
    EXPECT(error.what() == std::string("range"));
  }
  bool is_nested = false;
  try {
    try {
      throwKind(kRangeError, 1);
    } catch (...) {
      std::throw_with_nested(std::logic_error("outer"));
    }
  } catch (const std::logic_error& outer) {
    try {
      std::rethrow_if_nested(outer);
    } catch (const std::range_error&) {
      is_nested = true;
    }
  }
  EXPECT(is_nested);
  EXPECT(std::uncaught_exceptions() == uncaught);
  return nullptr;
}

PROGRAM(destroysWhatItLeaves) {
  destroyed = 0;
  EXPECT(isCaught<int>(kNumber, [](int) { return destroyed == 4; }));
  return nullptr;
}

namespace {
[[gnu::noinline]] long sumAround(long a, long b, long c, long d, long e) {
  volatile char large[70000];
  large[0] = static_cast<char>(a);
  large[69999] = static_cast<char>(b);
  const long ab = a * b, cd = c * d, ae = a + e, bc = b ^ c, de = d | e;
  try {
    throwKind(kNumber, 5);
  } catch (int number) {
    return ab + cd + ae + bc + de + number + large[0] + large[69999];
  }
  return -1;
}
}  // namespace

PROGRAM(keepsVariablesOfTheCatchingFrame) {
  EXPECT(sumAround(3, 5, 7, 11, 13) == 15 + 77 + 16 + (5 ^ 7) + (11 | 13) + 42 + 3 + 5);
  return nullptr;
}

PROGRAM(keepsExceptionsForLaterAndForOtherThreads) {
  std::exception_ptr kept;
  std::thread([&] {
    try {
      throwKind(kRangeError, 3);
    } catch (...) {
      kept = std::current_exception();
    }
  }).join();
  EXPECT(kept != nullptr);
  try {
    std::rethrow_exception(kept);
  } catch (const std::range_error& error) {
    EXPECT(error.what() == std::string("range"));
    return nullptr;
  }
  return "nothing was thrown";
}

PROGRAM(reportsMissingMemory) {
  try {
    volatile std::size_t size = std::size_t{1} << 60;
    const auto memory = std::make_unique<char[]>(size);
    asm volatile("" : : "r"(memory.get()) : "memory");
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  return "nothing was thrown";
}

/// Leaves the library.
extern "C" __attribute__((visibility("default"))) void throwOut(int kind) { throwKind(kind, 3); }

// --- threads

namespace {
long elapsed(steady_clock::time_point begin) {
  return static_cast<long>(std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin).count());
}
}  // namespace

PROGRAM(waitsUpToTheLimit) {
  std::promise<bool> promise;
  const auto future = promise.get_future();
  const auto begin = steady_clock::now();
  EXPECT(future.wait_for(milliseconds(300)) == std::future_status::timeout);
  EXPECT(elapsed(begin) >= 299);
  return nullptr;
}

PROGRAM(waitsForAnotherThread) {
  std::promise<bool> promise;
  auto future = promise.get_future();
  std::thread thread([&] {
    std::this_thread::sleep_for(milliseconds(50));
    promise.set_value(true);
  });
  const auto begin = steady_clock::now();
  const auto status = future.wait_for(seconds(30));
  const long time = elapsed(begin);
  thread.join();
  EXPECT(status == std::future_status::ready);
  EXPECT(time >= 20 && time < 25000);
  EXPECT(future.get());
  EXPECT(std::async(std::launch::async, [] { return 6 * 7; }).get() == 42);
  return nullptr;
}

namespace {
std::once_flag once;
std::mutex static_mutex;
std::condition_variable static_condition;
}  // namespace

PROGRAM(sharesStaticMutexConditionAndOnceFlag) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 20000;
  int count = 0;
  int calls = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      std::call_once(once, [&] { ++calls; });
      for (int round = 0; round < kRounds; ++round) {
        const std::lock_guard lock(static_mutex);
        ++count;
      }
      static_condition.notify_all();
    });
  }
  {
    std::unique_lock lock(static_mutex);
    static_condition.wait_for(lock, seconds(60), [&] { return count == kThreads * kRounds; });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT(count == kThreads * kRounds);
  EXPECT(calls == 1);
  std::recursive_mutex recursive;
  const std::lock_guard first(recursive);
  EXPECT(recursive.try_lock());
  recursive.unlock();
  return nullptr;
}

// --- statics, thread-local variables, blocks

namespace {
const int started = [] { return 77; }();
thread_local int plain = 11;
thread_local Counted made;

int& localStatic() {
  static int value = started + 1;
  return value;
}
}  // namespace

PROGRAM(initialisesStatics) {
  EXPECT(started == 77);
  EXPECT(localStatic() == 78);
  ++localStatic();
  EXPECT(localStatic() == 79);
  --localStatic();
  return nullptr;
}

PROGRAM(hasVariablesOfEachThread) {
  plain = 12;
  EXPECT(!made.text.empty());
  made.text = "changed";
  const int before = destroyed;
  bool is_fresh = false;
  std::thread([&] { is_fresh = plain == 11 && made.text != "changed"; }).join();
  EXPECT(is_fresh);
  EXPECT(plain == 12 && made.text == "changed");
  EXPECT(destroyed == before + 1);
  return nullptr;
}

namespace {
[[gnu::noinline]] std::string callBlock(std::string (^block)(const std::string&)) { return block("b"); }
}  // namespace

PROGRAM(callsBlocksThatHoldObjects) {
  const std::string a = "a text longer than what a string holds without memory of its own ";
  EXPECT(callBlock(^(const std::string& b) {
           return a + b;
         }) == a + "b");
  return nullptr;
}

// --- the plugin's own conversions, which throw from another library

namespace {
/// By what kind of clause the exception is caught: the C++ library is hidden in each of the two.
template <typename Function>
const char* caughtBy(Function function) {
  try {
    function();
  } catch (const std::range_error&) {
    return "its type";
  } catch (const std::exception&) {
    return "its base";
  } catch (...) {
    return "any";
  }
  return "none";
}
}  // namespace

PROGRAM(convertsTextOrThrows) {
  const std::string text =
      "Gr\xC3\xB6\xC3\x9F"
      "e 27\xE2\x80\xB3 \xF0\x9F\x98\x80 and a long tail of ASCII";
  const std::wstring wide = Utils::utf8_to_utf16(text);
  EXPECT(wide ==
         L"Gr\xF6\xDF"
         L"e 27\x2033 \xD83D\xDE00 and a long tail of ASCII");
  EXPECT(Utils::utf16_to_utf8(wide) == text);
  for (const char* const invalid : {"\xFF", "a\xC3", "\xED\xA0\x80", "\xC0\x80", "a long beginning of ASCII \x80"}) {
    EXPECT(caughtBy([&] { Utils::utf8_to_utf16(invalid); }) == std::string("any"));
  }
  EXPECT(caughtBy([] { Utils::utf16_to_utf8(std::wstring(1, wchar_t{0xD800})); }) == std::string("any"));
  return nullptr;
}
