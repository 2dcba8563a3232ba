#include <iostream>

#include "devhost/tool/commands/commands.h"
#include "devhost/tool/session/displays.h"
#include "devhost/tool/terminal/json.h"
#include "devhost/tool/terminal/terminal.h"

namespace devhost::tool {
namespace {

Json toJson(const Display& display) {
  Json entry = placeToJson(display);
  entry["profile"] = display.profile;
  return entry;
}

std::vector<std::string> toRow(const Display& display) {
  return {std::to_string(display.number),
          display.index ? std::to_string(*display.index) : "-",
          display.name,
          numberText(display.width) + " x " + numberText(display.height) + " at " + numberText(display.x) + ", " +
              numberText(display.y),
          numberText(display.scale),
          display.profile.empty() ? "-" : display.profile};
}

}  // namespace

int listDisplays(Session& session) {
  const std::vector<Display> displays = describeDisplays(session.plugin());
  if (session.json()) {
    Json document = jsonDocument("list");
    document["displays"] = Json::array();
    for (const Display& display : displays) {
      document["displays"].push_back(toJson(display));
    }
    printJson(document);
    return kDone;
  }
  Table table({"Number", "Index", "Name", "Bounds", "Scale", "Profile"});
  for (const Display& display : displays) {
    table.addRow(toRow(display));
  }
  std::cout << table;
  return kDone;
}

}  // namespace devhost::tool
