#include "soak/world.h"

#include <algorithm>

namespace soak {
namespace {

/// How long after the X server, or colord, did what it was told another process may still answer as before: the news
/// travel to it on another connection.
constexpr auto kNewsFromServer = std::chrono::milliseconds(500);
constexpr auto kNewsFromColord = std::chrono::seconds(1);

}  // namespace

const Shown* find(const Arrangement& arrangement, std::uint32_t number) {
  const auto found =
      std::find_if(arrangement.begin(), arrangement.end(), [&](const Shown& shown) { return shown.number == number; });
  return found == arrangement.end() ? nullptr : &*found;
}

World::World(Plan the_plan, Arrangement first)
    : plan(std::move(the_plan)),
      profiles(plan.folder, plan.profiles),
      arrangement(std::move(first), kNewsFromServer),
      extra_profile(false, Clock::duration::zero()),
      colord_runs(true, kNewsFromColord) {}

std::string World::outputName(std::size_t output) { return "Output " + std::to_string(output); }

void World::noteAssignment(const Call& call) {
  const auto output = static_cast<std::size_t>(call.arguments[0]);
  const auto choice = static_cast<std::size_t>(call.arguments[1]);
  const std::lock_guard lock(mutex_);
  if (call.numbers[0] != 0) {
    newest_.at(output).clear();
  }
  newest_.at(output).insert(choice);
}

std::set<std::size_t> World::newestChoices(std::size_t output) const {
  const std::lock_guard lock(mutex_);
  return newest_.at(output);
}

}  // namespace soak
