#include <iostream>

#include "devhost/language/printable.h"
#include "devhost/tool/commands/commands.h"
#include "devhost/tool/terminal/json.h"

namespace devhost::tool {
namespace {

Json toJson(const Declaration& declaration) {
  Json parameters = Json::array();
  for (const Parameter& parameter : declaration.parameters) {
    parameters.push_back(
        {{"name", parameter.name}, {"type", parameter.type.text()}, {"by_reference", parameter.by_reference}});
  }
  return {{"declaration", declaration.text},
          {"name", declaration.name},
          {"parameters", std::move(parameters)},
          {"result", declaration.result ? Json(declaration.result->text()) : Json(nullptr)}};
}

Json toJson(const Module& module) {
  Json methods = Json::array();
  for (const Method& method : module.methods) {
    methods.push_back(toJson(method.declaration));
  }
  return {{"name", module.name}, {"version", module.version}, {"methods", std::move(methods)}};
}

}  // namespace

int listMethods(Session& session) {
  if (session.json()) {
    Json document = jsonDocument("methods");
    document["announced_version"] = session.plugin().announcedVersion();
    document["modules"] = Json::array();
    for (const Module& module : session.plugin().modules()) {
      document["modules"].push_back(toJson(module));
    }
    printJson(document);
    return kDone;
  }
  for (const Module& module : session.plugin().modules()) {
    std::cout << printable(module.name) << ", interface version " << module.version << '\n';
    for (const Method& method : module.methods) {
      std::cout << printable(method.declaration.text) << '\n';
    }
  }
  return kDone;
}

}  // namespace devhost::tool
