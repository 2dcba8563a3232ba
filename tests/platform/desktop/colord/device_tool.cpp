// A second process that uses colord's devices.
//
//   colord_device_tool current CONNECTOR          prints the file of the default and current profile
//   colord_device_tool assign CONNECTOR FILE      prints "true" or "false"
//   colord_device_tool exit-during-walk           leaves while a walk on another thread waits for colord
#include <cstdio>
#include <string>
#include <thread>

#include "platform/desktop/colord/displays.h"
#include "support/colord_calls.h"

using namespace colord_test;

namespace {

int exitDuringWalk(const ColordDevices& devices) {
  support::ColordCalls calls;
  std::thread([&devices] { walk(devices); }).detach();
  calls.waitForOne();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  static auto& display = *new Display(makeDisplay(1, argc > 2 ? argv[2] : "DP-1", firstEdid()));
  static auto& devices = *new ColordDevices(devicesFor({display}));
  const std::string command = argc > 1 ? argv[1] : "";
  if (command == "current" && argc == 3) {
    std::puts(currentFile(devices, display).value_or("").c_str());
    return 0;
  }
  if (command == "assign" && argc == 4) {
    std::puts(devices.assign(*display.uuid, argv[3]) ? "true" : "false");
    return 0;
  }
  return command == "exit-during-walk" ? exitDuringWalk(devices) : 2;
}
