#include "devhost/tool/terminal.h"

#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace test_support {

std::string runOnTerminal(const std::vector<std::string>& command, unsigned short columns) {
  std::vector<std::string> texts = command;
  std::vector<char*> arguments;
  for (std::string& text : texts) {
    arguments.push_back(text.data());
  }
  arguments.push_back(nullptr);

  struct winsize size {};
  size.ws_col = columns;
  int terminal = -1;
  const pid_t pid = forkpty(&terminal, nullptr, nullptr, columns == 0 ? nullptr : &size);
  if (pid < 0) {
    throw std::runtime_error("no terminal");
  }
  if (pid == 0) {
    execv(arguments[0], arguments.data());
    _exit(127);
  }
  std::string output;
  std::array<char, 4096> buffer;
  ssize_t count = 0;
  // Reading fails when the program has closed its side.
  while ((count = read(terminal, buffer.data(), buffer.size())) > 0) {
    output.append(buffer.data(), static_cast<std::size_t>(count));
  }
  close(terminal);
  int status = 0;
  if (waitpid(pid, &status, 0) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    throw std::runtime_error(command.front() + " failed: " + output);
  }
  return output;
}

}  // namespace test_support
