#include "devhost/tool/commands/help.h"

#include <iterator>

namespace devhost::tool {
namespace {

constexpr std::size_t kColumnWidth = 26;

struct Example {
  const char* command;
  const char* line;
};

constexpr const char* kWholeTool = "ostrevin-host";

constexpr Example kExamples[] = {
    {kWholeTool, "ostrevin-host                              the displays of this computer"},
    {kWholeTool, "ostrevin-host layout                       the same as a picture"},
    {kWholeTool, "ostrevin-host doctor                       what is missing, and how to fix it"},
    {kWholeTool, "ostrevin-host call GetScale 1              a method, with its arguments"},
    {kWholeTool, "ostrevin-host call SetProfile 1 wide.icc   assigns a profile to a display"},
    {kWholeTool, "ostrevin-host --desktop office.json list   the displays that a file describes"},
    {kWholeTool, "ostrevin-host layout --help                more about one command"},

    {"list", "ostrevin-host list"},
    {"list", "ostrevin-host list --json                       as a JSON document"},
    {"list", "ostrevin-host list --desktop office.json        the displays that a file describes"},

    {"layout", "ostrevin-host layout"},
    {"layout", "ostrevin-host layout --width 120 > layout.txt"},
    {"layout", "ostrevin-host layout -o layout.svg              a picture to scale, for light and dark pages"},
    {"layout", "ostrevin-host layout -o - | rsvg-convert > layout.png"},

    {"watch", "ostrevin-host watch                             until Ctrl-C"},
    {"watch", "ostrevin-host watch --count 1 --for 60          exit status 1 if nothing changes in a minute"},
    {"watch", "ostrevin-host watch --interval 0.2 --json       a JSON object a line"},

    {"doctor", "ostrevin-host doctor"},
    {"doctor", "ostrevin-host doctor > report.txt || echo something is missing"},
    {"doctor", "ostrevin-host doctor --json"},

    {"methods", "ostrevin-host methods"},
    {"methods", "ostrevin-host methods --json"},
    {"methods", "ostrevin-host methods --plugin other.so         the methods of another plugin"},

    {"call", "ostrevin-host call GetRect 1                    by-reference parameters are left out"},
    {"call", "ostrevin-host call DisplayIDForWindow -20 0 640 480"},
    {"call", "ostrevin-host call SetProfile 1 ./wide.icc      then checks that the display has it"},
    {"call", "ostrevin-host call ICCTagExists -- -odd-.icc rXYZ"},

    {"profiles", "ostrevin-host profiles                          all that are installed"},
    {"profiles", "ostrevin-host profiles 1                        those of display 1"},
    {"profiles", "ostrevin-host --check profiles                  and what the plugin did not release"},

    {"tag", "ostrevin-host tag wide.icc rXYZ && echo there"},
    {"tag", "ostrevin-host tag wide.icc vcgt --json"},

    {"qv02", "ostrevin-host qv02 wide.icc > document.xml"},
    {"qv02", "ostrevin-host qv02 wide.icc --json"},
};

class Formatter : public CLI::Formatter {
 public:
  Formatter() {
    column_width(kColumnWidth);
    label("TEXT", "");
  }

  std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
    return make_description(app) + "\nExamples:\n" + examplesOf(app->get_name()) + "\n" + make_usage(app, name) +
           make_positionals(app) + make_groups(app, mode) + make_subcommands(app, mode) + "\n" + make_footer(app);
  }
};

}  // namespace

const char* const kDescription =
    "Loads the plugin as a host does, calls its methods and shows the results. Without a command\n"
    "it lists the displays. With no Wayland compositor, X server or desktop file, the commands that\n"
    "show displays (list, layout, call, profiles DISPLAY) use the example desktop.";

const char* const kExitStatus =
    "Everything after -- is an argument, even if it begins with a dash.\n"
    "\n"
    "Exit status:\n"
    "  0  done; doctor: all is well\n"
    "  1  the plugin cannot be loaded; the file has no such tag or document; the display does not\n"
    "     report the assigned profile; doctor found something missing; watch saw fewer changes\n"
    "     than --count; the output could not be written\n"
    "  2  wrong usage: an unknown option, method or argument, a wrong number of arguments, an\n"
    "     unusable desktop file\n"
    "  3  --check found strings or other values that the plugin did not release, or wrong releases";

std::string examplesOf(const std::string& command) {
  std::string lines;
  for (const Example& example : kExamples) {
    if (command == example.command) {
      lines += std::string("  ") + example.line + '\n';
    }
  }
  return lines;
}

std::shared_ptr<CLI::FormatterBase> makeHelpFormatter() { return std::make_shared<Formatter>(); }

}  // namespace devhost::tool
