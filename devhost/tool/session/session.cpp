#include "devhost/tool/session/session.h"

#include <iostream>

#include "devhost/language/printable.h"
#include "devhost/tool/session/files.h"

namespace devhost::tool {

Session::Session(const Options& options)
    : options_(options), plugin_(host_.load(options.plugin_path.empty() ? findPlugin() : options.plugin_path)) {}

void Session::say(const std::string& line) { std::cerr << "ostrevin-host: " << printable(line) << std::endl; }

int Session::finish(int status) const {
  if (!options_.check) {
    return status;
  }
  const std::vector<std::string> unreleased = host_.unreleased();
  for (const std::string& line : unreleased) {
    say("not released: " + line);
  }
  for (const std::string& fault : host_.faults()) {
    say("fault: " + fault);
  }
  return unreleased.empty() && host_.faults().empty() ? status : kUnreleased;
}

}  // namespace devhost::tool
