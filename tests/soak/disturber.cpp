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
constexpr auto kPause = std::chrono::milliseconds(750);
constexpr auto kRestoreLimit = std::chrono::seconds(20);
constexpr auto kPollInterval = std::chrono::milliseconds(50);
/// How long after a change a call may still return the state before it: the news travel on another connection.
constexpr auto kServerNews = std::chrono::milliseconds(500);
constexpr auto kColordNews = std::chrono::seconds(1);
/// The number of a monitor without an output is this and its name's atom.
constexpr std::uint32_t kNumberWithoutOutput = 0x80000000;

std::string outputName(std::size_t output) { return "DUMMY" + std::to_string(output); }
std::string monitorName(std::size_t monitor) { return "part-" + std::to_string(monitor); }

support::XorgServer::Placement placementOf(std::size_t output, bool moved) {
  constexpr int kColumns = 8;
  const int x = static_cast<int>(output % kColumns) * 1024;
  const int y = static_cast<int>(output / kColumns) * 768;
  using Area = support::PixelRect;
  return {outputName(output), moved ? Area{800, 600, x + 100, y + 2000} : Area{1024, 768, x, y}};
}

std::string monitorArea(std::size_t monitor, bool moved) {
  constexpr std::size_t kColumns = 12;
  const std::size_t x = monitor % kColumns * 640;
  const std::size_t y = 3600 + monitor / kColumns * 500 + (moved ? 37 : 0);
  return (moved ? "600/150x400/100+" : "640/160x480/120+") + std::to_string(x) + "+" + std::to_string(y);
}

}  // namespace

Disturber::Disturber(std::size_t profiles) : defined_(kMonitors, true) {
  const std::string home = colord_.directory() / "home";
  for (const auto& [name, value] : {std::pair<const char*, std::string>{"HOME", home},
                                    {"XDG_DATA_HOME", home + "/data"},
                                    {"XDG_DATA_DIRS", home + "/none"},
                                    {"DISPLAY", server_.display()}}) {
    setenv(name, value.c_str(), 1);
  }
  unsetenv("OSTREVIN_DESKTOP");
  makeOutputs();
  makeMonitors();
  world_ = std::make_unique<World>(home + "/data/icc", profiles, State{.displays = readDisplays()});
  for (std::size_t output = 0; output < kOutputs; ++output) {
    world_->outputs.push_back(numbers_.at(outputName(output)));
  }
  for (std::size_t monitor = 0; monitor < kMonitors; ++monitor) {
    world_->monitors.push_back(numbers_.at(monitorName(monitor)));
  }
  world_->profiles.writeAll();
}

void Disturber::makeOutputs() {
  std::vector<support::XorgServer::Placement> placements;
  for (std::size_t output = 0; output < kOutputs; ++output) {
    server_.place({placementOf(output, true)});  // so that both modes exist
    placements.push_back(placementOf(output, false));
    server_.setEdid(outputName(output), support::makeEdid({.product = static_cast<std::uint16_t>(0x100 + output),
                                                           .serial = static_cast<std::uint32_t>(1000 + output),
                                                           .name = World::outputName(output)}));
  }
  server_.place(placements);
  server_.makePrimary(outputName(0));
  on_.fill(true);
  for (const auto& output : server_.outputs()) {
    numbers_[output.name] = output.id;
  }
}

void Disturber::makeMonitors() {
  xcb_connection_t* const connection = xcb_connect(server_.display().c_str(), nullptr);
  for (std::size_t monitor = 0; monitor < kMonitors; ++monitor) {
    const std::string name = monitorName(monitor);
    server_.setMonitor(name, monitorArea(monitor, false), "none");
    xcb_intern_atom_reply_t* const reply = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(name.size()), name.data()), nullptr);
    if (reply == nullptr || reply->atom == XCB_ATOM_NONE) {
      throw std::runtime_error("no monitor " + name);
    }
    numbers_[name] = kNumberWithoutOutput | reply->atom;
    std::free(reply);
  }
  xcb_disconnect(connection);
}

