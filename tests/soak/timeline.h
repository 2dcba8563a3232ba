// Which states something was in, and when: what an answer may be that was given during a call.
//
// A change begins before it is commanded and ends when it has been seen to be made. A call during a change may find
// the state before it, the one after it, or one between. One thread changes, another asks.
#pragma once

#include <functional>
#include <list>
#include <mutex>
#include <vector>

#include "soak/record.h"

namespace soak {

template <typename State>
class Timeline {
 public:
  /// `late` is for how long after a change an answer may still be that of before.
  Timeline(State first, Clock::duration late) : late_(late) {
    entries_.push_back({std::move(first), Time::min(), Time::max()});
  }

  /// Makes a change: `command` makes it and answers the states that it leads through, the one that lasts being the
  /// last.
  void change(const std::function<std::vector<State>()>& command) {
    {
      const std::lock_guard lock(mutex_);
      change_began_ = Clock::now();
    }
    const std::vector<State> states = command();
    const std::lock_guard lock(mutex_);
    const Time over = Clock::now() + late_;
    entries_.back().until = over;
    for (const State& state : states) {
      entries_.push_back({state, change_began_, over});
    }
    entries_.back().until = Time::max();
    change_began_ = Time::max();
  }

  /// Whether everything is known that a call that ended at this time could have found.
  bool isKnownUntil(Time end) const {
    const std::lock_guard lock(mutex_);
    return end < change_began_;
  }

  /// The states that a call may have found. References stay valid until forgetBefore().
  std::vector<const State*> during(Time begin, Time end) const {
    const std::lock_guard lock(mutex_);
    std::vector<const State*> states;
    for (const Entry& entry : entries_) {
      if (entry.from <= end && begin <= entry.until) {
        states.push_back(&entry.state);
      }
    }
    return states;
  }

  const State& last() const {
    const std::lock_guard lock(mutex_);
    return entries_.back().state;
  }

  /// Calls that began earlier are asked about no more.
  void forgetBefore(Time begin) {
    const std::lock_guard lock(mutex_);
    entries_.remove_if([&](const Entry& entry) { return entry.until < begin; });
  }

 private:
  struct Entry {
    State state;
    Time from;
    Time until;
  };

  const Clock::duration late_;
  mutable std::mutex mutex_;
  std::list<Entry> entries_;
  Time change_began_ = Time::max();  ///< of the change that is being made
};

}  // namespace soak
