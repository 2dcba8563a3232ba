#include "soak/judge.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace soak {
namespace {

constexpr std::size_t kMostComplaints = 20;
constexpr double kNotFound = 4099018739.0;
constexpr const char* kNoDocument = "466 ";
constexpr auto kProfileLimit = std::chrono::seconds(2);
constexpr auto kAssignmentLimit = std::chrono::seconds(5);

std::string complaint(const Call& call, const std::set<std::string>& right, std::size_t states) {
  std::ostringstream text;
  text << call.facts().name << '(';
  for (const std::int64_t argument : call.arguments) {
    text << ' ' << argument;
  }
  text << " ) returned \"" << call.result << "\" after "
       << std::chrono::duration<double, std::milli>(call.end - call.begin).count() << " ms; of " << states
       << " states, right is";
  for (const std::string& result : right) {
    text << " \"" << result << '"';
  }
  return text.str();
}

bool meets(const Shown& shown, const std::array<std::int64_t, 4>& window) {
  const auto& [left, top, width, height] = window;
  const std::int64_t begin = top + height;  // the window's lower edge
  return left < shown.x + shown.width && shown.x < left + width && begin < shown.y + shown.height &&
         shown.y < begin + height;
}

std::size_t sum(const std::array<Tally, kMethodCount>& tallies, std::size_t Tally::*member) {
  std::size_t total = 0;
  for (const Tally& tally : tallies) {
    total += tally.*member;
  }
  return total;
}

}  // namespace

bool Judge::judge(const Call& call) {
  const Seen seen = seenBy(call);
  during_changes_ += seen.states.size() > 1 ? 1 : 0;
  Tally& tally = tallies_[static_cast<std::size_t>(call.method)];
  ++tally.calls;
  tally.slowest = std::max(tally.slowest, call.end - call.begin);
  const Texts right = rightResults(call, seen);
  const bool is_right = right.count(call.result) != 0;
  if (!is_right) {
    ++tally.wrong;
    if (complaints_.size() < kMostComplaints) {
      complaints_.push_back(complaint(call, right, seen.states.size()));
    }
  }
  world_.timeline.forgetBefore(call.begin);
  return is_right;
}

std::size_t Judge::calls() const { return sum(tallies_, &Tally::calls); }

std::size_t Judge::wrong() const { return sum(tallies_, &Tally::wrong); }

Judge::Seen Judge::seenBy(const Call& call) const {
  Seen seen{.states = world_.timeline.during(call.begin, call.end)};
  auto display = static_cast<std::uint32_t>(call.arguments[0]);
  if (call.method == Method::kSetProfile) {
    display = world_.outputs.at(display);
  }
  for (const State* const state : seen.states) {
    seen.colord_ran = seen.colord_ran && state->colord_runs;
    (state->find(display) != nullptr ? seen.active : seen.inactive) = true;
  }
  const auto output = std::find(world_.outputs.begin(), world_.outputs.end(), display);
  if (output != world_.outputs.end()) {
    seen.output = static_cast<std::size_t>(output - world_.outputs.begin());
  }
  return seen;
}

Judge::Texts Judge::rightResults(const Call& call, const Seen& seen) {
  const auto file = static_cast<std::size_t>(call.arguments[0]);
  switch (call.method) {
    case Method::kSetObject:
      listener_ = call.arguments[0];
      return {""};
    case Method::kGetName: {
      Texts names;
      if (seen.active) {
        names.insert(seen.output ? World::outputName(*seen.output) : "UNKNOWN");
      }
      if (seen.inactive) {
        names.insert("UNKNOWN");
      }
      return names;
    }
    case Method::kGetProfilePath:
      return profile(call, seen);
    case Method::kSetProfile:
      return assignment(call, seen);
    case Method::kListAllInstalledProfiles:
    case Method::kGetInstalledProfilePathsArray:
      return installed(call, seen);
    case Method::kListDisplayProfiles:
    case Method::kGetAssociatedProfilePathsArray:
      return associated(call, seen);
    case Method::kICCTagExists: {
      const std::string tag = kTags[call.arguments[1]];
      const bool exists = file < world_.profiles.count() &&
                          (tag == "desc" || (tag == "QV02" && !world_.profiles.document(file).empty()));
      return {exists ? "True" : "False"};
    }
    case Method::kQV02Read: {
      const std::string document = file < world_.profiles.count() ? world_.profiles.document(file) : std::string();
      return {document.empty() ? kNoDocument : "0 " + document};
    }
    default:
      return geometry(call, seen);
  }
}

