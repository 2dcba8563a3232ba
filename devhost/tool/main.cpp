// ostrevin-host: loads the plugin as a host does, and shows what its methods answer.
#include <fcntl.h>
#include <unistd.h>

#include <iostream>

#include "devhost/tool/commands/command_line.h"
#include "devhost/tool/desktop_choice.h"
#include "devhost/tool/files.h"
#include "devhost/tool/terminal/exit_status.h"

namespace devhost::tool {
namespace {

int run(const Request& request) {
  const std::string note = chooseDesktop(request.options.desktop, request.needs_displays, findExampleDesktop());
  Session session(request.options);
  const int answered = request.run(session);
  // Said only now: a wrong usage is answered by the one line that is about it.
  if (!note.empty()) {
    Session::say(note);
  }
  const int status = session.finish(answered);
  std::cout.flush();
  if (!std::cout) {
    Session::say("the output could not be written");
    return kNotDone;
  }
  return status;
}

/// `run`, with every error made one line and an exit status.
int runGuarded(const Request& request) {
  try {
    return run(request);
  } catch (const ValueError& error) {
    Session::say(error.what());
    return kWrongUsage;
  } catch (const DesktopError& error) {
    Session::say(error.what());
    return kWrongUsage;
  } catch (const std::exception& error) {
    Session::say(error.what());
    return kNotDone;
  }
}

/// Where the tool was started without one of its three streams, its number must not become that of a file or a
/// connection, into which messages would then go. What is opened here fails when it is used.
void reserveStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) < 0) {
      open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);  // the lowest free number: this one
    }
  }
}

int main(int count, char** texts) {
  reserveStandardStreams();
  const auto parsed = parseCommandLine(count, texts);
  const auto* const request = std::get_if<Request>(&parsed);
  return request == nullptr ? std::get<int>(parsed) : runGuarded(*request);
}

}  // namespace
}  // namespace devhost::tool

int main(int count, char** texts) { return devhost::tool::main(count, texts); }
