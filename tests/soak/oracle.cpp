#include "soak/oracle.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <utility>

namespace soak {
namespace {

constexpr std::size_t kMostComplaints = 20;
constexpr double kNotFound = 4099018739.0;
constexpr double kNoDocument = 466;
constexpr auto kProfileLimit = std::chrono::seconds(2);
constexpr auto kAssignmentLimit = std::chrono::seconds(5);

std::string describe(const Call& call) {
  std::ostringstream text;
  text << nameOf(call.method) << '(';
  for (const std::int64_t argument : call.arguments) {
    text << ' ' << argument;
  }
  text << " ) answered";
  for (const double number : call.numbers) {
    text << ' ' << number;
  }
  text << " \"" << call.text << "\" after " << std::chrono::duration<double, std::milli>(call.end - call.begin).count()
       << " ms";
  return text.str();
}

std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, '|');) {
    parts.push_back(part);
  }
  return parts;
}

std::string joined(const std::set<std::string>& texts) {
  std::string line;
  for (const std::string& text : texts) {
    line += text + " ";
  }
  return line;
}

bool meets(const Shown& shown, const std::array<std::int64_t, 4>& window) {
  const auto& [left, top, width, height] = window;
  const std::int64_t begin = top + height;  // the window's lower edge
  return left < shown.x + shown.width && shown.x < left + width && begin < shown.y + shown.height &&
         shown.y < begin + height;
}

}  // namespace

bool Oracle::canJudge(const Call& call) const {
  return world_.arrangement.isKnownUntil(call.end) && world_.extra_profile.isKnownUntil(call.end) &&
         world_.colord_runs.isKnownUntil(call.end);
}

void Oracle::judge(const Call& call) {
  Found found;
  found.arrangements = world_.arrangement.during(call.begin, call.end);
  found.extra = world_.extra_profile.during(call.begin, call.end);
  const auto runs = world_.colord_runs.during(call.begin, call.end);
  found.colord_runs = std::all_of(runs.begin(), runs.end(), [](const bool* runs_then) { return *runs_then; });
  during_changes_ += found.arrangements.size() > 1 || found.extra.size() > 1 || !found.colord_runs ? 1 : 0;

  Tally& tally = tallies_[static_cast<std::size_t>(call.method)];
  ++tally.calls;
  tally.slowest = std::max(tally.slowest, call.end - call.begin);
  if (const auto expected = mistake(call, found)) {
    ++tally.wrong;
    if (complaints_.size() < kMostComplaints) {
      complaints_.push_back(describe(call) + "; expected " + *expected + " (" +
                            std::to_string(found.arrangements.size()) + " arrangements, colord " +
                            (found.colord_runs ? "runs)" : "restarts)"));
    }
  }
  world_.arrangement.forgetBefore(call.begin);
  world_.extra_profile.forgetBefore(call.begin);
  world_.colord_runs.forgetBefore(call.begin);
}

std::size_t Oracle::calls() const {
  std::size_t calls = 0;
  for (const Tally& tally : tallies_) {
    calls += tally.calls;
  }
  return calls;
}

std::size_t Oracle::wrong() const {
  std::size_t wrong = 0;
  for (const Tally& tally : tallies_) {
    wrong += tally.wrong;
  }
  return wrong;
}

std::optional<std::string> Oracle::mistake(const Call& call, const Found& found) {
  switch (call.method) {
    case Method::kSetObject:
      listener_ = call.arguments[0];
      return std::nullopt;
    case Method::kGetRect:
    case Method::kGetCGRect:
      return judgeEdges(call, found);
    case Method::kGetIndex:
      return judgeIndex(call, found);
    case Method::kGetScale:
      return call.numbers[0] == 1 ? std::nullopt : std::optional<std::string>("1");
    case Method::kDisplayIDForWindow:
      return judgeWindow(call, found);
    case Method::kGetName:
      return judgeName(call, found);
    case Method::kGetProfilePath:
      return judgeProfile(call, found);
    case Method::kSetProfile:
      return judgeAssignment(call, found);
    case Method::kListAllInstalledProfiles:
    case Method::kGetInstalledProfilePathsArray:
      return judgeInstalled(call, found);
    case Method::kListDisplayProfiles:
    case Method::kGetAssociatedProfilePathsArray:
      return judgeAssociated(call, found);
    case Method::kICCTagExists:
      return judgeTag(call);
    case Method::kQV02Read:
      return judgeDocument(call);
  }
  return "a method";
}

Oracle::Presence Oracle::presence(const Found& found, std::uint32_t display) {
  const auto there = std::count_if(found.arrangements.begin(), found.arrangements.end(),
                                   [&](const Arrangement* one) { return find(*one, display) != nullptr; });
  return there == 0                                                     ? Presence::kNever
         : static_cast<std::size_t>(there) == found.arrangements.size() ? Presence::kAlways
                                                                        : Presence::kSometimes;
}