Judge::Texts Judge::geometry(const Call& call, const Seen& seen) const {
  Texts right;
  for (const State* const state : seen.states) {
    const Shown* const found = state->find(static_cast<std::uint32_t>(call.arguments[0]));
    const Shown bounds = found != nullptr ? *found : Shown();
    const double x = bounds.x;
    const double y = bounds.y;
    if (call.method == Method::kGetRect) {
      right.insert(textOf({x, y, x + bounds.width, y + bounds.height}));
    } else if (call.method == Method::kGetCGRect) {
      right.insert(textOf({x, y, static_cast<double>(bounds.width), static_cast<double>(bounds.height)}));
    } else if (call.method == Method::kGetScale) {
      right.insert("1");
    } else if (call.method == Method::kDisplayIDForWindow) {
      const auto met = std::find_if(state->displays.begin(), state->displays.end(),
                                    [&](const Shown& shown) { return meets(shown, call.arguments); });
      right.insert(textOf({met != state->displays.end() ? static_cast<double>(met->number) : 0}));
    } else {
      const auto index = found - state->displays.data();
      right.insert(textOf({found != nullptr ? static_cast<double>(index) : kNotFound}));
      // The plugin asks for the count of displays first: one beyond that count in the later list is not found.
      if (found != nullptr && std::any_of(seen.states.begin(), seen.states.end(), [&](const State* other) {
            return static_cast<std::size_t>(index) >= other->displays.size();
          })) {
        right.insert(textOf({kNotFound}));
      }
    }
  }
  return right;
}

bool Judge::timedOut(const Call& call, const Seen& seen, Clock::duration limit) {
  const bool timed_out = !seen.inactive && seen.colord_ran && call.end - call.begin >= limit;
  timed_out_ += timed_out ? 1 : 0;
  return timed_out;
}

Judge::Texts Judge::profile(const Call& call, const Seen& seen) {
  const Assigned& assigned = assigned_.at(seen.output.value());
  Texts right;
  if (seen.active) {
    right = assigned.current;
    if (!seen.colord_ran) {  // a display has any of its files until colord has restored its profile
      right.insert(assigned.attached.begin(), assigned.attached.end());
      right.insert(assigned.maybe.begin(), assigned.maybe.end());
    }
  }
  if (seen.inactive || !seen.colord_ran || (call.result.empty() && timedOut(call, seen, kProfileLimit))) {
    right.insert("");
  }
  return right;
}

Judge::Texts Judge::assignment(const Call& call, const Seen& seen) {
  const auto output = static_cast<std::size_t>(call.arguments[0]);
  const std::string path = world_.choicePath(output, static_cast<std::size_t>(call.arguments[1]));
  Assigned& assigned = assigned_.at(output);
  if (call.result == "True") {
    assigned.current = {path};
    assigned.attached.insert(path);
  } else if (seen.active) {  // perhaps interrupted after the profile was attached or even made the default
    assigned.current.insert(path);
    assigned.maybe.insert(path);
  }
  Texts right;
  if (seen.active) {
    right.insert("True");
  }
  if (seen.inactive || !seen.colord_ran || (call.result == "False" && timedOut(call, seen, kAssignmentLimit))) {
    right.insert("False");
  }
  return right;
}

Judge::Texts Judge::installed(const Call& call, const Seen& seen) {
  const bool events = call.method == Method::kListAllInstalledProfiles;
  Texts right;
  for (const State* const state : seen.states) {
    std::string& digest = installed_[{call.method, state->extra_profile}];
    if (digest.empty()) {
      digest = events ? world_.profiles.expectedEvents(state->extra_profile)
                      : world_.profiles.expectedArray(state->extra_profile);
    }
    right.insert(events ? digest + ", listener " + std::to_string(listener_) : digest);
  }
  return right;
}

std::optional<Judge::Texts> Judge::parseList(const Call& call) const {
  const bool events = call.method == Method::kListDisplayProfiles;
  std::map<std::string, std::string> names;  // by path
  for (std::size_t file = 0; file < std::min(world_.profiles.count(), kOutputs * kFilesPerOutput); ++file) {
    names[world_.profiles.path(file)] = world_.profiles.name(file);
  }
  Texts listed;
  std::string last_key;
  std::istringstream parts(call.result);
  for (std::string part; std::getline(parts, part, '|');) {
    const std::size_t equals = events ? part.find('=') : std::string::npos;
    const std::string path = events ? part.substr(equals + 1) : part;
    const auto known = names.find(path);
    if (known == names.end() || (events && part.substr(0, equals) != known->second)) {
      return std::nullopt;
    }
    const std::string key = events ? path : known->second;
    if (key <= last_key) {
      return std::nullopt;
    }
    last_key = key;
    listed.insert(path);
  }
  return listed;
}

Judge::Texts Judge::associated(const Call& call, const Seen& seen) {
  const auto list = parseList(call);
  if (!list) {
    return {"profiles with their names, in order"};
  }
  const Texts previous = std::exchange(last_list_, *list);
  const Assigned assigned = seen.output ? assigned_.at(*seen.output) : Assigned();
  Texts possible = assigned.maybe;
  possible.insert(assigned.attached.begin(), assigned.attached.end());
  const auto contains = [](const Texts& all, const Texts& some) {
    return std::includes(all.begin(), all.end(), some.begin(), some.end());
  };
  const bool right_active =
      seen.active && contains(possible, *list) && (contains(*list, assigned.attached) || !seen.colord_ran);
  // An inactive display leaves the list of the call before.
  const bool right_inactive = seen.inactive && (*list == previous || (seen.active && list->empty()));
  if (right_active || right_inactive) {
    return {call.result};
  }
  std::string right = "the list of";
  for (const std::string& path : seen.active ? assigned.attached : previous) {
    right += " " + path;
  }
  return {right};
}

}  // namespace soak
