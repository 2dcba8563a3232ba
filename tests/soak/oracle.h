// Judges each call by what was true while it was made. One thread; calls come in the order in which they were made.
#pragma once

#include <array>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "soak/world.h"

namespace soak {

struct Tally {
  std::size_t calls = 0;
  std::size_t wrong = 0;
  Clock::duration slowest{};
};

class Oracle {
 public:
  explicit Oracle(World& world) : world_(world) {}

  /// Whether everything is known that it takes to judge the call.
  bool canJudge(const Call& call) const;
  void judge(const Call& call);

  const Tally& tally(Method method) const { return tallies_[static_cast<std::size_t>(method)]; }
  std::size_t calls() const;
  std::size_t wrong() const;
  /// The first of the wrong answers, with what was expected.
  const std::vector<std::string>& complaints() const { return complaints_; }
  /// Queries for a profile, and assignments, that found no answer within their time limit although colord was running.
  std::size_t gaveUp() const { return gave_up_; }
  /// Calls during which something changed, so that more than one answer was right.
  std::size_t duringChanges() const { return during_changes_; }

 private:
  /// What was true during a call.
  struct Found {
    std::vector<const Arrangement*> arrangements;
    std::vector<const bool*> extra;
    bool colord_runs = true;  ///< all the time
  };
  enum class Presence { kAlways, kNever, kSometimes };

  /// The right answer in words, when the call's is wrong.
  std::optional<std::string> mistake(const Call& call, const Found& found);

  std::optional<std::string> judgeEdges(const Call& call, const Found& found) const;
  std::optional<std::string> judgeIndex(const Call& call, const Found& found) const;
  std::optional<std::string> judgeWindow(const Call& call, const Found& found) const;
  std::optional<std::string> judgeName(const Call& call, const Found& found) const;
  std::optional<std::string> judgeProfile(const Call& call, const Found& found);
  std::optional<std::string> judgeAssignment(const Call& call, const Found& found);
  std::optional<std::string> judgeInstalled(const Call& call, const Found& found);
  std::optional<std::string> judgeAssociated(const Call& call, const Found& found);
  std::optional<std::string> judgeTag(const Call& call) const;
  std::optional<std::string> judgeDocument(const Call& call) const;

  /// The paths in a list of a display's profiles. Nothing when it is not in order (events come by path, arrays by name)
  /// or a profile has not its own name.
  std::optional<std::set<std::string>> parseList(const Call& call) const;

  static Presence presence(const Found& found, std::uint32_t display);
  /// The output with this display number; nothing for the other monitors.
  std::optional<std::size_t> outputOf(std::uint32_t display) const;
  std::set<std::string> pathsOf(std::size_t output, const std::set<std::size_t>& choices) const;

  World& world_;
  std::array<Tally, kMethods> tallies_;
  std::vector<std::string> complaints_;
  std::size_t gave_up_ = 0;
  std::size_t during_changes_ = 0;
  std::array<Assigned, kOutputs> assigned_;
  /// What lists of installed profiles are, by name and by path, without the extra file and with it; once asked for.
  std::optional<std::array<std::array<ListDigest, 2>, 2>> installed_;
  std::set<std::string> last_list_;  ///< of the profiles of a display, as it was answered
  std::int64_t listener_ = -1;
};

}  // namespace soak
