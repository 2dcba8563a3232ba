// What the process that calls the plugin tells the process that knows what is true: one line for each call, and how
// much memory it has. Times are of the monotonic clock, which all processes share.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace soak {

using Clock = std::chrono::steady_clock;
using Time = Clock::time_point;

/// In the order of the module's table.
enum class Method : std::size_t {
  kSetObject,
  kListAllInstalledProfiles,
  kListDisplayProfiles,
  kGetName,
  kGetRect,
  kGetCGRect,
  kGetProfilePath,
  kGetIndex,
  kGetScale,
  kSetProfile,
  kDisplayIDForWindow,
  kGetInstalledProfilePathsArray,
  kGetAssociatedProfilePathsArray,
  kICCTagExists,
  kQV02Read,
};
inline constexpr std::size_t kMethods = 15;
const char* nameOf(Method method);

/// A call. What the arguments and the answer are is said at each method of Caller.
struct Call {
  Method method = Method::kSetObject;
  Time begin;
  Time end;
  std::array<std::int64_t, 4> arguments{};
  std::array<double, 4> numbers{};
  std::string text;  ///< without tabs and line ends
};

struct Memory {
  Time time;
  std::uint64_t resident = 0;   ///< bytes
  std::uint64_t allocated = 0;  ///< bytes that malloc has given out, of all arenas
};
/// Of this process.
Memory measureMemory();

/// One line, without its end.
std::string lineOf(const Call& call);
std::string lineOf(const Memory& memory);
/// Nothing when the line is of another kind.
std::optional<Call> parseCall(const std::string& line);
std::optional<Memory> parseMemory(const std::string& line);

/// The lines between the phases.
inline constexpr const char* kReady = "ready";  ///< every display has a name and a profile; what follows is measured
inline constexpr const char* kDone = "done";

/// A number for a sequence of texts.
class Digest {
 public:
  void add(const std::string& text);
  std::string text() const;

 private:
  std::uint64_t value_ = 14695981039346656037U;  // FNV-1a
};

}  // namespace soak
