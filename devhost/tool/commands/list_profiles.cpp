#include <algorithm>
#include <iostream>
#include <optional>

#include "devhost/language/arguments.h"
#include "devhost/tool/commands/commands.h"
#include "devhost/tool/session/displays.h"
#include "devhost/tool/terminal/json.h"
#include "devhost/tool/terminal/terminal.h"
#include "devhost/tool/terminal/waiting.h"

namespace devhost::tool {
namespace {

constexpr const char* kProfileFound = "DisplayProfileFound( name as String, path as String )";

struct Profile {
  std::string name;
  std::string path;
};

/// Throws ValueError.
std::optional<std::uint32_t> parseDisplay(const std::string& text) {
  if (text.empty()) {
    return std::nullopt;
  }
  const Values number = parseArguments(parseDeclaration("profiles(display As UInt32)"), {text});
  return static_cast<std::uint32_t>(number.front().unsignedNumber());
}

/// The events of one listing, in their order.
std::vector<Profile> collect(Session& session, std::optional<std::uint32_t> display) {
  std::vector<Profile> profiles;
  Progress progress("profiles");
  const Ref<Object> listener = session.host().makeObject("Listener");
  session.host().addMethod(*listener, kProfileFound, [&](Object&, Values& arguments) -> Value {
    profiles.push_back({arguments[0].text(), arguments[1].text()});
    progress.step();
    return {};
  });
  const Plugin& plugin = session.plugin();
  plugin.call("SetObject", {listener});
  if (display) {
    const Waiting waiting("the profiles of display " + std::to_string(*display));
    plugin.call("ListDisplayProfiles", {*display});
  } else {
    plugin.call("ListAllInstalledProfiles");
  }
  plugin.call("SetObject", {nullptr});
  return profiles;
}

void warnOfUnknownDisplay(std::uint32_t display) {
  const std::vector<std::uint32_t> active = activeDisplayNumbers();
  if (std::find(active.begin(), active.end(), display) == active.end()) {
    Session::say("no active display has the number " + std::to_string(display));
  }
}

void printAsJson(std::optional<std::uint32_t> display, const std::vector<Profile>& profiles) {
  Json document = jsonDocument("profiles");
  document["display"] = display ? Json(*display) : Json(nullptr);
  document["profiles"] = Json::array();
  for (const Profile& profile : profiles) {
    document["profiles"].push_back({{"name", profile.name}, {"path", profile.path}});
  }
  printJson(document);
}

}  // namespace

int listProfiles(Session& session, const std::string& display_text) {
  const std::optional<std::uint32_t> display = parseDisplay(display_text);
  const std::vector<Profile> profiles = collect(session, display);
  if (display && profiles.empty()) {
    warnOfUnknownDisplay(*display);
  }
  if (session.json()) {
    printAsJson(display, profiles);
    return kDone;
  }
  Table table({"Name", "Path"});
  for (const Profile& profile : profiles) {
    table.addRow({profile.name, profile.path});
  }
  std::cout << table;
  return kDone;
}

}  // namespace devhost::tool
