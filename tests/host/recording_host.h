// A host for tests of single host calls: a resolver over a table that records the names it is asked for, and one entry
// that records every argument register and returns what the test sets.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "host/call.h"

/// The host while it lives: its resolver is gResolver. One at a time.
class RecordingHost {
 public:
  RecordingHost();
  ~RecordingHost();
  RecordingHost(const RecordingHost&) = delete;
  RecordingHost& operator=(const RecordingHost&) = delete;

  /// From now on `name` resolves to `function`; a null function takes it away.
  template <typename Function>
  void offer(const std::string& name, Function* function) {
    entries_[name] = reinterpret_cast<void*>(function);
  }
  void withdraw(const std::string& name) { entries_.erase(name); }

  /// The names that the resolver was asked for, in order.
  const std::vector<std::string>& asked() const { return asked_; }
  void forgetAsked() { asked_.clear(); }

 private:
  static void* resolve(const char* name);

  REALresolver previous_;
  std::map<std::string, void*> entries_;
  std::vector<std::string> asked_;
};

/// What the last call of recordCall() found: the registers in which the first six integers or pointers and the first
/// eight floating-point numbers travel, whole, as they came.
struct RecordedCall {
  int count = 0;
  std::array<std::uint64_t, 6> integers{};
  std::array<double, 8> floats{};
};
extern RecordedCall gRecorded;
/// What recordCall() returns, all 64 bits.
extern std::uint64_t gResult;

/// An entry that can be called with any mix of arguments: integers and floating-point numbers travel in registers of
/// their own, counted apart, so that this signature sees them all.
std::uint64_t recordCall(std::uint64_t i0, std::uint64_t i1, std::uint64_t i2, std::uint64_t i3, std::uint64_t i4,
                         std::uint64_t i5, double f0, double f1, double f2, double f3, double f4, double f5, double f6,
                         double f7);
