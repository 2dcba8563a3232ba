#include "machine.h"

#include <benchmark/benchmark.h>
#include <gnu/libc-version.h>
#include <sys/utsname.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>

namespace bench {
namespace {

/// The value behind the first line of a file that begins with `name`; "unknown" without one.
std::string valueIn(const char* path, const std::string& name) {
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    const auto separator = line.find_first_of(":=");
    if (line.starts_with(name) && separator != std::string::npos) {
      const auto begin = line.find_first_not_of(" \t\"", separator + 1);
      const auto end = line.find_last_not_of(" \t\"");
      return begin == std::string::npos ? "" : line.substr(begin, end - begin + 1);
    }
  }
  return "unknown";
}

std::string gibibytes(const std::string& kibibytes) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.1f GiB", std::strtod(kibibytes.c_str(), nullptr) / (1 << 20));
  return text.data();
}

std::string today() {
  const std::time_t now = std::time(nullptr);
  std::tm date{};
  gmtime_r(&now, &date);
  std::array<char, 16> text;
  std::strftime(text.data(), text.size(), "%Y-%m-%d", &date);
  return text.data();
}

std::string loadAverage() {
  std::array<double, 3> loads{};
  if (getloadavg(loads.data(), loads.size()) < 1) {
    return "unknown";
  }
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%.2f, %.2f, %.2f (1, 5, 15 minutes)", loads[0], loads[1], loads[2]);
  return text.data();
}

}  // namespace

std::vector<std::string> describeMachine() {
  utsname system{};
  uname(&system);
  const std::string hypervisor =
      valueIn("/proc/cpuinfo", "flags").find(" hypervisor") != std::string::npos ? ", in a virtual machine" : "";
  return {
      "Processor: " + valueIn("/proc/cpuinfo", "model name") + ", " + valueIn("/proc/cpuinfo", "cpu MHz") + " MHz, " +
          std::to_string(benchmark::CPUInfo::Get().num_cpus) + " cores" + hypervisor,
      "Memory: " + gibibytes(valueIn("/proc/meminfo", "MemTotal")),
      "System: " + valueIn("/etc/os-release", "PRETTY_NAME") + ", " + system.sysname + " " + system.release +
          ", glibc " + gnu_get_libc_version(),
      std::string("Compiler: ") + __VERSION__ + ", build type " OSTREVIN_BUILD_TYPE,
      "Load at the start: " + loadAverage(),
      "Date: " + today(),
  };
}

}  // namespace bench
