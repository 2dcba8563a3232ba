// Runs a check in a child process as a user whom file permissions stop. For tests that may themselves run as root.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace support {

/// What `check` answered in the child; false, too, when the child could not give up its rights or did not end in order.
inline bool holdsUnprivileged(const std::function<bool()>& check) {
  constexpr unsigned kNobody = 65534;
  const pid_t child = fork();
  if (child == 0) {
    const bool unprivileged = geteuid() != 0 || (setgid(kNobody) == 0 && setuid(kNobody) == 0);
    _exit(unprivileged && check() ? 0 : 1);
  }
  int status = 0;
  return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace support
