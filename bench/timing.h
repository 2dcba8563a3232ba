// What a measurement is made of: batches of calls, and medians. One thread.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

#include "devhost/runtime/autorelease.h"

namespace bench {

/// Nanoseconds that a call of a function takes.
template <typename Call>
double nanoseconds(Call&& call) {
  const auto begin = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - begin).count();
}

/// Makes a number of calls and answers the nanoseconds for one.
using Timer = std::function<double(int calls)>;

/// The timer of a call that is worth no more preparation. A batch is within a pool, as each turn of a host's event loop
/// is.
template <typename Call>
Timer timerOf(Call call) {
  return [call](int calls) mutable {
    const devhost::AutoreleasePool pool;
    return nanoseconds([&] {
             for (int i = 0; i < calls; ++i) {
               call();
             }
           }) /
           calls;
  };
}

inline double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// Keeps the compiler from leaving out what makes the value.
template <typename T>
void keep(const T& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace bench
