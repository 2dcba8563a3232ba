#include <algorithm>
#include <iterator>
#include <set>

#include "tools/macho/checks.h"

namespace macho {
namespace {

/// The machine code of the functions by name: several where a name is repeated, in the order of their addresses.
using Code = std::map<std::string, std::vector<Bytes>>;

Bytes textOf(const Image& image) {
  const Section* const section = image.findSection("__text");
  return section == nullptr ? Bytes() : image.contentsOf(*section);
}

Code codeOf(const Image& image) {
  Code code;
  const Section* const section = image.findSection("__text");
  if (section == nullptr) {
    return code;
  }
  const std::map<std::uint64_t, std::string> functions = functionsOf(image);
  const std::uint64_t section_end = section->address + section->size;
  for (auto at = functions.lower_bound(section->address); at != functions.end() && at->first < section_end; ++at) {
    const auto next = std::next(at);
    const std::uint64_t end = next == functions.end() ? section_end : std::min(next->first, section_end);
    code[at->second].push_back(textOf(image).subspan(at->first - section->address, end - at->first));
  }
  return code;
}

bool areEqual(Bytes one, Bytes other) { return std::equal(one.begin(), one.end(), other.begin(), other.end()); }

void compareCode(const Code& code, const Code& others, std::vector<std::string>& problems) {
  for (const auto& [name, functions] : code) {
    const auto found = others.find(name);
    if (found == others.end()) {
      problems.push_back("only this file has the function " + name);
    } else if (!std::equal(functions.begin(), functions.end(), found->second.begin(), found->second.end(), areEqual)) {
      problems.push_back("the machine code differs: " + name + ", " + std::to_string(functions.front().size()) +
                         " bytes, " + std::to_string(found->second.front().size()) + " in the other file");
    }
  }
  for (const auto& [name, functions] : others) {
    if (code.count(name) == 0) {
      problems.push_back("only the other file has the function " + name);
    }
  }
}

/// The imported symbols, each with its library.
std::set<std::string> importsOf(const Image& image) {
  std::set<std::string> imports;
  for (const auto& [address, pointer] : image.fixups()) {
    if (pointer.kind != Pointer::Kind::import) {
      continue;
    }
    const auto number = static_cast<std::uint64_t>(pointer.library) - 1;
    const std::string library =
        number < image.libraries().size() ? image.libraries()[number].path : std::to_string(pointer.library);
    imports.insert(std::string(pointer.symbol) + " from " + library + (pointer.is_weak ? ", weakly" : ""));
  }
  return imports;
}

void listMissing(const std::set<std::string>& names, const std::set<std::string>& others, const std::string& what,
                 std::vector<std::string>& problems) {
  for (const std::string& name : names) {
    if (others.count(name) == 0) {
      problems.push_back(what + name);
    }
  }
}

}  // namespace

std::vector<Check> compareImages(const Image& image, const Image& other) {
  Check code{"the machine code is the same, " + std::to_string(textOf(image).size()) + " bytes", {}};
  if (!areEqual(textOf(image), textOf(other))) {
    compareCode(codeOf(image), codeOf(other), code.problems);
    if (code.problems.empty()) {
      code.problems.emplace_back("the machine code differs outside the functions that have names");
    }
  }
  const std::set<std::string> imports = importsOf(image);
  const std::set<std::string> others = importsOf(other);
  Check import_check{"the same " + std::to_string(imports.size()) + " symbols are imported from the same libraries",
                     {}};
  listMissing(imports, others, "only this file imports ", import_check.problems);
  listMissing(others, imports, "only the other file imports ", import_check.problems);
  return {code, import_check};
}

}  // namespace macho
