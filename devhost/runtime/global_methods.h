// Methods of the host's language that belong to no object, such as "LenB( s as string ) as integer". A plugin loads one
// by its declaration and calls it by address. One thread at a time.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace devhost {

/// A method as a plugin asked for it.
struct GlobalLookup {
  const void* module;  ///< the first argument of the look-up, as given
  std::string declaration;
};

class GlobalMethods {
 public:
  /// Adds or replaces the method of that signature. Throws DeclarationError. The function must follow the declaration,
  /// except that Integer has 64 bits in the host's own methods.
  void set(std::string_view declaration, void* function);
  template <typename Result, typename... Arguments>
  void set(std::string_view declaration, Result (*function)(Arguments...)) {
    set(declaration, reinterpret_cast<void*>(function));
  }
  void remove(std::string_view declaration);

  /// Finds a method and notes that it was asked for; null when there is none or the declaration cannot be parsed.
  void* load(const void* module, const char* declaration);
  const std::vector<GlobalLookup>& lookups() const { return lookups_; }
  void clearLookups() { lookups_.clear(); }

 private:
  std::map<std::string, void*> functions_;  // by signature
  std::vector<GlobalLookup> lookups_;
};

}  // namespace devhost
