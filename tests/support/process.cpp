#include "support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>
#include <utility>

extern char** environ;

namespace support {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kNotStarted = 127;

std::runtime_error systemError(const std::string& what) {
  return std::runtime_error(what + ": " + std::strerror(errno));
}

struct Pipe {
  Pipe() {
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
      throw systemError("pipe");
    }
  }
  ~Pipe() {
    closeEnd(0);
    closeEnd(1);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  void closeEnd(int end) {
    if (ends[end] >= 0) {
      close(std::exchange(ends[end], -1));
    }
  }

  std::array<int, 2> ends{-1, -1};
};

/// Strings as exec wants them; made before fork, after which nothing may be allocated.
class CStrings {
 public:
  explicit CStrings(std::vector<std::string> strings) : strings_(std::move(strings)) {
    for (std::string& string : strings_) {
      pointers_.push_back(string.data());
    }
    pointers_.push_back(nullptr);
  }
  char* const* data() const { return pointers_.data(); }

 private:
  std::vector<std::string> strings_;
  std::vector<char*> pointers_;
};

std::string nameOf(const std::string& variable) { return variable.substr(0, variable.find('=') + 1); }

std::vector<std::string> mergedEnvironment(const Environment& added) {
  std::vector<std::string> merged;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    bool replaced = false;
    for (const std::string& other : added) {
      replaced = replaced || nameOf(other) == nameOf(*variable);
    }
    if (!replaced) {
      merged.emplace_back(*variable);
    }
  }
  merged.insert(merged.end(), added.begin(), added.end());
  return merged;
}

/// Starts a program; `descriptors` are pairs (ours, the child's).
pid_t start(const std::vector<std::string>& command, const Environment& environment,
            const std::vector<std::pair<int, int>>& descriptors) {
  const CStrings arguments(command);
  const CStrings variables(mergedEnvironment(environment));
  const pid_t pid = fork();
  if (pid < 0) {
    throw systemError("fork");
  }
  if (pid != 0) {
    return pid;
  }
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  for (const auto& [ours, childs] : descriptors) {
    dup2(ours, childs);
  }
  execvpe(arguments.data()[0], arguments.data(), variables.data());
  for (const char* text :
       {static_cast<const char*>(arguments.data()[0]), " cannot be started: ", strerrordesc_np(errno)}) {
    static_cast<void>(write(STDERR_FILENO, text, std::strlen(text)));
  }
  _exit(kNotStarted);
}

void writeAll(int fd, const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = write(fd, text.data() + written, text.size() - written);
    if (count < 0) {
      return;  // the program does not read its input
    }
    written += static_cast<std::size_t>(count);
  }
}

/// Reads both ends until they are closed; false when that takes too long.
bool readAll(int output, int errors, std::chrono::seconds limit, ProcessResult& result) {
  const auto deadline = Clock::now() + limit;
  std::array<pollfd, 2> ends{pollfd{output, POLLIN, 0}, pollfd{errors, POLLIN, 0}};
  std::array<std::string*, 2> texts{&result.output, &result.errors};
  while (ends[0].fd >= 0 || ends[1].fd >= 0) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0 || poll(ends.data(), ends.size(), static_cast<int>(left.count())) <= 0) {
      return false;
    }
    for (std::size_t i = 0; i < ends.size(); ++i) {
      if (ends[i].fd < 0 || ends[i].revents == 0) {
        continue;
      }
      std::array<char, 4096> buffer;
      const ssize_t count = read(ends[i].fd, buffer.data(), buffer.size());
      if (count <= 0) {
        ends[i].fd = -1;
      } else {
        texts[i]->append(buffer.data(), static_cast<std::size_t>(count));
      }
    }
  }
  return true;
}

}  // namespace

ProcessResult run(const std::vector<std::string>& command, const Environment& environment, const std::string& input,
                  std::chrono::seconds limit) {
  Pipe in;
  Pipe out;
  Pipe err;
  const pid_t pid = start(command, environment, {{in.ends[0], 0}, {out.ends[1], 1}, {err.ends[1], 2}});
  in.closeEnd(0);
  out.closeEnd(1);
  err.closeEnd(1);
  writeAll(in.ends[1], input);
  in.closeEnd(1);
  ProcessResult result;
  const bool ended = readAll(out.ends[0], err.ends[0], limit, result);
  if (!ended) {
    kill(pid, SIGKILL);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  if (!ended) {
    throw std::runtime_error(command.front() + " does not end");
  }
  result.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  if (result.exit_status == kNotStarted) {
    throw std::runtime_error(result.errors);
  }
  return result;
}

std::string runSuccessfully(const std::vector<std::string>& command, const Environment& environment,
                            const std::string& input, std::chrono::seconds limit) {
  ProcessResult result = run(command, environment, input, limit);
  if (result.exit_status == 0) {
    return std::move(result.output);
  }
  std::string line;
  for (const std::string& word : command) {
    line += word + " ";
  }
  throw std::runtime_error(line + "failed: " + result.errors + result.output);
}

ChildProcess::ChildProcess(const std::vector<std::string>& command, const Environment& environment,
                           const std::filesystem::path& log, int status_fd)
    : log_(log) {
  const int log_fd = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (log_fd < 0) {
    throw systemError(log.string());
  }
  Pipe status;
  std::vector<std::pair<int, int>> descriptors{{log_fd, 1}, {log_fd, 2}};
  if (status_fd >= 0) {
    descriptors.emplace_back(status.ends[1], status_fd);
  }
  pid_ = start(command, environment, descriptors);
  close(log_fd);
  status_pipe_ = std::exchange(status.ends[0], -1);
}

ChildProcess::~ChildProcess() {
  stop();
  close(status_pipe_);
}

std::string ChildProcess::readStatusLine(std::chrono::seconds limit) {
  const auto deadline = Clock::now() + limit;
  std::string line;
  while (line.empty() || line.back() != '\n') {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd end{status_pipe_, POLLIN, 0};
    char character = 0;
    if (left.count() <= 0 || poll(&end, 1, static_cast<int>(left.count())) <= 0 ||
        read(status_pipe_, &character, 1) != 1) {
      return {};
    }
    line += character;
  }
  line.pop_back();
  return line;
}

std::string ChildProcess::output() const {
  std::ifstream file(log_);
  return {std::istreambuf_iterator<char>(file), {}};
}

void ChildProcess::signal(int number) const {
  if (pid_ > 0) {
    ::kill(pid_, number);
  }
}

bool ChildProcess::hasEnded() {
  if (pid_ > 0 && waitpid(pid_, nullptr, WNOHANG) != 0) {
    pid_ = -1;
  }
  return pid_ <= 0;
}

void ChildProcess::stop() {
  constexpr std::chrono::seconds kLimit(5);
  constexpr std::chrono::milliseconds kPollInterval(2);
  const auto deadline = Clock::now() + kLimit;
  signal(SIGTERM);
  signal(SIGCONT);
  while (!hasEnded() && Clock::now() < deadline) {
    std::this_thread::sleep_for(kPollInterval);
  }
  kill();
}

void ChildProcess::kill() {
  if (!hasEnded()) {
    signal(SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
  }
}

}  // namespace support