std::vector<Shown> Disturber::readDisplays() {
  auto monitors = server_.monitors();
  std::stable_partition(monitors.begin(), monitors.end(), [](const auto& monitor) { return monitor.primary; });
  std::vector<Shown> displays;
  for (const auto& [name, primary, area, outputs] : monitors) {
    const auto& main = monitors.front().area;
    displays.push_back({numbers_.at(name), area.x - main.x, area.y - main.y, area.width, area.height});
  }
  counts_.fewest = std::min(counts_.fewest, displays.size());
  counts_.most = std::max(counts_.most, displays.size());
  return displays;
}

void Disturber::run(Clock::duration restart_interval, const std::atomic<bool>& over) {
  Time restart_due = Clock::now() + restart_interval;
  for (std::size_t step = 0; !over; ++step) {
    if (step % 4 == 1) {
      changeMonitor();
    } else if (step % 4 == 3) {
      changeFiles();
    } else {
      changeOutput();
    }
    if (Clock::now() >= restart_due) {
      restartColord(over);
      restart_due = Clock::now() + restart_interval;
    }
    std::this_thread::sleep_for(kPause);
  }
}

void Disturber::changeOutput() {
  const std::size_t output = choose(kOutputs);
  const bool moved = choose(2) == 0;
  const bool switch_off = output >= kAlwaysOn && on_.at(output) && choose(2) == 0;
  const bool make_main = output < kAlwaysOn && choose(2) == 0;
  world_->timeline.change(kServerNews, [&](const State& before) {
    State between = before;
    State after = before;
    if (make_main) {
      server_.makePrimary(outputName(output));
    } else {  // between two modes an output may be off
      std::erase_if(between.displays,
                    [&](const Shown& shown) { return shown.number == numbers_.at(outputName(output)); });
      switch_off ? server_.off(outputName(output)) : server_.place({placementOf(output, moved)});
      on_.at(output) = !switch_off;
    }
    after.displays = readDisplays();
    return std::vector<State>{between, after};
  });
  ++counts_.outputs;
}

void Disturber::changeMonitor() {
  const std::size_t monitor = choose(kMonitors);
  const bool define = !defined_[monitor] || choose(2) == 0;
  world_->timeline.change(kServerNews, [&](const State& before) {
    std::vector<State> states;
    if (defined_[monitor]) {  // also before a new definition: a name cannot be defined twice
      server_.removeMonitor(monitorName(monitor));
      states.push_back(before);
      states.back().displays = readDisplays();
    }
    if (define) {
      server_.setMonitor(monitorName(monitor), monitorArea(monitor, choose(2) == 0), "none");
      states.push_back(before);
      states.back().displays = readDisplays();
    }
    defined_[monitor] = define;
    return states;
  });
  ++counts_.monitors;
}

void Disturber::changeFiles() {
  world_->timeline.change(Clock::duration::zero(), [&](const State& before) {
    State after = before;
    after.extra_profile = !before.extra_profile;
    world_->profiles.setExtra(after.extra_profile);
    return std::vector<State>{after};
  });
  ++counts_.files;
}

void Disturber::restartColord(const std::atomic<bool>& over) {
  ++counts_.restarts;
  world_->timeline.change(kColordNews, [&](const State& before) {
    colord_.restart();
    const Time deadline = Clock::now() + kRestoreLimit;
    for (std::size_t output = 0; output < kOutputs; ++output) {
      while (!over && !hasItsProfile(output)) {  // when over, no call makes the plugin restore profiles
        if (Clock::now() > deadline) {
          counts_.not_restored.push_back(outputName(output) + " after restart " + std::to_string(counts_.restarts));
          break;
        }
        std::this_thread::sleep_for(kPollInterval);
      }
    }
    State restarting = before;
    restarting.colord_runs = false;
    return std::vector<State>{restarting, before};
  });
}

bool Disturber::hasItsProfile(std::size_t output) {
  std::string& device = devices_.at(output);
  if (device.empty()) {
    device = support::PrivateColord::fields(
                 colord_.colormgr({"find-device-by-property", "XRANDR_name", outputName(output)}), "Device ID")
                 .at(0);
  }
  return world_->newestProfiles(output).count(colord_.defaultProfileFile(device)) != 0;
}

}  // namespace soak
