#include "devhost/runtime/classes.h"

#include "devhost/language/types.h"

namespace devhost {

bool isClass(std::string_view class_name, std::string_view wanted) {
  return sameName(wanted, kBaseClass) || sameName(class_name, wanted);
}

void* Classes::reference(std::string_view name) {
  return name.empty() ? nullptr : &names_.try_emplace(lowerCase(name), name).first->second;
}

const std::string* Classes::nameOf(const void* reference) const {
  for (const auto& [key, name] : names_) {
    if (&name == reference) {
      return &name;
    }
  }
  return nullptr;
}

}  // namespace devhost
