// The arrangement of the displays as a picture.
#include <iostream>

#include "devhost/tool/commands/commands.h"
#include "devhost/tool/layout/layout.h"
#include "devhost/tool/session/displays.h"
#include "devhost/tool/terminal/json.h"
#include "devhost/tool/terminal/output_file.h"
#include "devhost/tool/terminal/terminal.h"

namespace devhost::tool {
namespace {

constexpr const char* kStandardOutput = "-";

void printAsJson(const std::vector<Display>& displays, const Layout& layout) {
  Json document = jsonDocument("layout");
  const Area& all = layout.bounds;
  document["bounds"] = layout.boxes.empty()
                           ? Json(nullptr)
                           : Json({{"x", all.left}, {"y", all.top}, {"width", all.width()}, {"height", all.height()}});
  document["displays"] = Json::array();
  for (const Display& display : displays) {
    Json entry = placeToJson(display);
    entry["main"] = isMain(display);
    document["displays"].push_back(std::move(entry));
  }
  printJson(document);
}

}  // namespace

int drawLayout(Session& session, const LayoutOptions& options) {
  if (session.json() && (options.file || options.ascii || options.width)) {
    throw ValueError("layout --json draws nothing: it excludes --output, --ascii and --width");
  }
  const std::vector<Display> displays = describePlaces(session.plugin());
  const Layout layout = arrangeLayout(displays);
  if (session.json()) {
    printAsJson(displays, layout);
  } else if (!options.file) {
    std::cout << drawText(layout, {options.width.value_or(terminalColumns()), options.ascii || !localeIsUtf8()});
  } else if (*options.file == kStandardOutput) {
    std::cout << drawSvg(layout);
  } else {
    writeFile(*options.file, drawSvg(layout));
  }
  return kDone;
}

}  // namespace devhost::tool
