#include "soak/world.h"

#include <algorithm>

namespace soak {

const Shown* State::find(std::uint32_t number) const {
  const auto found =
      std::find_if(displays.begin(), displays.end(), [&](const Shown& shown) { return shown.number == number; });
  return found == displays.end() ? nullptr : &*found;
}

void Timeline::change(Clock::duration late, const std::function<std::vector<State>(const State& before)>& command) {
  {
    const std::lock_guard lock(mutex_);
    change_began_ = Clock::now();
  }
  const std::vector<State> states = command(last());
  const std::lock_guard lock(mutex_);
  const Time over = Clock::now() + late;
  entries_.back().until = over;
  for (const State& state : states) {
    entries_.push_back({state, change_began_, over});
  }
  entries_.back().until = Time::max();
  change_began_ = Time::max();
}

bool Timeline::isKnownUntil(Time end) const {
  const std::lock_guard lock(mutex_);
  return end < change_began_;
}

std::vector<const State*> Timeline::during(Time begin, Time end) const {
  const std::lock_guard lock(mutex_);
  std::vector<const State*> states;
  for (const Entry& entry : entries_) {
    if (entry.from <= end && begin <= entry.until) {
      states.push_back(&entry.state);
    }
  }
  return states;
}

State Timeline::last() const {
  const std::lock_guard lock(mutex_);
  return entries_.back().state;
}

void Timeline::forgetBefore(Time begin) {
  const std::lock_guard lock(mutex_);
  entries_.remove_if([&](const Entry& entry) { return entry.until < begin; });
}

std::string World::choicePath(std::size_t output, std::size_t choice) const {
  return profiles.path((output * kFilesPerOutput + choice) % profiles.count());
}

void World::noteAssignment(std::size_t output, std::size_t choice, bool succeeded) {
  const std::lock_guard lock(mutex_);
  if (succeeded) {
    newest_.at(output).clear();
  }
  newest_.at(output).insert(choicePath(output, choice));
}

std::set<std::string> World::newestProfiles(std::size_t output) const {
  const std::lock_guard lock(mutex_);
  return newest_.at(output);
}

}  // namespace soak
