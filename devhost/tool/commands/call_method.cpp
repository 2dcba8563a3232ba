// Calls any method by name. After SetProfile it reads the display's profile back.
#include <iostream>
#include <sstream>

#include "devhost/language/arguments.h"
#include "devhost/language/printable.h"
#include "devhost/tool/commands/commands.h"
#include "devhost/tool/session/displays.h"
#include "devhost/tool/session/files.h"
#include "devhost/tool/terminal/json.h"
#include "devhost/tool/terminal/waiting.h"

namespace devhost::tool {
namespace {

constexpr const char* kSetProfile = "SetProfile";

/// A text without quotes, other values as they print themselves.
std::string shown(const Value& value) {
  if (const auto* const text = std::get_if<std::string>(&value.storage())) {
    return printable(*text);
  }
  std::ostringstream text;
  text << value;
  return printable(text.str());
}

void printLine(const std::string& name, const Value& value) {
  const auto* const elements = std::get_if<Values>(&value.storage());
  if (elements == nullptr) {
    std::cout << name << ": " << shown(value) << '\n';
    return;
  }
  std::cout << name << ": " << elements->size() << " elements\n";
  for (const Value& element : *elements) {
    std::cout << "  " << shown(element) << '\n';
  }
}

void print(const CallResult& result) {
  if (!result.result.isNothing()) {
    printLine("result", result.result);
  }
  for (const ByReference& parameter : result.by_reference) {
    printLine(parameter.name, parameter.value);
  }
}

void printAsJson(const Declaration& declaration, const CallResult& result) {
  Json document = jsonDocument("call");
  document["method"] = declaration.name;
  if (declaration.result) {
    document["result"] = jsonValue(result.result);
  }
  document["by_reference"] = Json::object();
  for (const ByReference& parameter : result.by_reference) {
    document["by_reference"][parameter.name] = jsonValue(parameter.value);
  }
  printJson(document);
}

std::string knownMethods(const Plugin& plugin) {
  std::string names;
  for (const Module& module : plugin.modules()) {
    for (const Method& method : module.methods) {
      names += (names.empty() ? "" : ", ") + method.declaration.name;
    }
  }
  return names;
}

/// Reports a display whose profile is not the assigned one.
int checkProfile(Session& session, const Values& arguments, const CallResult& result) {
  const std::string wanted = arguments[1].text();
  const std::string reported = profileOf(session.plugin(), static_cast<std::uint32_t>(arguments[0].unsignedNumber()));
  if (result.result == true && (reported == wanted || isSameFile(reported, wanted))) {
    return kDone;
  }
  Session::say("display " + std::to_string(arguments[0].unsignedNumber()) + " does not report " + wanted +
               " afterwards, but " + (reported.empty() ? "no profile" : reported));
  return kNotDone;
}

}  // namespace

int callMethod(Session& session, const std::string& name, const std::vector<std::string>& arguments) {
  const Method* const method = session.plugin().findMethod(name);
  if (method == nullptr) {
    throw ValueError("no method is called " + name + ": expected one of " + knownMethods(session.plugin()));
  }
  const Declaration& declaration = method->declaration;
  Values values = parseArguments(declaration, arguments);
  const bool sets_profile = sameName(declaration.name, kSetProfile);
  if (sets_profile) {
    values[1] = absolutePath(values[1].text());
  }

  const CallResult result = [&] {
    const Waiting waiting(declaration.name);
    return session.plugin().call(declaration.name, values);
  }();
  if (session.json()) {
    printAsJson(declaration, result);
  } else {
    print(result);
  }
  return sets_profile ? checkProfile(session, values, result) : kDone;
}

}  // namespace devhost::tool
