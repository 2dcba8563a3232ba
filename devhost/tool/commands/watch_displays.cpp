// A line for each change of the displays.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <iostream>

#include "devhost/language/printable.h"
#include "devhost/tool/commands/commands.h"
#include "devhost/tool/commands/display_changes.h"
#include "devhost/tool/terminal/interruptible_wait.h"
#include "devhost/tool/terminal/json.h"

namespace devhost::tool {
namespace {

using Clock = std::chrono::steady_clock;

Clock::duration seconds(double number) {
  return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(number));
}

/// The local time, such as 2024-06-07T08:09:10+0200.
std::string timeStamp() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  char text[40];
  localtime_r(&now, &local);
  return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S%z", &local)};
}

std::string describe(const char* verb, const std::vector<KnownDisplay>& displays) {
  std::string text;
  for (const KnownDisplay& display : displays) {
    text += (text.empty() ? std::string(verb) + " " : ", ") + std::to_string(display.number) + " (" +
            printable(display.name) + ")";
  }
  return text;
}

Json toJson(const std::vector<KnownDisplay>& displays) {
  Json list = Json::array();
  for (const KnownDisplay& display : displays) {
    list.push_back({{"number", display.number}, {"name", display.name}});
  }
  return list;
}

void printChanges(const Session& session, const DisplayChanges& changes) {
  if (session.json()) {
    Json document = jsonDocument("watch");
    document["time"] = timeStamp();
    document["added"] = toJson(changes.added());
    document["removed"] = toJson(changes.removed());
    document["displays"] = toJson(changes.displays());
    std::cout << document.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
    return;
  }
  const std::string added = describe("added", changes.added());
  const std::string removed = describe("removed", changes.removed());
  std::cout << timeStamp() << "  " << removed << (added.empty() || removed.empty() ? "" : "; ") << added << std::endl;
}

/// Discards what is still buffered.
void discardOutput() {
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(nowhere, STDOUT_FILENO);
  close(nowhere);
  std::cout.clear();
}

}  // namespace

int watchDisplays(Session& session, const WatchOptions& options) {
  if (std::isnan(options.interval) || std::isnan(options.duration.value_or(0))) {
    throw ValueError("watch: nan is not a number of seconds");
  }
  InterruptibleWait waiting;
  const auto deadline = options.duration ? Clock::now() + seconds(*options.duration) : Clock::time_point::max();
  DisplayChanges changes(session.plugin());
  const std::size_t count = changes.displays().size();
  Session::say("watching " + std::to_string(count) + (count == 1 ? " display" : " displays"));
  std::uint32_t printed = 0;
  while (!options.count || printed < *options.count) {
    const Clock::duration left = deadline - Clock::now();
    if (left <= Clock::duration::zero()) {
      return options.count ? kNotDone : kDone;
    }
    if (!waiting.wait(std::min(left, seconds(options.interval)))) {
      return kDone;
    }
    if (!changes.look()) {
      continue;
    }
    printChanges(session, changes);
    if (!std::cout) {
      // A closed pipe is the end of the task; any other failure to write is an error.
      if (waiting.isOver()) {
        discardOutput();
      }
      return kDone;
    }
    ++printed;
  }
  return kDone;
}

}  // namespace devhost::tool
