#include "devhost/runtime/global_methods.h"

#include "devhost/language/declaration.h"

namespace devhost {

void GlobalMethods::set(std::string_view declaration, void* function) {
  functions_[parseDeclaration(declaration).signature()] = function;
}

void GlobalMethods::remove(std::string_view declaration) {
  functions_.erase(parseDeclaration(declaration).signature());
}

void* GlobalMethods::load(const void* module, const char* declaration) {
  lookups_.push_back({module, declaration == nullptr ? "" : declaration});
  // A plugin is calling: nothing may be thrown through it.
  try {
    const auto found = functions_.find(parseDeclaration(lookups_.back().declaration).signature());
    return found == functions_.end() ? nullptr : found->second;
  } catch (const DeclarationError&) {
    return nullptr;
  }
}

}  // namespace devhost