std::optional<std::size_t> Oracle::outputOf(std::uint32_t display) const {
  const auto& outputs = world_.plan.outputs;
  const auto found = std::find(outputs.begin(), outputs.end(), display);
  return found == outputs.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - outputs.begin()));
}

std::set<std::string> Oracle::pathsOf(std::size_t output, const std::set<std::size_t>& choices) const {
  std::set<std::string> paths;
  for (const std::size_t choice : choices) {
    paths.insert(world_.profiles.path(world_.plan.fileOf(output, choice)));
  }
  return paths;
}

// --- geometry

std::optional<std::string> Oracle::judgeEdges(const Call& call, const Found& found) const {
  std::string expected;
  for (const Arrangement* const arrangement : found.arrangements) {
    const Shown* const shown = find(*arrangement, static_cast<std::uint32_t>(call.arguments[0]));
    const Shown bounds = shown != nullptr ? *shown : Shown();
    std::array<double, 4> numbers{static_cast<double>(bounds.x), static_cast<double>(bounds.y),
                                  static_cast<double>(bounds.width), static_cast<double>(bounds.height)};
    if (call.method == Method::kGetRect) {
      numbers[2] += numbers[0];
      numbers[3] += numbers[1];
    }
    if (call.numbers == numbers) {
      return std::nullopt;
    }
    for (const double number : numbers) {
      expected += std::to_string(number) + " ";
    }
  }
  return expected;
}

std::optional<std::string> Oracle::judgeIndex(const Call& call, const Found& found) const {
  std::string expected;
  for (const Arrangement* const arrangement : found.arrangements) {
    const Shown* const shown = find(*arrangement, static_cast<std::uint32_t>(call.arguments[0]));
    const double index = shown != nullptr ? static_cast<double>(shown - arrangement->data()) : kNotFound;
    // The count of displays is asked for first: one that is beyond it when the list is asked for is not met.
    const bool may_be_beyond =
        std::any_of(found.arrangements.begin(), found.arrangements.end(),
                    [&](const Arrangement* other) { return index >= static_cast<double>(other->size()); });
    if (call.numbers[0] == index || (may_be_beyond && call.numbers[0] == kNotFound)) {
      return std::nullopt;
    }
    expected += std::to_string(index) + " ";
  }
  return expected;
}

std::optional<std::string> Oracle::judgeWindow(const Call& call, const Found& found) const {
  std::string expected;
  for (const Arrangement* const arrangement : found.arrangements) {
    const auto shown = std::find_if(arrangement->begin(), arrangement->end(),
                                    [&](const Shown& one) { return meets(one, call.arguments); });
    const std::uint32_t number = shown != arrangement->end() ? shown->number : 0;
    if (call.numbers[0] == number) {
      return std::nullopt;
    }
    expected += std::to_string(number) + " ";
  }
  return expected;
}

// --- names and profiles

std::optional<std::string> Oracle::judgeName(const Call& call, const Found& found) const {
  const auto display = static_cast<std::uint32_t>(call.arguments[0]);
  const auto output = outputOf(display);
  const Presence there = presence(found, display);
  const std::string name = output ? World::outputName(*output) : "UNKNOWN";
  if ((there != Presence::kNever && call.text == name) || (there != Presence::kAlways && call.text == "UNKNOWN")) {
    return std::nullopt;
  }
  return there == Presence::kNever ? "UNKNOWN" : name;
}

std::optional<std::string> Oracle::judgeProfile(const Call& call, const Found& found) {
  const auto display = static_cast<std::uint32_t>(call.arguments[0]);
  const std::size_t output = outputOf(display).value();
  const Presence there = presence(found, display);
  if (call.text.empty()) {
    if (there != Presence::kAlways || !found.colord_runs) {
      return std::nullopt;
    }
    const bool waited = call.end - call.begin >= kProfileLimit;
    gave_up_ += waited ? 1 : 0;
    if (waited) {
      return std::nullopt;
    }
  }
  const Assigned& assigned = assigned_.at(output);
  std::set<std::size_t> choices = assigned.current;
  if (!found.colord_runs) {  // until a restarted colord has its profiles back, a display has any other of its own
    choices.insert(assigned.attached.begin(), assigned.attached.end());
    choices.insert(assigned.maybe.begin(), assigned.maybe.end());
  }
  const std::set<std::string> paths = pathsOf(output, choices);
  if (there != Presence::kNever && paths.count(call.text) != 0) {
    return std::nullopt;
  }
  return there == Presence::kNever ? "nothing" : joined(paths);
}

