#include "devhost/entries/entry_table.h"

#include <algorithm>

namespace devhost {

void* EntryTable::find(std::string_view name) const {
  const auto found = functions_.find(std::string(name));
  return found == functions_.end() ? nullptr : found->second;
}

std::vector<std::string> EntryTable::names() const {
  std::vector<std::string> names;
  names.reserve(functions_.size());
  for (const auto& [name, function] : functions_) {
    names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

void* EntryTable::resolve(const char* name) {
  if (name == nullptr) {
    lookups_.emplace_back("(null)");
    return nullptr;
  }
  lookups_.emplace_back(name);
  return find(name);
}

}  // namespace devhost
