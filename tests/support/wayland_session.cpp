#include "support/wayland_session.h"

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <nlohmann/json.hpp>
#include <regex>
#include <stdexcept>
#include <thread>

namespace support {
namespace {

constexpr std::chrono::seconds kStartLimit(60);
constexpr int kMostAttempts = 10;
constexpr std::chrono::milliseconds kStartInterval(20);
constexpr uid_t kNobody = 65534;
constexpr const char* kConfiguration = "xwayland disable\nseat * hide_cursor 1000\n";

}  // namespace

std::vector<std::string> asOrdinaryUser(const std::string& folder, std::vector<std::string> command) {
  if (geteuid() == 0) {
    if (chown(folder.c_str(), kNobody, kNobody) != 0) {
      throw std::runtime_error("cannot give away " + folder);
    }
    const std::string id = std::to_string(kNobody);
    // The signal, which ChildProcess has set, is cleared with the change of the user.
    const std::vector<std::string> prefix = {"setpriv",        "--reuid",     id,    "--regid", id,
                                             "--clear-groups", "--pdeathsig", "KILL"};
    command.insert(command.begin(), prefix.begin(), prefix.end());
  }
  return command;
}

SwaySession::SwaySession(int outputs) {
  folder_.write("config", kConfiguration);
  start(outputs);
}

SwaySession::SwaySession(int outputs, const SwaySession& outer) : outer_(outer.socket()) {
  folder_.write("config", kConfiguration);
  start(outputs);
}

SwaySession::~SwaySession() { process_->stop(); }

Environment SwaySession::environment() const {
  return {"WAYLAND_DISPLAY=" + socket(), "XDG_RUNTIME_DIR=" + folder_.path(),
          "DISPLAY=", "SWAYSOCK=" + folder_.path("ipc")};
}

void SwaySession::start(int outputs) {
  const Environment variables = {"XDG_RUNTIME_DIR=" + folder_.path(),
                                 "HOME=" + folder_.path(),
                                 "SWAYSOCK=" + folder_.path("ipc"),
                                 "WAYLAND_DISPLAY=" + outer_,
                                 "DISPLAY=",
                                 std::string("WLR_BACKENDS=headless") + (outer_.empty() ? "" : ",wayland"),
                                 "WLR_WL_OUTPUTS=1",
                                 "WLR_RENDERER=pixman",
                                 "WLR_LIBINPUT_NO_DEVICES=1",
                                 "WLR_HEADLESS_OUTPUTS=" + std::to_string(outputs)};
  process_ = std::make_unique<ChildProcess>(asOrdinaryUser(folder_.path(), {"sway", "-c", folder_.path("config")}),
                                            variables, folder_.path("log"));
  const auto deadline = std::chrono::steady_clock::now() + kStartLimit;
  while (run({"swaymsg", "-t", "get_outputs"}, environment()).exit_status != 0) {
    if (process_->hasEnded() || std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("sway does not start:\n" + process_->output());
    }
    std::this_thread::sleep_for(kStartInterval);
  }
}

std::string SwaySession::swaymsg(std::vector<std::string> arguments) const {
  if (!arguments.front().starts_with('-')) {
    // One argument, since a negative number would be taken for an option.
    std::string command;
    for (const std::string& word : arguments) {
      command += word + ' ';
    }
    arguments = {command};
  }
  arguments.insert(arguments.begin(), {"swaymsg", "-r"});
  // swaymsg waits for a reply for 3 seconds only, which a busy computer exceeds. A command may then have been executed.
  ProcessResult result;
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    result = run(arguments, environment());
    if (result.exit_status == 0) {
      return result.output;
    }
    if (result.errors.find("Unable to receive IPC response") == std::string::npos) {
      break;
    }
  }
  throw std::runtime_error("swaymsg failed: " + result.errors + result.output);
}

void SwaySession::createOutput() const {
  const std::size_t before = outputs().size();
  run({"swaymsg", "create_output"}, environment());
  const auto deadline = std::chrono::steady_clock::now() + kStartLimit;
  while (outputs().size() == before) {
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("sway creates no output:\n" + process_->output());
    }
  }
}

void SwaySession::closeWindows() const { swaymsg({"[app_id=.*]", "kill"}); }

std::vector<SwayOutput> SwaySession::outputs() const {
  std::vector<SwayOutput> outputs;
  for (const auto& output : nlohmann::json::parse(swaymsg({"-t", "get_outputs"}))) {
    const auto& area = output["rect"];
    outputs.push_back({output["name"], output["active"], area["x"], area["y"], area["width"], area["height"],
                       output.value("scale", 0.0)});
  }
  return outputs;
}

std::map<std::string, std::uint32_t> SwaySession::numbers() const {
  const std::string globals = runSuccessfully({"wayland-info"}, environment());
  const std::regex output(R"(interface: 'wl_output',\s+version:\s+\d+, name:\s+(\d+)\n\s+name: (\S+))");
  std::map<std::string, std::uint32_t> numbers;
  for (std::sregex_iterator match(globals.begin(), globals.end(), output), end; match != end; ++match) {
    numbers[(*match)[2]] = static_cast<std::uint32_t>(std::stoul((*match)[1]));
  }
  return numbers;
}

void SwaySession::kill() { process_->kill(); }

void SwaySession::restart(int outputs) {
  process_->kill();
  unlink(folder_.path("ipc").c_str());
  start(outputs);
}

void SwaySession::pause() const { process_->signal(SIGSTOP); }

void SwaySession::resume() const { process_->signal(SIGCONT); }

WestonSession::WestonSession(const std::vector<std::string>& options) {
  std::vector<std::string> command = {"weston", "--backend=headless-backend.so", "--shell=kiosk-shell.so",
                                      "--no-config", "--socket=wayland-1"};
  command.insert(command.end(), options.begin(), options.end());
  process_ = std::make_unique<ChildProcess>(command, environment(), folder_.path("log"));
  const auto deadline = std::chrono::steady_clock::now() + kStartLimit;
  while (run({"wayland-info"}, environment()).exit_status != 0) {
    if (process_->hasEnded() || std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("weston does not start:\n" + process_->output());
    }
    std::this_thread::sleep_for(kStartInterval);
  }
}

WestonSession::~WestonSession() { process_->stop(); }

std::string WestonSession::globals() const { return runSuccessfully({"wayland-info"}, environment()); }

Environment WestonSession::environment() const {
  return {"WAYLAND_DISPLAY=wayland-1", "XDG_RUNTIME_DIR=" + folder_.path(), "HOME=" + folder_.path(), "DISPLAY="};
}

}  // namespace support
