#include "soak/caller.h"

#include <stdexcept>
#include <thread>

namespace soak {
namespace {

constexpr auto kFlushInterval = std::chrono::milliseconds(20);
constexpr auto kMemoryInterval = std::chrono::seconds(5);

std::string joined(const std::vector<std::string>& texts) {
  std::string line;
  for (const std::string& text : texts) {
    line += (line.empty() ? "" : "|") + text;
  }
  return line;
}

}  // namespace

Caller::Caller(const Plan& plan)
    : plan_(plan),
      profiles_(plan.folder, plan.profiles),
      pipe_(plan.pipe),
      flushed_(Clock::now()),
      plugin_(host_.load(OSTREVIN_LIBRARY)) {
  for (std::size_t i = 0; i < 2; ++i) {
    listeners_[i] = host_.makeObject("Listener");
    host_.addMethod(*listeners_[i], "DisplayProfileFound( name as String, path as String )",
                    [this, i](devhost::Object&, devhost::Values& arguments) -> devhost::Value {
                      events_.push_back({arguments[0].text(), arguments[1].text()});
                      heard_by_ = static_cast<double>(i);
                      return {};
                    });
  }
}

void Caller::run() {
  prepare();
  write(kReady);
  writeMemory();
  makeCalls();
  writeMemory();
  if (!host_.faults().empty()) {
    throw std::runtime_error("fault: " + host_.faults().front());
  }
  const std::vector<std::string> unreleased = host_.unreleased();
  if (!unreleased.empty()) {
    throw std::runtime_error(std::to_string(unreleased.size()) + " not released: " + unreleased.front());
  }
  write(kDone);
  pipe_.close();
}

void Caller::prepare() {
  setObject();
  for (std::size_t output = 0; output < plan_.outputs.size(); ++output) {
    getName(plan_.outputs[output]);
    setProfile(output, 0);
  }
  for (const std::uint32_t display : plan_.others) {
    getName(display);
  }
  for (int round = 0; round < 3; ++round) {  // so that what is remembered and reused is there before it is measured
    for (std::size_t method = 0; method < kMethods; ++method) {
      callOne(static_cast<Method>(method));
    }
  }
}

void Caller::makeCalls() {
  const Time start = Clock::now();
  Time memory_due = start + kMemoryInterval;
  const auto interval = std::chrono::duration<double>(1 / plan_.rate);
  for (std::size_t i = 0; i < plan_.calls(); ++i) {
    // What a slow call costs is made up for as fast as it goes.
    std::this_thread::sleep_until(start + std::chrono::duration_cast<Clock::duration>(interval * i));
    callOne(chooseMethod());
    if (Clock::now() >= memory_due) {
      writeMemory();
      memory_due += kMemoryInterval;
    }
  }
}

Method Caller::chooseMethod() {
  constexpr int kShares = 10000;
  auto left = static_cast<int>(choose(kShares));
  for (std::size_t method = 0; method < kMethods; ++method) {
    left -= shareOf(static_cast<Method>(method));
    if (left < 0) {
      return static_cast<Method>(method);
    }
  }
  return Method::kGetRect;
}

std::size_t Caller::choose(std::size_t count) { return random_() % count; }

std::uint32_t Caller::chooseDisplay() {
  const std::size_t index = choose(plan_.outputs.size() + plan_.others.size());
  return index < plan_.outputs.size() ? plan_.outputs[index] : plan_.others[index - plan_.outputs.size()];
}

void Caller::callOne(Method method) {
  switch (method) {
    case Method::kSetObject:
      return setObject();
    case Method::kListAllInstalledProfiles:
      return listAllInstalledProfiles();
    case Method::kListDisplayProfiles:
      return listDisplayProfiles();
    case Method::kGetName:
      return getName(chooseDisplay());
    case Method::kGetRect:
      return getRect();
    case Method::kGetCGRect:
      return getCGRect();
    case Method::kGetProfilePath:
      return getProfilePath();
    case Method::kGetIndex:
      return getIndex();
    case Method::kGetScale:
      return getScale();
    case Method::kSetProfile:
      return setProfile(choose(plan_.outputs.size()), choose(kFilesPerOutput));
    case Method::kDisplayIDForWindow:
      return displayIDForWindow();
    case Method::kGetInstalledProfilePathsArray:
      return getInstalledProfilePathsArray();
    case Method::kGetAssociatedProfilePathsArray:
      return getAssociatedProfilePathsArray();
    case Method::kICCTagExists:
      return iccTagExists();
    case Method::kQV02Read:
      return qv02Read();
  }
}

devhost::CallResult Caller::timed(Call& call, const devhost::Values& arguments) {
  const char* const name = nameOf(call.method);
  call.begin = Clock::now();
  devhost::CallResult result = plugin_.call(name, arguments);
  call.end = Clock::now();
  return result;
}

void Caller::setObject() {
  Call call{.method = Method::kSetObject};
  const std::size_t listener = choose(2);
  call.arguments[0] = static_cast<std::int64_t>(listener);
  timed(call, {listeners_[listener]});
  write(lineOf(call));
}

void Caller::listAllInstalledProfiles() {
  Call call{.method = Method::kListAllInstalledProfiles};
  events_.clear();
  timed(call, {});
  const ListDigest digest = profiles_.digestOf(events_);
  events_ = {};
  call.numbers = {static_cast<double>(digest.own), static_cast<double>(digest.others), heard_by_, 0};
  call.text = digest.text;
  host_.clearRecords();  // the host remembers what methods it was asked for
  write(lineOf(call));
}

void Caller::listDisplayProfiles() {
  Call call{.method = Method::kListDisplayProfiles};
  const std::uint32_t display = chooseDisplay();
  call.arguments[0] = display;
  events_.clear();
  timed(call, {display});
  std::vector<std::string> texts;
  for (const auto& [name, path] : events_) {
    texts.push_back(name);
    texts.back().append("=").append(path);
  }
  call.text = joined(texts);
  host_.clearRecords();
  write(lineOf(call));
}

void Caller::getName(std::uint32_t display) {
  Call call{.method = Method::kGetName};
  call.arguments[0] = display;
  call.text = timed(call, {display, "before"})["name"].text();
  write(lineOf(call));
}

void Caller::getRect() {
  Call call{.method = Method::kGetRect};
  const std::uint32_t display = chooseDisplay();
  call.arguments[0] = display;
  const auto result = timed(call, {display, -1, -1, -1, -1});
  call.numbers = {result["left"].real(), result["top"].real(), result["right"].real(), result["bottom"].real()};
  write(lineOf(call));
}

void Caller::getCGRect() {
  Call call{.method = Method::kGetCGRect};
  const std::uint32_t display = chooseDisplay();
  call.arguments[0] = display;
  const auto result = timed(call, {display, -1.0, -1.0, -1.0, -1.0});
  call.numbers = {result["x"].real(), result["y"].real(), result["width"].real(), result["height"].real()};
  write(lineOf(call));
}

void Caller::getProfilePath() {
  Call call{.method = Method::kGetProfilePath};
  // Only outputs: a display that has no profile takes the whole time limit.
  const std::uint32_t display = plan_.outputs[choose(plan_.outputs.size())];
  call.arguments[0] = display;
  call.text = timed(call, {display, "before"})["path"].text();
  write(lineOf(call));
}

void Caller::getIndex() {
  Call call{.method = Method::kGetIndex};
  const std::uint32_t display = chooseDisplay();
  call.arguments[0] = display;
  call.numbers[0] = timed(call, {display}).result.real();
  write(lineOf(call));
}

void Caller::getScale() {
  Call call{.method = Method::kGetScale};
  const std::uint32_t display = chooseDisplay();
  call.arguments[0] = display;
  call.numbers[0] = timed(call, {display}).result.real();
  write(lineOf(call));
}

void Caller::setProfile(std::size_t output, std::size_t choice) {
  Call call{.method = Method::kSetProfile};
  call.arguments = {static_cast<std::int64_t>(output), static_cast<std::int64_t>(choice), 0, 0};
  const std::string path = profiles_.path(plan_.fileOf(output, choice));
  call.numbers[0] = timed(call, {plan_.outputs[output], path}).result.boolean() ? 1 : 0;
  write(lineOf(call));
  pipe_.flush();  // whoever restarts colord wants to know at once
}

void Caller::displayIDForWindow() {
  constexpr std::size_t kPlaces = 9000;
  constexpr std::size_t kSizes = 1500;
  Call call{.method = Method::kDisplayIDForWindow};
  call.arguments = {static_cast<std::int64_t>(choose(kPlaces)) - 200, static_cast<std::int64_t>(choose(kPlaces)) - 2000,
                    static_cast<std::int64_t>(choose(kSizes)) + 1, static_cast<std::int64_t>(choose(kSizes)) + 1};
  const auto& [left, top, width, height] = call.arguments;
  call.numbers[0] = timed(call, {left, top, width, height}).result.real();
  write(lineOf(call));
}

void Caller::getInstalledProfilePathsArray() {
  Call call{.method = Method::kGetInstalledProfilePathsArray};
  std::vector<Listed> list;
  for (std::string& path : timed(call, {}).result.texts()) {
    list.push_back({{}, std::move(path)});
  }
  const ListDigest digest = profiles_.digestOf(list);
  call.numbers = {static_cast<double>(digest.own), static_cast<double>(digest.others), 0, 0};
  call.text = digest.text;
  write(lineOf(call));
}

void Caller::getAssociatedProfilePathsArray() {
  Call call{.method = Method::kGetAssociatedProfilePathsArray};
  const std::uint32_t display = chooseDisplay();
  call.arguments[0] = display;
  call.text = joined(timed(call, {display}).result.texts());
  write(lineOf(call));
}

void Caller::iccTagExists() {
  Call call{.method = Method::kICCTagExists};
  const std::size_t file = choose(plan_.profiles + 1);
  const std::size_t tag = choose(std::size(kTags));
  call.arguments = {static_cast<std::int64_t>(file), static_cast<std::int64_t>(tag), 0, 0};
  call.numbers[0] = timed(call, {profiles_.path(file), kTags[tag]}).result.boolean() ? 1 : 0;
  write(lineOf(call));
}

void Caller::qv02Read() {
  Call call{.method = Method::kQV02Read};
  const std::size_t file = choose(plan_.profiles + 1);
  call.arguments[0] = static_cast<std::int64_t>(file);
  const auto result = timed(call, {profiles_.path(file), "before"});
  call.numbers[0] = result.result.real();
  call.text = result["xmlString"].text();
  write(lineOf(call));
}

void Caller::writeMemory() { write(lineOf(measureMemory())); }

void Caller::write(const std::string& line) {
  pipe_ << line << '\n';
  const Time now = Clock::now();
  if (now - flushed_ > kFlushInterval) {
    pipe_.flush();
    flushed_ = now;
  }
}

}  // namespace soak
