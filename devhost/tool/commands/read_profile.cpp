// Commands about one profile file.
#include <unistd.h>

#include <iostream>

#include "devhost/language/printable.h"
#include "devhost/tool/commands/commands.h"
#include "devhost/tool/session/files.h"
#include "devhost/tool/terminal/json.h"

namespace devhost::tool {

int testTag(Session& session, const std::string& path, const std::string& tag) {
  const std::string file = absolutePath(path);
  const bool exists = session.plugin().call("ICCTagExists", {file, tag}).result.boolean();
  if (session.json()) {
    Json document = jsonDocument("tag");
    document["path"] = file;
    document["tag"] = tag;
    document["exists"] = exists;
    printJson(document);
  } else {
    std::cout << (exists ? "yes" : "no") << '\n';
  }
  return exists ? kDone : kNotDone;
}

int printQv02(Session& session, const std::string& path) {
  const std::string file = absolutePath(path);
  const CallResult result = session.plugin().call("QV02Read", {file});
  const std::int64_t code = result.result.integer();
  const std::string text = result["xmlString"].text();
  if (session.json()) {
    Json document = jsonDocument("qv02");
    document["path"] = file;
    document["code"] = code;
    document["document"] = code == 0 ? Json(text) : Json(nullptr);
    printJson(document);
  } else if (code == 0 && isatty(STDOUT_FILENO) == 1) {
    std::cout << printableLines(text) << '\n';
  } else if (code == 0) {
    std::cout << text;
  }
  if (code != 0) {
    Session::say(file + " has no readable QV02 document (code " + std::to_string(code) + ")");
  }
  return code == 0 ? kDone : kNotDone;
}

}  // namespace devhost::tool
