// What is true on the soak's desktop and when, as the soak commanded it or as xrandr and colormgr report it, never as
// the plugin's code computes it. One thread changes the world, another queries it.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "soak/profiles.h"

namespace soak {

using Clock = std::chrono::steady_clock;
using Time = Clock::time_point;

inline constexpr std::size_t kOutputs = 16;        ///< of the X server
inline constexpr std::size_t kFilesPerOutput = 4;  ///< from which SetProfile chooses

/// An active display: its number, and its bounds from the upper left corner of the main one.
struct Shown {
  std::uint32_t number = 0;
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

struct State {
  std::vector<Shown> displays;  ///< in the system's order, the main one first
  bool extra_profile = false;
  bool colord_runs = true;  ///< and has every assigned profile back

  const Shown* find(std::uint32_t number) const;
};

/// The states of the desktop. A change begins before it is commanded and ends when it has been observed; a call during
/// a change may see the state before it, the one after it, or one between.
class Timeline {
 public:
  explicit Timeline(State first) { entries_.push_back({std::move(first), Time::min(), Time::max()}); }

  /// `command` makes the change and returns the states that it leads through, the final one last. A call may see the
  /// earlier ones until `late` after the change, because the news travel on another connection.
  void change(Clock::duration late, const std::function<std::vector<State>(const State& before)>& command);
  /// True when every state that a call with this end may have seen is recorded.
  bool isKnownUntil(Time end) const;
  /// The states that a call may have seen. References stay valid until forgetBefore().
  std::vector<const State*> during(Time begin, Time end) const;
  State last() const;
  /// For when no later query is about a time before `begin`.
  void forgetBefore(Time begin);

 private:
  struct Entry {
    State state;
    Time from;
    Time until;
  };

  mutable std::mutex mutex_;
  std::list<Entry> entries_;
  Time change_began_ = Time::max();  ///< of the change in progress
};

class World {
 public:
  /// `profile_folder` is one in which profiles are installed.
  World(const std::string& profile_folder, std::size_t profile_count, State first)
      : profiles(profile_folder, profile_count), timeline(std::move(first)) {}

  const Profiles profiles;
  std::vector<std::uint32_t> outputs;   ///< display numbers of the outputs, in their order
  std::vector<std::uint32_t> monitors;  ///< display numbers of the monitors without an output
  Timeline timeline;

  /// The name in the output's EDID.
  static std::string outputName(std::size_t output) { return "Output " + std::to_string(output); }
  /// One of the files from which the output's profile is chosen.
  std::string choicePath(std::size_t output, std::size_t choice) const;

  /// Records a SetProfile at once, for the thread that waits for colord's restart. A failed one may have been made.
  void noteAssignment(std::size_t output, std::size_t choice, bool succeeded);
  /// The files of which one is the output's profile.
  std::set<std::string> newestProfiles(std::size_t output) const;

 private:
  mutable std::mutex mutex_;
  std::array<std::set<std::string>, kOutputs> newest_;
};

}  // namespace soak
