// Other programs: tools that a test compares with, and servers that a test owns. Each is ended by its process id.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace support {

/// Variables set for a program on top of the test's own environment, as "NAME=VALUE".
using Environment = std::vector<std::string>;

struct ProcessResult {
  int exit_status = -1;  ///< -1 when the program was ended by a signal
  std::string output;
  std::string errors;
};

/// The default limit of a program's run.
inline constexpr std::chrono::seconds kRunLimit(30);

/// Runs a program found in PATH to its end, or for at most `limit`. Throws std::runtime_error when it cannot be started
/// or does not end.
ProcessResult run(const std::vector<std::string>& command, const Environment& environment = {},
                  const std::string& input = {}, std::chrono::seconds limit = kRunLimit);

/// As run(), but a program that fails throws too. Returns the output.
std::string runSuccessfully(const std::vector<std::string>& command, const Environment& environment = {},
                            const std::string& input = {}, std::chrono::seconds limit = kRunLimit);

/// A program that runs until it is stopped; it never outlives the thread that started it. Its output goes to a file.
class ChildProcess {
 public:
  /// When `status_fd` is not negative, the program has the writing end of a pipe at that descriptor; see
  /// readStatusLine().
  ChildProcess(const std::vector<std::string>& command, const Environment& environment,
               const std::filesystem::path& log, int status_fd = -1);
  /// Stops the program.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t pid() const { return pid_; }
  /// A line that the program wrote to its status descriptor; empty when it ended, or wrote none within the time.
  std::string readStatusLine(std::chrono::seconds limit);
  /// What the program has printed, or why it could not be started.
  std::string output() const;
  bool hasEnded();
  void signal(int number) const;
  /// Asks the program to end, by force if it has not after 5 seconds, and waits for it.
  void stop();
  /// Ends the program by force and waits for it.
  void kill();

 private:
  std::filesystem::path log_;
  pid_t pid_ = -1;
  int status_pipe_ = -1;
};

}  // namespace support
