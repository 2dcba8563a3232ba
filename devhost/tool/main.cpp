// ostrevin-host: loads the plugin as a host does, and shows what its methods answer.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>
#include <iostream>

#include "devhost/tool/commands.h"
#include "devhost/tool/desktop_choice.h"
#include "devhost/tool/exit_status.h"
#include "devhost/tool/files.h"

namespace devhost::tool {
namespace {

constexpr const char* kDescription =
    "Loads the plugin as a host does, and shows what its methods answer.\n"
    "Without a command it lists the displays. With neither an X server nor a desktop file, the commands that are "
    "about\n"
    "displays (list, call, profiles DISPLAY) show the example desktop that comes with the tool.";

constexpr const char* kFooter =
    "Examples:\n"
    "  ostrevin-host                                the displays\n"
    "  ostrevin-host --json                         the same as a JSON document\n"
    "  ostrevin-host --desktop office.json list     the displays that a file describes\n"
    "  ostrevin-host call GetRect 1                 a method, by-reference parameters left out\n"
    "  ostrevin-host call DisplayIDForWindow -20 0 640 480\n"
    "  ostrevin-host call SetProfile 1 ./wide.icc   assigns a profile, and asks the display whether it has it\n"
    "  ostrevin-host profiles 1                     the profiles of one display\n"
    "  ostrevin-host tag wide.icc rXYZ && echo there\n"
    "  ostrevin-host qv02 wide.icc > document.xml\n"
    "  ostrevin-host --check profiles               and report what the plugin forgot to release\n"
    "Everything behind -- is an argument, also when it begins with a dash.\n"
    "\n"
    "Exit status:\n"
    "  0  done\n"
    "  1  the plugin cannot be loaded; or the file has no such tag or document; or the display does not report the\n"
    "     profile that it was given; or the output could not be written\n"
    "  2  wrong usage: an unknown option, method or argument, a wrong number of arguments, an unusable desktop file\n"
    "  3  --check found strings or other values that the plugin did not release, or releases that were wrong";

/// The parser splits a text in brackets at its commas where many texts are expected. Texts behind "call" are kept whole
/// by a byte in front, which cannot come from a command line that means something.
constexpr char kKeptWhole = '\x01';

std::vector<std::string> keepWhole(int count, char** texts) {
  std::vector<std::string> kept(texts + 1, texts + count);
  bool in_call = false;
  for (std::string& text : kept) {
    if (in_call && !text.empty() && text.front() == '[') {
      text.insert(text.begin(), kKeptWhole);
    }
    in_call = in_call || text == "call";
  }
  return kept;
}

std::vector<std::string> unmarked(std::vector<std::string> texts) {
  for (std::string& text : texts) {
    if (!text.empty() && text.front() == kKeptWhole) {
      text.erase(text.begin());
    }
  }
  return texts;
}

/// What the command line asks for.
struct Request {
  Options options;
  bool needs_displays = true;
  std::function<int(Session&)> run = listDisplays;

  std::string method;
  std::vector<std::string> arguments;
  std::string display;
  std::string path;
  std::string tag;
};

void addCommands(CLI::App& app, Request& request) {
  app.add_subcommand("list", "The active displays: number, index, name, bounds, scale, profile");
  app.add_subcommand("methods", "The module as registered: name, version, and the methods' declarations in order")
      ->callback([&] {
        request.needs_displays = false;
        request.run = listMethods;
      });

  CLI::App* const call = app.add_subcommand("call", "Calls a method; prints its result and by-reference results");
  call->add_option("METHOD", request.method, "Name of the method")->required();
  call->add_option("ARG", request.arguments,
                   "Arguments as the method declares them; by-reference ones may be left out");
  call->callback([&] {
    request.run = [&](Session& session) { return callMethod(session, request.method, unmarked(request.arguments)); };
  });

  CLI::App* const profiles =
      app.add_subcommand("profiles", "All installed profiles, or those of a display: name and path");
  profiles->add_option("DISPLAY", request.display, "Number of a display");
  profiles->callback([&] {
    request.needs_displays = !request.display.empty();
    request.run = [&](Session& session) { return listProfiles(session, request.display); };
  });

  CLI::App* const tag = app.add_subcommand("tag", "Whether a profile file has a tag");
  tag->add_option("PATH", request.path, "A profile file")->required();
  tag->add_option("SIG", request.tag, "The tag's signature, four characters such as rXYZ")->required();
  tag->callback([&] {
    request.needs_displays = false;
    request.run = [&](Session& session) { return testTag(session, request.path, request.tag); };
  });

  CLI::App* const qv02 = app.add_subcommand("qv02", "Prints the text document in a profile file's QV02 tag");
  qv02->add_option("PATH", request.path, "A profile file")->required();
  qv02->callback([&] {
    request.needs_displays = false;
    request.run = [&](Session& session) { return printQv02(session, request.path); };
  });
}

void addOptions(CLI::App& app, Options& options) {
  app.add_flag("--json", options.json, "Print a JSON document (docs/json.md)");
  app.add_flag("--check", options.check, "Report what the plugin was given or built and did not release");
  app.add_option("--plugin", options.plugin_path, "The plugin to load, instead of the one that comes with the tool")
      ->type_name("PATH");
  app.add_option("--desktop", options.desktop, "The computer's own desktop, or one that a file describes")
      ->type_name("live|FILE");
  app.set_version_flag("--version", "ostrevin-host " OSTREVIN_VERSION);
}

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

int main(int count, char** texts) {
  CLI::App app(kDescription, "ostrevin-host");
  app.footer(kFooter);
  app.fallthrough();
  app.require_subcommand(0, 1);
  Request request;
  addOptions(app, request.options);
  addCommands(app, request);
  try {
    std::vector<std::string> arguments = keepWhole(count, texts);
    std::reverse(arguments.begin(), arguments.end());  // the order that the parser asks for
    app.parse(std::move(arguments));
  } catch (const CLI::Success& help) {
    return app.exit(help);
  } catch (const CLI::ParseError& error) {
    Session::say(std::string(error.what()) + " (--help says more)");
    return kWrongUsage;
  }
  return runGuarded(request);
}

}  // namespace
}  // namespace devhost::tool

int main(int count, char** texts) { return devhost::tool::main(count, texts); }
