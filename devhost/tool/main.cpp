// ostrevin-host: loads the plugin as a host does, calls its methods and shows the results.
#include <fcntl.h>
#include <unistd.h>

#include <iostream>

#include "devhost/tool/commands/command_line.h"
#include "devhost/tool/session/files.h"
#include "devhost/tool/session/system.h"

namespace devhost::tool {
namespace {

int run(const Request& request) {
  const std::string note = chooseDesktop(request.options.desktop, request.shown, findExampleDesktop());
  Session session(request.options);
  const int result = request.run(session);
  // Printed last: wrong usage prints its own line only.
  if (!note.empty()) {
    Session::say(note);
  }
  const int status = session.finish(result);
  std::cout.flush();
  if (!std::cout) {
    Session::say("the output could not be written");
    return kNotDone;
  }
  return status;
}

/// Like `run`; turns every error into one line and an exit status.
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

/// When the tool is started without one of its three streams, a file or connection opened later would get its number,
/// and messages would be written into it. The replacements opened here fail on every use.
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