std::optional<std::string> Oracle::judgeAssignment(const Call& call, const Found& found) {
  const auto output = static_cast<std::size_t>(call.arguments[0]);
  const auto choice = static_cast<std::size_t>(call.arguments[1]);
  const Presence there = presence(found, world_.plan.outputs.at(output));
  Assigned& assigned = assigned_.at(output);
  if (call.numbers[0] != 0) {
    assigned.current = {choice};
    assigned.attached.insert(choice);
    return there == Presence::kNever ? std::optional<std::string>("False") : std::nullopt;
  }
  if (there == Presence::kNever) {
    return std::nullopt;
  }
  // Interrupted, perhaps after the profile was attached or even made the default.
  assigned.current.insert(choice);
  assigned.maybe.insert(choice);
  if (there == Presence::kAlways && found.colord_runs) {
    const bool waited = call.end - call.begin >= kAssignmentLimit;
    gave_up_ += waited ? 1 : 0;
    return waited ? std::nullopt : std::optional<std::string>("True");
  }
  return std::nullopt;
}

std::optional<std::string> Oracle::judgeInstalled(const Call& call, const Found& found) {
  const bool events = call.method == Method::kListAllInstalledProfiles;
  if (events && call.numbers[2] != static_cast<double>(listener_)) {
    return "the listener " + std::to_string(listener_);
  }
  if (!installed_) {
    const Profiles& profiles = world_.profiles;
    installed_ = {{{profiles.expectedArray(false), profiles.expectedArray(true)},
                   {profiles.expectedEvents(false), profiles.expectedEvents(true)}}};
  }
  std::string expected;
  for (const bool* const extra : found.extra) {
    const ListDigest& right = installed_->at(events ? 1 : 0).at(*extra ? 1 : 0);
    if (call.numbers[0] == static_cast<double>(right.own) && call.numbers[1] == static_cast<double>(right.others) &&
        call.text == right.text) {
      return std::nullopt;
    }
    expected += std::to_string(right.own) + " and " + std::to_string(right.others) + " " + right.text + " ";
  }
  return expected;
}

std::optional<std::set<std::string>> Oracle::parseList(const Call& call) const {
  const bool events = call.method == Method::kListDisplayProfiles;
  std::map<std::string, std::string> names;  // by path
  for (std::size_t output = 0; output < kOutputs; ++output) {
    for (std::size_t choice = 0; choice < kFilesPerOutput; ++choice) {
      const std::size_t file = world_.plan.fileOf(output, choice);
      names[world_.profiles.path(file)] = world_.profiles.name(file);
    }
  }
  std::set<std::string> listed;
  std::string last_key;
  for (const std::string& part : split(call.text)) {
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

std::optional<std::string> Oracle::judgeAssociated(const Call& call, const Found& found) {
  const auto display = static_cast<std::uint32_t>(call.arguments[0]);
  const auto list = parseList(call);
  if (!list) {
    return "profiles with their names, in their order";
  }
  const std::set<std::string> previous = std::exchange(last_list_, *list);
  const Presence there = presence(found, display);
  if (there != Presence::kAlways && (*list == previous || (there == Presence::kSometimes && list->empty()))) {
    return std::nullopt;
  }
  std::set<std::string> certain;
  std::set<std::string> possible;
  if (const auto output = outputOf(display)) {
    certain = pathsOf(*output, assigned_.at(*output).attached);
    possible = pathsOf(*output, assigned_.at(*output).maybe);
    possible.insert(certain.begin(), certain.end());
  }
  const bool has_certain = std::includes(list->begin(), list->end(), certain.begin(), certain.end());
  const bool has_only_possible = std::includes(possible.begin(), possible.end(), list->begin(), list->end());
  if (there != Presence::kNever && has_only_possible && (has_certain || !found.colord_runs)) {
    return std::nullopt;
  }
  return there == Presence::kNever ? "the list before: " + joined(previous) : joined(certain);
}

// --- files

std::optional<std::string> Oracle::judgeTag(const Call& call) const {
  const auto file = static_cast<std::size_t>(call.arguments[0]);
  const bool is_there = file < world_.profiles.count();
  const std::string tag = kTags[call.arguments[1]];
  const bool exists = is_there && (tag == "desc" || (tag == "QV02" && !world_.profiles.document(file).empty()));
  return (call.numbers[0] != 0) == exists ? std::nullopt : std::optional<std::string>(exists ? "True" : "False");
}

std::optional<std::string> Oracle::judgeDocument(const Call& call) const {
  const auto file = static_cast<std::size_t>(call.arguments[0]);
  const std::string document = file < world_.profiles.count() ? world_.profiles.document(file) : std::string();
  const double code = document.empty() ? kNoDocument : 0;
  return call.numbers[0] == code && call.text == document ? std::nullopt : std::optional<std::string>(document);
}

}  // namespace soak
