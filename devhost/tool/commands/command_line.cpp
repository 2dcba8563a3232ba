#include "devhost/tool/commands/command_line.h"

#include <CLI/CLI.hpp>

#include <algorithm>

#include "devhost/tool/commands/help.h"

namespace devhost::tool {
namespace {

constexpr const char* kGlobalOptions =
    "The options of every command, before or behind it: --json, --check, --plugin PATH,\n"
    "--desktop wayland|x11|live|FILE; ostrevin-host --help explains them.";

/// The parser splits a text in brackets at its commas where several texts are expected. This byte in front of a text
/// after "call" prevents that; no meaningful argument begins with it.
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

/// Filled in by the parser.
struct Arguments {
  std::string method;
  std::vector<std::string> values;
  std::string display;
  std::string path;
  std::string tag;
  LayoutOptions layout;
  WatchOptions watch;
};

/// Binds a command's function to the arguments.
template <typename Run>
std::function<int(Session&)> with(const Arguments& arguments, Run run) {
  return [arguments, run](Session& session) { return run(session, arguments); };
}

/// A range without a text in the help.
template <typename Number>
CLI::Validator between(Number least, Number most) {
  return CLI::Range(least, most).description("");
}

CLI::App* addCommand(CLI::App& app, const char* name, const char* description) {
  CLI::App* const command = app.add_subcommand(name, description);
  command->footer(kGlobalOptions);
  return command;
}

void addDisplayCommands(CLI::App& app, Request& request, Arguments& arguments) {
  addCommand(app, "list", "The active displays: number, index, name, bounds, scale, profile");

  CLI::App* const layout = addCommand(app, "layout", "Draws the arrangement of the displays");
  layout
      ->add_option("-o,--output", arguments.layout.file,
                   "Write an SVG picture to a file, or to the standard output (-)")
      ->type_name("FILE.svg|-");
  layout->add_flag("--ascii", arguments.layout.ascii, "Draw with ASCII only, as in a locale without UTF-8");
  layout->add_option("--width", arguments.layout.width, "Columns to draw in, instead of the terminal's or 80")
      ->type_name("COLUMNS")
      ->check(between(kFewestLayoutColumns, kMostLayoutColumns));
  layout->get_option("--ascii")->excludes("--output");
  layout->get_option("--width")->excludes("--output");
  layout->callback([&] {
    request.shown = Shown::kDisplays;
    request.run =
        with(arguments, [](Session& session, const Arguments& given) { return drawLayout(session, given.layout); });
  });

  CLI::App* const watch = addCommand(app, "watch", "Prints a line when displays come or go");
  watch->add_option("--interval", arguments.watch.interval, "How often to look (default: 1)")
      ->type_name("SECONDS")
      ->check(between(kShortestInterval, kLongestInterval));
  watch->add_option("--count", arguments.watch.count, "End after this many changes")
      ->type_name("N")
      ->check(between(1U, UINT32_MAX));
  watch->add_option("--for", arguments.watch.duration, "End after this time")
      ->type_name("SECONDS")
      ->check(between(0.0, kLongestInterval));
  watch->callback([&] {
    request.shown = Shown::kNothing;
    request.run =
        with(arguments, [](Session& session, const Arguments& given) { return watchDisplays(session, given.watch); });
  });

  addCommand(app, "doctor", "What each source reports about the displays, and what is missing")->callback([&] {
    request.shown = Shown::kNothing;
    request.run = diagnose;
  });
}

bool readsProfilesOfDisplays(const std::string& method) {
  return method == "GetAssociatedProfilePathsArray" || method == "GetProfilePath" || method == "ListDisplayProfiles" ||
         method == "SetProfile";
}

void addMethodCommands(CLI::App& app, Request& request, Arguments& arguments) {
  addCommand(app, "methods", "The module as registered: name, version, and the methods' declarations")->callback([&] {
    request.shown = Shown::kNothing;
    request.run = listMethods;
  });

  CLI::App* const call = addCommand(app, "call", "Calls a method; prints its result and by-reference results");
  call->add_option("METHOD", arguments.method, "Name of the method")->required();
  call->add_option("ARG", arguments.values, "Arguments as the method declares them; by-reference ones may be left out");
  call->callback([&] {
    request.shown = readsProfilesOfDisplays(arguments.method) ? Shown::kProfiles : Shown::kDisplays;
    request.run = with(arguments, [](Session& session, const Arguments& given) {
      return callMethod(session, given.method, unmarked(given.values));
    });
  });
}

void addProfileCommands(CLI::App& app, Request& request, Arguments& arguments) {
  CLI::App* const profiles =
      addCommand(app, "profiles", "All installed profiles, or those of a display: name and path");
  profiles->add_option("DISPLAY", arguments.display, "Number of a display");
  profiles->callback([&] {
    request.shown = arguments.display.empty() ? Shown::kNothing : Shown::kProfiles;
    request.run =
        with(arguments, [](Session& session, const Arguments& given) { return listProfiles(session, given.display); });
  });

  CLI::App* const tag = addCommand(app, "tag", "Whether a profile file has a tag");
  tag->add_option("PATH", arguments.path, "A profile file")->required();
  tag->add_option("SIG", arguments.tag, "The tag's signature, four characters such as rXYZ")->required();
  tag->callback([&] {
    request.shown = Shown::kNothing;
    request.run = with(
        arguments, [](Session& session, const Arguments& given) { return testTag(session, given.path, given.tag); });
  });

  CLI::App* const qv02 = addCommand(app, "qv02", "Prints the text document in a profile file's QV02 tag");
  qv02->add_option("PATH", arguments.path, "A profile file")->required();
  qv02->callback([&] {
    request.shown = Shown::kNothing;
    request.run =
        with(arguments, [](Session& session, const Arguments& given) { return printQv02(session, given.path); });
  });
}

void addOptions(CLI::App& app, Options& options) {
  app.add_flag("--json", options.json, "Print a JSON document (docs/json.md)");
  app.add_flag("--check", options.check, "Report what the plugin was given or built and did not release");
  app.add_option("--plugin", options.plugin_path, "The plugin to load, instead of the one that comes with the tool")
      ->type_name("PATH");
  app.add_option("--desktop", options.desktop, "The computer's own desktop, or one that a file describes")
      ->type_name("wayland|x11|live|FILE");
  app.set_version_flag("--version", "ostrevin-host " OSTREVIN_VERSION);
}

}  // namespace

std::variant<Request, int> parseCommandLine(int count, char** texts) {
  CLI::App app(kDescription, "ostrevin-host");
  app.formatter(makeHelpFormatter());
  app.footer(kExitStatus);
  app.fallthrough();
  app.require_subcommand(0, 1);
  Request request;
  request.run = listDisplays;
  Arguments arguments;
  addOptions(app, request.options);
  addDisplayCommands(app, request, arguments);
  addMethodCommands(app, request, arguments);
  addProfileCommands(app, request, arguments);
  try {
    std::vector<std::string> words = keepWhole(count, texts);
    std::reverse(words.begin(), words.end());  // the order that the parser expects
    app.parse(std::move(words));
  } catch (const CLI::Success& help) {
    return app.exit(help);
  } catch (const CLI::ParseError& error) {
    Session::say(std::string(error.what()) + " (see --help)");
    return kWrongUsage;
  }
  return request;
}

}  // namespace devhost::tool
