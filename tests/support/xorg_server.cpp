#include "support/xorg_server.h"

#include <unistd.h>
#include <xcb/randr.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace support {
namespace {

constexpr int kStatusFd = 3;
constexpr std::chrono::seconds kStartLimit(60);

std::string contents(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

PixelRect rectOf(const std::smatch& match, std::size_t first) {
  return {std::stoi(match[first]), std::stoi(match[first + 1]), std::stoi(match[first + 2]),
          std::stoi(match[first + 3])};
}

/// The program itself where it is installed beside the wrapper, which lets only console users start it.
std::string xorgProgram() {
  const std::filesystem::path unwrapped = "/usr/lib/xorg/Xorg";
  return std::filesystem::exists(unwrapped) ? unwrapped.string() : "Xorg";
}

constexpr const char* kXorgConfiguration = R"(
Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoEnableDevices" "false"
  Option "AutoAddGPU" "false"
EndSection
Section "Device"
  Identifier "device"
  Driver "dummy"
  VideoRam 524288
EndSection
Section "Screen"
  Identifier "screen"
  Device "device"
  DefaultDepth 24
  SubSection "Display"
    Depth 24
    Virtual 12288 8192
  EndSubSection
EndSection
)";

xcb_atom_t edidAtom(xcb_connection_t* connection) {
  static constexpr char kName[] = "EDID";
  xcb_intern_atom_reply_t* const reply =
      xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, sizeof(kName) - 1, kName), nullptr);
  const xcb_atom_t atom = reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
  std::free(reply);
  return atom;
}

}  // namespace

XServer::~XServer() {
  connection_.reset();
  if (process_) {
    process_->stop();
    removeLeftovers();
  }
}

std::filesystem::path XServer::socket() const { return "/tmp/.X11-unix/X" + display_.substr(1); }

Environment XServer::environment() const {
  return {"DISPLAY=" + display_, "XAUTHORITY=" + (directory() / "no-authority").string()};
}

void XServer::start(std::vector<std::string> command, const std::string& display, const Environment& environment) {
  if (!display.empty()) {
    command.insert(command.begin() + 1, display);
  }
  command.insert(command.end(), {"-displayfd", std::to_string(kStatusFd), "-nolisten", "tcp", "-noreset"});
  process_ = std::make_unique<ChildProcess>(command, environment, directory() / "output", kStatusFd);
  const std::string number = process_->readStatusLine(kStartLimit);
  if (number.empty()) {
    process_->kill();
    throw std::runtime_error(command.front() + " does not start:\n" + process_->output());
  }
  display_ = ":" + number;
  connect();
}

void XServer::connect() {
  connection_.reset(xcb_connect(display_.c_str(), nullptr));
  if (xcb_connection_has_error(connection_.get()) != 0) {
    throw std::runtime_error("no connection to " + display_);
  }
}

xcb_window_t XServer::root() const { return xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root; }

void XServer::removeLeftovers() {
  // A server that was killed leaves its lock; another one may have taken the number over since.
  const std::filesystem::path lock = "/tmp/.X" + display_.substr(1) + "-lock";
  const int owner = std::atoi(contents(lock).c_str());
  if (owner > 0 && ::kill(owner, 0) != 0) {
    std::error_code ignored;
    std::filesystem::remove(socket(), ignored);
    std::filesystem::remove(lock, ignored);
  }
}

