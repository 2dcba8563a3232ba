// How far a long list has come, on the terminal of the standard error output; nothing where that is no terminal.
#pragma once

#include <cstddef>
#include <string>

namespace devhost::tool {

/// Shorter lists show no progress.
inline constexpr std::size_t kLongList = 1000;

class Progress {
 public:
  /// `what` is counted, such as "profiles".
  explicit Progress(std::string what);
  /// Clears the line.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// One more.
  void step();

 private:
  std::string what_;
  std::size_t count_ = 0;
  bool on_terminal_;
  bool shown_ = false;
};

}  // namespace devhost::tool
