#include "soak/caller.h"

#include <limits>
#include <sstream>
#include <stdexcept>

namespace soak {
namespace {

std::vector<Listed> pathsOf(const devhost::CallResult& result) {
  std::vector<Listed> list;
  for (std::string& path : result.result.texts()) {
    list.push_back({{}, std::move(path)});
  }
  return list;
}

std::string joined(const std::vector<Listed>& list, bool with_names) {
  std::string line;
  for (const auto& [name, path] : list) {
    line += (line.empty() ? "" : "|") + (with_names ? name + "=" : "") + path;
  }
  return line;
}

}  // namespace

std::string textOf(const std::vector<double>& numbers) {
  std::ostringstream text;
  text.precision(std::numeric_limits<double>::max_digits10);
  for (const double number : numbers) {
    text << (text.tellp() == 0 ? "" : " ") << number;
  }
  return text.str();
}

Caller::Caller(World& world) : world_(world), plugin_(host_.load(OSTREVIN_LIBRARY)) {
  for (std::size_t i = 0; i < std::size(listeners_); ++i) {
    listeners_[i] = host_.makeObject("Listener");
    host_.addMethod(*listeners_[i], "DisplayProfileFound( name as String, path as String )",
                    [this, i](devhost::Object&, devhost::Values& arguments) -> devhost::Value {
                      events_.push_back({arguments[0].text(), arguments[1].text()});
                      heard_by_ = i;
                      return {};
                    });
  }
}

std::vector<Call> Caller::prepare() {
  constexpr int kRounds = 3;
  std::vector<Call> calls{make(Method::kSetObject)};
  for (std::size_t output = 0; output < world_.outputs.size(); ++output) {
    calls.push_back(makeOn(Method::kGetName, world_.outputs[output]));
    calls.push_back(makeAssignment(output, 0));
  }
  for (const std::uint32_t monitor : world_.monitors) {
    calls.push_back(makeOn(Method::kGetName, monitor));
  }
  for (std::size_t i = 0; i < kRounds * kMethodCount; ++i) {
    calls.push_back(make(static_cast<Method>(i % kMethodCount)));
  }
  return calls;
}

Call Caller::makeCall() { return make(chooseMethod()); }

void Caller::checkHost() const {
  if (!host_.faults().empty()) {
    throw std::runtime_error("fault: " + host_.faults().front());
  }
  if (const auto unreleased = host_.unreleased(); !unreleased.empty()) {
    throw std::runtime_error(std::to_string(unreleased.size()) + " not released: " + unreleased.front());
  }
}

std::uint32_t Caller::chooseDisplay() {
  const std::size_t index = choose(world_.outputs.size() + world_.monitors.size());
  return index < world_.outputs.size() ? world_.outputs[index] : world_.monitors[index - world_.outputs.size()];
}

Method Caller::chooseMethod() {
  std::size_t left = choose(10000);
  std::size_t method = 0;
  while (left >= kMethods[method].share) {
    left -= kMethods[method++].share;
  }
  return static_cast<Method>(method);
}

Call Caller::make(Method method) {
  Call call{.method = method};
  switch (method) {
    case Method::kSetObject: {
      const std::size_t listener = choose(std::size(listeners_));
      call.arguments[0] = static_cast<std::int64_t>(listener);
      timed(call, {listeners_[listener]});
      return call;
    }
    case Method::kSetProfile:
      return makeAssignment(choose(world_.outputs.size()), choose(kFilesPerOutput));
    case Method::kDisplayIDForWindow: {
      constexpr std::size_t kPlaces = 9000;
      constexpr std::size_t kSizes = 1500;
      const auto random = [this](std::size_t count) { return static_cast<std::int64_t>(choose(count)); };
      call.arguments = {random(kPlaces) - 200, random(kPlaces) - 2000, random(kSizes) + 1, random(kSizes) + 1};
      const auto& [left, top, width, height] = call.arguments;
      call.result = textOf({timed(call, {left, top, width, height}).result.real()});
      return call;
    }
    case Method::kListAllInstalledProfiles:
    case Method::kListDisplayProfiles:
    case Method::kGetInstalledProfilePathsArray:
    case Method::kGetAssociatedProfilePathsArray:
      return makeListing(method);
    case Method::kICCTagExists:
    case Method::kQV02Read:
      return makeOnFile(method);
    case Method::kGetProfilePath:  // outputs only: a display without a profile takes the whole time limit
      return makeOn(method, world_.outputs[choose(world_.outputs.size())]);
    default:
      return makeOn(method, chooseDisplay());
  }
}

Call Caller::makeOn(Method method, std::uint32_t display) {
  Call call{.method = method, .arguments = {display}};
  if (method == Method::kGetRect) {
    const auto result = timed(call, {display, -1, -1, -1, -1});
    call.result =
        textOf({result["left"].real(), result["top"].real(), result["right"].real(), result["bottom"].real()});
  } else if (method == Method::kGetCGRect) {
    const auto result = timed(call, {display, -1.0, -1.0, -1.0, -1.0});
    call.result = textOf({result["x"].real(), result["y"].real(), result["width"].real(), result["height"].real()});
  } else if (method == Method::kGetName || method == Method::kGetProfilePath) {
    call.result = timed(call, {display, "before"})[method == Method::kGetName ? "name" : "path"].text();
  } else {
    call.result = textOf({timed(call, {display}).result.real()});
  }
  return call;
}

Call Caller::makeListing(Method method) {
  Call call{.method = method};
  const bool of_display = method == Method::kListDisplayProfiles || method == Method::kGetAssociatedProfilePathsArray;
  const bool events = method == Method::kListDisplayProfiles || method == Method::kListAllInstalledProfiles;
  devhost::Values arguments;
  if (of_display) {
    call.arguments[0] = chooseDisplay();
    arguments.push_back(static_cast<std::uint32_t>(call.arguments[0]));
  }
  events_ = {};
  const devhost::CallResult result = timed(call, arguments);
  const std::vector<Listed> list = events ? std::move(events_) : pathsOf(result);
  call.result = of_display ? joined(list, events) : world_.profiles.digestOf(list);
  if (events && !of_display) {
    call.result += ", listener " + std::to_string(heard_by_);
  }
  host_.clearRecords();  // the host records the methods that it looks up
  return call;
}

Call Caller::makeAssignment(std::size_t output, std::size_t choice) {
  Call call{.method = Method::kSetProfile,
            .arguments = {static_cast<std::int64_t>(output), static_cast<std::int64_t>(choice)}};
  const bool done = timed(call, {world_.outputs[output], world_.choicePath(output, choice)}).result.boolean();
  call.result = done ? "True" : "False";
  world_.noteAssignment(output, choice, done);
  return call;
}

Call Caller::makeOnFile(Method method) {
  const std::size_t file = choose(world_.profiles.count() + 1);
  const std::size_t tag = method == Method::kICCTagExists ? choose(std::size(kTags)) : 0;
  Call call{.method = method, .arguments = {static_cast<std::int64_t>(file), static_cast<std::int64_t>(tag)}};
  const std::string path = world_.profiles.path(file);
  if (method == Method::kICCTagExists) {
    call.result = timed(call, {path, kTags[tag]}).result.boolean() ? "True" : "False";
  } else {
    const auto result = timed(call, {path, "before"});
    call.result = textOf({result.result.real()}) + " " + result["xmlString"].text();
  }
  return call;
}

devhost::CallResult Caller::timed(Call& call, const devhost::Values& arguments) {
  call.begin = Clock::now();
  devhost::CallResult result = plugin_.call(call.facts().name, arguments);
  call.end = Clock::now();
  return result;
}

}  // namespace soak
