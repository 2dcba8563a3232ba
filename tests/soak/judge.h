// Compares the result of each call with what was true while it was made. One thread; calls come in order.
#pragma once

#include <array>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "soak/caller.h"

namespace soak {

struct Tally {
  std::size_t calls = 0;
  std::size_t wrong = 0;
  Clock::duration slowest{};
};

class Judge {
 public:
  explicit Judge(World& world) : world_(world) {}

  /// Call it once the world's timeline is known until the end of the call. Returns true for a right result.
  bool judge(const Call& call);

  const std::array<Tally, kMethodCount>& tallies() const { return tallies_; }
  std::size_t calls() const;
  std::size_t wrong() const;
  /// The first wrong results, with the right ones.
  const std::vector<std::string>& complaints() const { return complaints_; }
  /// Queries and assignments of profiles that reached their time limit although colord ran.
  std::size_t timedOut() const { return timed_out_; }
  /// Calls during a change, for which more than one result is right.
  std::size_t duringChanges() const { return during_changes_; }

 private:
  using Texts = std::set<std::string>;

  /// What a call may have seen.
  struct Seen {
    std::vector<const State*> states;
    bool colord_ran = true;               ///< all the time
    bool active = false;                  ///< the call's display, in some state
    bool inactive = false;                ///< the call's display, in some state
    std::optional<std::size_t> output{};  ///< the call's; absent for other monitors
  };
  /// The files assigned to an output.
  struct Assigned {
    Texts current;   ///< one of them is in use
    Texts attached;  ///< the device has them
    Texts maybe;     ///< the device may have them besides, after an interrupted assignment
  };

  Seen seenBy(const Call& call) const;
  /// Every right result.
  Texts rightResults(const Call& call, const Seen& seen);
  Texts geometry(const Call& call, const Seen& seen) const;
  Texts profile(const Call& call, const Seen& seen);
  Texts assignment(const Call& call, const Seen& seen);
  Texts installed(const Call& call, const Seen& seen);
  Texts associated(const Call& call, const Seen& seen);
  /// True when the call took at least its time limit although it could have succeeded; counts it.
  bool timedOut(const Call& call, const Seen& seen, Clock::duration limit);
  /// The paths in a list of a display's profiles; nullopt when it is out of order (events are by path, arrays by name)
  /// or a name does not match.
  std::optional<Texts> parseList(const Call& call) const;

  World& world_;
  std::array<Tally, kMethodCount> tallies_;
  std::vector<std::string> complaints_;
  std::size_t timed_out_ = 0;
  std::size_t during_changes_ = 0;
  std::array<Assigned, kOutputs> assigned_;
  std::map<std::pair<Method, bool>, std::string> installed_;  ///< right digests, by method and extra file
  Texts last_list_;                                           ///< of a display's profiles, as returned
  std::int64_t listener_ = -1;
};

}  // namespace soak
