#include "soak/disturber.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "support/edid_maker.h"

namespace soak {
namespace {

constexpr std::size_t kMonitors = 48;
constexpr std::size_t kAlwaysOn = 4;  ///< outputs that are never switched off: one of them is the main one
constexpr auto kRestoreLimit = std::chrono::seconds(20);
constexpr auto kPollInterval = std::chrono::milliseconds(50);
/// A monitor without an output has this and its name's atom as its number.
constexpr std::uint32_t kNumberWithoutOutput = 0x80000000;

std::string outputOf(std::size_t output) { return "DUMMY" + std::to_string(output); }
std::string monitorOf(std::size_t monitor) { return "part-" + std::to_string(monitor); }

}  // namespace

Disturber::Disturber(Plan& plan) : defined_(kMonitors, true) {
  std::vector<support::XorgServer::Placement> placements;
  for (std::size_t output = 0; output < kOutputs; ++output) {
    for (const bool moved : {true, false}) {
      const auto [width, height, x, y] = outputPlace(output, moved);
      if (moved) {
        server_.setMode(outputOf(output), width, height, x, y);  // the mode is known from then on
      } else {
        placements.push_back({outputOf(output), {width, height, x, y}});
      }
    }
    server_.setEdid(outputOf(output), support::makeEdid({.product = static_cast<std::uint16_t>(0x100 + output),
                                                         .serial = static_cast<std::uint32_t>(1000 + output),
                                                         .name = World::outputName(output)}));
  }
  server_.place(placements);
  server_.makePrimary(outputOf(0));
  on_.fill(true);
  for (std::size_t monitor = 0; monitor < kMonitors; ++monitor) {
    server_.setMonitor(monitorOf(monitor), monitorArea(monitor, false), "none");
  }
  numberMonitors(plan);
  // One of the folders of installed profiles, of a user of the soak's own.
  const std::string home = colord_.directory() / "home";
  plan.folder = home + "/data/icc";
  setenv("HOME", home.c_str(), 1);
  setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
  setenv("XDG_DATA_DIRS", (home + "/none").c_str(), 1);
  plan.pipe = colord_.directory() / "calls";
  world_ = std::make_unique<World>(plan, readArrangement());
  world_->profiles.writeAll();
  countDisplays();
}

Disturber::Place Disturber::outputPlace(std::size_t output, bool moved) {
  constexpr int kColumns = 8;
  const int x = static_cast<int>(output % kColumns) * 1024;
  const int y = static_cast<int>(output / kColumns) * 768;
  return moved ? Place{800, 600, x + 100, y + 2000} : Place{1024, 768, x, y};
}

std::string Disturber::monitorArea(std::size_t monitor, bool moved) {
  constexpr std::size_t kColumns = 12;
  const std::size_t x = monitor % kColumns * 640;
  const std::size_t y = 3600 + monitor / kColumns * 500 + (moved ? 37 : 0);
  return (moved ? "600/150x400/100+" : "640/160x480/120+") + std::to_string(x) + "+" + std::to_string(y);
}

void Disturber::numberMonitors(Plan& plan) {
  for (const auto& output : server_.outputs()) {
    numbers_[output.name] = output.id;
  }
  for (std::size_t output = 0; output < kOutputs; ++output) {
    plan.outputs.push_back(numbers_.at(outputOf(output)));
  }
  xcb_connection_t* const connection = xcb_connect(server_.display().c_str(), nullptr);
  for (std::size_t monitor = 0; monitor < kMonitors; ++monitor) {
    const std::string name = monitorOf(monitor);
    xcb_intern_atom_reply_t* const reply = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(name.size()), name.data()), nullptr);
    if (reply == nullptr || reply->atom == XCB_ATOM_NONE) {
      throw std::runtime_error("no monitor " + name);
    }
    numbers_[name] = kNumberWithoutOutput | reply->atom;
    plan.others.push_back(numbers_.at(name));
    std::free(reply);
  }
  xcb_disconnect(connection);
}

