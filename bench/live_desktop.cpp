#include <algorithm>
#include <cstdlib>

#include "desktop/current.h"
#include "groups.h"
#include "support/edid_maker.h"
#include "support/process.h"

namespace bench {

struct LiveDesktop::Servers {
  support::PrivateColord colord;
  support::XorgServer server;
};

LiveDesktop::LiveDesktop() = default;
LiveDesktop::~LiveDesktop() = default;

void LiveDesktop::use(long displays) {
  platform::desktop::setCurrent(nullptr);
  if (!servers_) {
    start();
  }
  if (displays_ != displays) {
    makeGrid(displays);
    displays_ = displays;
  }
}

void LiveDesktop::start() {
  servers_ = std::make_unique<Servers>();
  support::XorgServer& server = servers_->server;
  unsetenv("OSTREVIN_DESKTOP");
  setenv("DISPLAY", server.display().c_str(), 1);
  setenv("XAUTHORITY", (server.directory() / "no-authority").c_str(), 1);
  server.place({{"DUMMY0", {1920, 1080, 0, 0}}, {"DUMMY1", {1280, 1024, 1920, 56}}, {"DUMMY2", {800, 600, 300, 1080}}});
  server.setEdid("DUMMY0", support::makeEdid({.vendor = "DEL", .serial = 1502, .name = kMonitorName}));
  for (const char* const output : {"DUMMY0", "DUMMY1", "DUMMY2"}) {
    support::runSuccessfully({OSTREVIN_TOOL, "call", "SetProfile", std::to_string(display(output)), kProfile});
  }
}

support::PrivateColord& LiveDesktop::colord() { return servers_->colord; }

std::uint32_t LiveDesktop::display(const std::string& output) { return servers_->server.output(output).id; }

void LiveDesktop::growDevices(long count) {
  registerAbsentDisplays(servers_->colord, devices_, count);
  devices_ = std::max(devices_, count);
}

void LiveDesktop::makeGrid(long count) {
  support::XorgServer& server = servers_->server;
  server.off("DUMMY1");
  server.off("DUMMY2");
  const int rows = static_cast<int>(count) / kGridColumns;
  server.setMode("DUMMY0", kGridColumns * kGridWidth, rows * kGridHeight, 0, 0);
  for (int i = 0; i < count; ++i) {
    const std::string area = std::to_string(kGridWidth) + "/100x" + std::to_string(kGridHeight) + "/60+" +
                             std::to_string(kGridWidth * (i % kGridColumns)) + "+" +
                             std::to_string(kGridHeight * (i / kGridColumns));
    server.setMonitor("part-" + std::to_string(i), area, i == 0 ? "DUMMY0" : "none");
  }
}

void registerAbsentDisplays(support::PrivateColord& colord, long present, long count) {
  for (; present < count; ++present) {
    const std::string number = std::to_string(present);
    colord.registerDevice("absent-" + number, {{"XRANDR_name", "ABSENT-" + number}, {"Model", "Model " + number}});
  }
}

}  // namespace bench
