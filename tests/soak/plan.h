// What the soak is made of: displays, files, calls. Both processes know it; the one that owns the servers makes it and
// passes it on its command line.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "soak/record.h"

namespace soak {

inline constexpr std::size_t kOutputs = 16;        ///< of the X server
inline constexpr std::size_t kFilesPerOutput = 4;  ///< what an output's profile is chosen from

/// Signatures of tags that are asked for: the first two are in every file, or in some; the third in none.
inline constexpr const char* kTags[] = {"desc", "QV02", "nono"};

struct Plan {
  double seconds = 600;
  double rate = 1000;  ///< calls a second
  std::size_t profiles = 10000;
  std::string folder;                  ///< of the profiles
  std::string pipe;                    ///< that the caller writes to
  std::vector<std::uint32_t> outputs;  ///< display numbers of the outputs, in their order
  std::vector<std::uint32_t> others;   ///< of the monitors that are no outputs

  std::size_t calls() const { return static_cast<std::size_t>(seconds * rate); }
  /// Files by number, see Profiles.
  std::size_t fileOf(std::size_t output, std::size_t choice) const {
    return (output * kFilesPerOutput + choice) % profiles;
  }
};

/// How many of ten thousand calls are calls of the method.
int shareOf(Method method);

/// Words of a command line, and back. Throws std::runtime_error for words that make no plan.
std::vector<std::string> wordsOf(const Plan& plan);
Plan planOf(const std::vector<std::string>& words);

}  // namespace soak