Arrangement Disturber::readArrangement() {
  auto monitors = server_.monitors();
  std::stable_partition(monitors.begin(), monitors.end(), [](const auto& monitor) { return monitor.primary; });
  Arrangement arrangement;
  for (const auto& monitor : monitors) {
    const auto& main = monitors.front().area;
    const auto& area = monitor.area;
    arrangement.push_back({numbers_.at(monitor.name), area.x - main.x, area.y - main.y, area.width, area.height});
  }
  return arrangement;
}

void Disturber::countDisplays() {
  const std::size_t count = world_->arrangement.last().size();
  counts_.fewest = counts_.fewest == 0 ? count : std::min(counts_.fewest, count);
  counts_.most = std::max(counts_.most, count);
}

void Disturber::changeOutput() {
  const std::size_t output = choose(kOutputs);
  const bool moved = choose(2) == 0;
  const bool switch_off = output >= kAlwaysOn && on_.at(output) && choose(2) == 0;
  const bool make_main = output < kAlwaysOn && choose(2) == 0;
  world_->arrangement.change([&]() -> std::vector<Arrangement> {
    if (make_main) {
      server_.makePrimary(outputOf(output));
      return {readArrangement()};
    }
    // On its way from one mode to another an output may be off.
    Arrangement between = world_->arrangement.last();
    const std::uint32_t number = numbers_.at(outputOf(output));
    std::erase_if(between, [&](const Shown& shown) { return shown.number == number; });
    if (switch_off) {
      server_.off(outputOf(output));
    } else {
      const auto [width, height, x, y] = outputPlace(output, moved);
      server_.setMode(outputOf(output), width, height, x, y);
    }
    on_.at(output) = !switch_off;
    return {between, readArrangement()};
  });
  ++counts_.outputs;
  countDisplays();
}

void Disturber::changeMonitor() {
  const std::size_t monitor = choose(kMonitors);
  const bool define = !defined_[monitor] || choose(2) == 0;
  world_->arrangement.change([&]() -> std::vector<Arrangement> {
    std::vector<Arrangement> states;
    if (defined_[monitor]) {  // also before it is defined anew: a name cannot be defined twice
      server_.removeMonitor(monitorOf(monitor));
      states.push_back(readArrangement());
    }
    if (define) {
      server_.setMonitor(monitorOf(monitor), monitorArea(monitor, choose(2) == 0), "none");
      states.push_back(readArrangement());
    }
    defined_[monitor] = define;
    return states;
  });
  ++counts_.monitors;
  countDisplays();
}

void Disturber::changeFiles() {
  extra_ = !extra_;
  world_->extra_profile.change([&]() -> std::vector<bool> {
    world_->profiles.setExtra(extra_);
    return {extra_};
  });
  ++counts_.files;
}

void Disturber::restartColord(const std::function<bool()>& is_over) {
  ++counts_.restarts;
  world_->colord_runs.change([&]() -> std::vector<bool> {
    colord_.restart();
    waitForProfiles(is_over);
    return {false, true};
  });
}

void Disturber::waitForProfiles(const std::function<bool()>& is_over) {
  const Time deadline = Clock::now() + kRestoreLimit;
  for (std::size_t output = 0; output < kOutputs; ++output) {
    while (!hasItsProfile(output)) {
      if (is_over()) {
        return;
      }
      if (Clock::now() > deadline) {
        counts_.not_restored.push_back(outputOf(output) + " after restart " + std::to_string(counts_.restarts));
        break;
      }
      std::this_thread::sleep_for(kPollInterval);
    }
  }
}

bool Disturber::hasItsProfile(std::size_t output) {
  std::string& device = devices_.at(output);
  if (device.empty()) {
    device = support::PrivateColord::fields(
                 colord_.colormgr({"find-device-by-property", "XRANDR_name", outputOf(output)}), "Device ID")
                 .at(0);
  }
  const std::string file = colord_.defaultProfileFile(device);
  const auto choices = world_->newestChoices(output);
  return std::any_of(choices.begin(), choices.end(), [&](std::size_t choice) {
    return file == world_->profiles.path(world_->plan.fileOf(output, choice));
  });
}

}  // namespace soak
