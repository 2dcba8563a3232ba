#include <cstdlib>
#include <exception>
#include <future>
#include <memory>
#include <thread>

#include "desktop/diagnosis/diagnosis.h"
#include "desktop/x11/signals_blocked.h"
#include "desktop/x11/x11_connection.h"
#include "desktop/x11/x11_displays.h"
#include "desktop/x11/x11_monitors.h"
#include "desktop/x11/x11_settings.h"

namespace platform::desktop {
namespace {

/// A change that comes in between makes a reading void; so often it is begun anew.
constexpr int kMostReadings = 4;

XServerReport ask(const std::string& display) {
  XServerReport report;
  report.display = display;
  const auto connection = X11Connection::open(display);
  if (!connection) {
    report.state = XServerState::kRefused;
    return report;
  }
  X11Monitors monitors(*connection, X11Options().newest_randr_minor);
  report.randr_minor = monitors.randrMinor();
  report.scale = X11Settings(*connection).readScale();
  std::optional<std::vector<Monitor>> read;
  for (int reading = 0; reading < kMostReadings && !read; ++reading) {
    read = monitors.read();
  }
  if (connection->isLost()) {
    report.state = XServerState::kRefused;
    return report;
  }
  report.monitors = read.value_or(std::vector<Monitor>());
  report.arrangement = arrange(report.monitors, report.scale);
  report.state = report.randr_minor == 0 ? XServerState::kNoRandr : XServerState::kAnswers;
  return report;
}

}  // namespace

XServerReport askXServer() {
  XServerReport unanswered;
  const char* const display = std::getenv("DISPLAY");
  if (display == nullptr || *display == '\0') {
    return unanswered;
  }
  unanswered.display = display;
  unanswered.state = XServerState::kSilent;
  // The thread may outlive the answer, while the server hangs.
  const auto promise = std::make_shared<std::promise<XServerReport>>();
  std::future<XServerReport> answer = promise->get_future();
  const SignalsBlocked blocked;
  std::thread([promise, name = unanswered.display] {
    try {
      promise->set_value(ask(name));
    } catch (...) {
      promise->set_exception(std::current_exception());
    }
  }).detach();
  return answer.wait_for(kXServerLimit) == std::future_status::ready ? answer.get() : unanswered;
}

}  // namespace platform::desktop
