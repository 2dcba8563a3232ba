#include "faults/library_symbols.h"

#include <array>
#include <cstdio>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace faults {
namespace {

/// The lines that nm prints: "NAME TYPE [VALUE [SIZE]]".
std::istringstream listing(const std::string& options, const std::string& library) {
  const std::string command = "nm --format=posix " + options + " '" + library + "'";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string text;
  std::array<char, 4096> buffer{};
  while (const std::size_t size = pipe ? std::fread(buffer.data(), 1, buffer.size(), pipe.get()) : 0) {
    text.append(buffer.data(), size);
  }
  if (text.empty()) {
    throw std::runtime_error("no output from: " + command);
  }
  return std::istringstream(text);
}

std::set<std::string> names(const std::string& options, const std::string& library) {
  std::istringstream lines = listing(options, library);
  std::set<std::string> result;
  for (std::string line; std::getline(lines, line);) {
    result.insert(line.substr(0, line.find_first_of(" @")));
  }
  return result;
}

}  // namespace

std::set<std::string> undefinedSymbols(const std::string& library) { return names("-D --undefined-only", library); }

std::set<std::string> definedSymbols(const std::string& library) { return names("-D --defined-only", library); }

std::map<std::string, std::uintptr_t> ownSymbols(const std::string& library) {
  std::istringstream lines = listing("--defined-only", library);
  std::map<std::string, std::uintptr_t> result;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::string name;
    std::string type;
    std::string value;
    if (fields >> name >> type >> value) {
      result[name] = std::stoull(value, nullptr, 16);
    }
  }
  return result;
}

std::set<std::string> sentSelectors(const std::string& library) {
  // The compiler makes a text of this name for each selector that a message expression uses.
  static const std::string kPrefix = ".objc_sel_name";
  std::set<std::string> selectors;
  for (const auto& [name, offset] : ownSymbols(library)) {
    if (name.starts_with(kPrefix)) {
      selectors.insert(name.substr(kPrefix.size()));
    }
  }
  return selectors;
}

}  // namespace faults
