#include "soak/record.h"

#include <malloc.h>
#include <unistd.h>

#include <fstream>
#include <limits>
#include <sstream>

namespace soak {
namespace {

constexpr const char* kNames[kMethods] = {"SetObject",
                                          "ListAllInstalledProfiles",
                                          "ListDisplayProfiles",
                                          "GetName",
                                          "GetRect",
                                          "GetCGRect",
                                          "GetProfilePath",
                                          "GetIndex",
                                          "GetScale",
                                          "SetProfile",
                                          "DisplayIDForWindow",
                                          "GetInstalledProfilePathsArray",
                                          "GetAssociatedProfilePathsArray",
                                          "ICCTagExists",
                                          "QV02Read"};

constexpr const char* kCallLine = "call";
constexpr const char* kMemoryLine = "memory";

std::int64_t nanoseconds(Time time) {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count();
}

Time timeOf(std::int64_t nanoseconds) {
  return Time(std::chrono::duration_cast<Clock::duration>(std::chrono::nanoseconds(nanoseconds)));
}

}  // namespace

const char* nameOf(Method method) { return kNames[static_cast<std::size_t>(method)]; }

Memory measureMemory() {
  Memory memory;
  memory.time = Clock::now();
  std::uint64_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  memory.resident = pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
  const struct mallinfo2 info = mallinfo2();
  memory.allocated = info.uordblks + info.hblkhd;
  return memory;
}

std::string lineOf(const Call& call) {
  std::ostringstream line;
  line.precision(std::numeric_limits<double>::max_digits10);
  line << kCallLine << ' ' << static_cast<std::size_t>(call.method) << ' ' << nanoseconds(call.begin) << ' '
       << nanoseconds(call.end);
  for (const std::int64_t argument : call.arguments) {
    line << ' ' << argument;
  }
  for (const double number : call.numbers) {
    line << ' ' << number;
  }
  line << '\t' << call.text;
  return line.str();
}

std::string lineOf(const Memory& memory) {
  std::ostringstream line;
  line << kMemoryLine << ' ' << nanoseconds(memory.time) << ' ' << memory.resident << ' ' << memory.allocated;
  return line.str();
}

std::optional<Call> parseCall(const std::string& line) {
  const std::size_t tab = line.find('\t');
  std::istringstream stream(line.substr(0, tab));
  std::string kind;
  std::size_t method = 0;
  std::int64_t begin = 0;
  std::int64_t end = 0;
  Call call;
  stream >> kind >> method >> begin >> end;
  for (std::int64_t& argument : call.arguments) {
    stream >> argument;
  }
  for (double& number : call.numbers) {
    stream >> number;
  }
  if (kind != kCallLine || !stream || tab == std::string::npos || method >= kMethods) {
    return std::nullopt;
  }
  call.method = static_cast<Method>(method);
  call.begin = timeOf(begin);
  call.end = timeOf(end);
  call.text = line.substr(tab + 1);
  return call;
}

std::optional<Memory> parseMemory(const std::string& line) {
  std::istringstream stream(line);
  std::string kind;
  std::int64_t time = 0;
  Memory memory;
  stream >> kind >> time >> memory.resident >> memory.allocated;
  if (kind != kMemoryLine || !stream) {
    return std::nullopt;
  }
  memory.time = timeOf(time);
  return memory;
}

void Digest::add(const std::string& text) {
  constexpr std::uint64_t kPrime = 1099511628211U;
  for (const char character : text + '\n') {
    value_ = (value_ ^ static_cast<unsigned char>(character)) * kPrime;
  }
}

std::string Digest::text() const {
  std::ostringstream text;
  text << std::hex << value_;
  return text.str();
}

}  // namespace soak