std::string XServer::xrandr(const std::vector<std::string>& arguments) {
  std::vector<std::string> command{"xrandr"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  std::string output = runSuccessfully(command, environment());
  sync();
  return output;
}

std::vector<XrandrOutput> XServer::outputs() {
  static const std::regex kOutput(R"(^(\S+) (?:dis)?connected( primary)?(?: (\d+)x(\d+)\+(-?\d+)\+(-?\d+))?.*)");
  static const std::regex kIdentifier(R"(^\tIdentifier: (0x[0-9a-f]+).*)");
  std::vector<XrandrOutput> outputs;
  std::smatch match;
  for (const std::string& line : linesOf(xrandr({"--verbose"}))) {
    if (std::regex_match(line, match, kOutput)) {
      outputs.push_back({match[1], 0, match[2].matched, {}});
      if (match[3].matched) {
        outputs.back().area = rectOf(match, 3);
      }
    } else if (!outputs.empty() && outputs.back().id == 0 && std::regex_match(line, match, kIdentifier)) {
      outputs.back().id = static_cast<std::uint32_t>(std::stoul(match[1], nullptr, 16));
    }
  }
  return outputs;
}

XrandrOutput XServer::output(const std::string& name) {
  for (const XrandrOutput& output : outputs()) {
    if (output.name == name) {
      return output;
    }
  }
  throw std::runtime_error("no output " + name);
}

std::vector<XrandrMonitor> XServer::monitors() {
  static const std::regex kMonitor(R"(^ *\d+: \+?(\*?)(\S+) (\d+)/\d+x(\d+)/\d+\+(-?\d+)\+(-?\d+) *(.*))");
  std::vector<XrandrMonitor> monitors;
  std::smatch match;
  for (const std::string& line : linesOf(xrandr({"--listactivemonitors"}))) {
    if (!std::regex_match(line, match, kMonitor)) {
      continue;
    }
    const bool primary = match[1].length() != 0;
    monitors.push_back({match[2], primary, rectOf(match, 3), {}});
    std::istringstream names(match[7]);
    for (std::string name; names >> name;) {
      monitors.back().outputs.push_back(name);
    }
  }
  return monitors;
}

void XServer::setResources(const std::string& text) {
  if (text.empty()) {
    runSuccessfully({"xrdb", "-remove"}, environment());
  } else {
    runSuccessfully({"xrdb", "-nocpp", "-load", "-"}, environment(), text);
  }
  sync();
}

void XServer::kill() { process_->kill(); }

void XServer::pause() { process_->signal(SIGSTOP); }

void XServer::resume() { process_->signal(SIGCONT); }

void XServer::sync() {
  std::free(xcb_get_input_focus_reply(connection_.get(), xcb_get_input_focus(connection_.get()), nullptr));
}

XorgServer::XorgServer(const std::string& display) {
  const auto configuration = directory() / "xorg.conf";
  std::ofstream(configuration) << kXorgConfiguration;
  start({xorgProgram(), "-config", configuration.string(), "-logfile", (directory() / "log").string(), "-novtswitch",
         "-sharevts", "-extension", "GLX"},
        display);
  for (const XrandrOutput& output : outputs()) {
    ids_[output.name] = output.id;
  }
}

std::string XorgServer::reservedDisplay() {
  constexpr int kFirst = 10000;  // far above the numbers that servers choose for themselves
  constexpr int kCount = 40000;
  return ":" + std::to_string(kFirst + getpid() % kCount);
}

void XorgServer::place(const std::vector<Placement>& placements) {
  std::vector<std::string> arguments;
  for (const auto& [output, area] : placements) {
    const std::string width = std::to_string(area.width);
    const std::string height = std::to_string(area.height);
    const std::string mode = "test-" + width + "x" + height;
    if (modes_.emplace(area.width, area.height).second) {
      const std::string clock = std::to_string((area.width + 40) * (area.height + 40) * 30 / 1e6);
      xrandr({"--newmode", mode, clock, width, std::to_string(area.width + 10), std::to_string(area.width + 20),
              std::to_string(area.width + 40), height, std::to_string(area.height + 10),
              std::to_string(area.height + 20), std::to_string(area.height + 40)});
    }
    if (output_modes_.insert(output + " " + mode).second) {
      xrandr({"--addmode", output, mode});
    }
    const std::string position = std::to_string(area.x) + "x" + std::to_string(area.y);
    arguments.insert(arguments.end(), {"--output", output, "--mode", mode, "--pos", position});
  }
  xrandr(arguments);
}

void XorgServer::setMode(const std::string& output, int width, int height, int x, int y) {
  place({{output, {width, height, x, y}}});
}

void XorgServer::off(const std::string& output) { xrandr({"--output", output, "--off"}); }

void XorgServer::makePrimary(const std::string& output) { xrandr({"--output", output, "--primary"}); }

void XorgServer::removePrimary() { xrandr({"--noprimary"}); }

void XorgServer::setEdid(const std::string& output, const EdidBytes& edid) {
  constexpr std::uint8_t kBytes = 8;
  xcb_randr_change_output_property(connection(), ids_.at(output), edidAtom(connection()), XCB_ATOM_INTEGER, kBytes,
                                   XCB_PROP_MODE_REPLACE, static_cast<std::uint32_t>(edid.size()), edid.data());
  sync();
}

void XorgServer::removeEdid(const std::string& output) {
  xcb_randr_delete_output_property(connection(), ids_.at(output), edidAtom(connection()));
  sync();
}

void XorgServer::setMonitor(const std::string& name, const std::string& area, const std::string& outputs) {
  xrandr({"--setmonitor", name, area, outputs});
}

void XorgServer::removeMonitor(const std::string& name) { xrandr({"--delmonitor", name}); }

NestedServer::NestedServer(const XServer& outer, int width, int height) {
  start({"Xephyr", "-screen", std::to_string(width) + "x" + std::to_string(height)}, {}, outer.environment());
}

void NestedServer::rotate(const std::string& direction) { xrandr({"-o", direction}); }

std::string decodedName(const EdidBytes& edid) {
  const auto result = run({"edid-decode", "--skip-hex-dump"}, {}, std::string(edid.begin(), edid.end()));
  std::smatch match;
  return std::regex_search(result.output, match, std::regex("Display Product Name: '(.*)'")) ? match[1].str() : "";
}

}  // namespace support
