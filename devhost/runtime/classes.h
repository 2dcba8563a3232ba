// Classes, by name. This host has no hierarchy of them: any name is a class, and every class is one of "Object".
// One thread at a time.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace devhost {

/// The class that every object is of.
inline constexpr const char* kBaseClass = "Object";

/// True when objects of `class_name` are also of `wanted`, letters' case aside.
bool isClass(std::string_view class_name, std::string_view wanted);

class Classes {
 public:
  /// What a plugin holds as REALclassRefStruct*: the same for the same name, letters' case aside; valid while this
  /// lives. Nobody counts it. Null for an empty name.
  void* reference(std::string_view name);
  /// The name that a reference was first asked for by; null when it is none. Borrowed; valid while this lives.
  const std::string* nameOf(const void* reference) const;

 private:
  std::map<std::string, std::string> names_;  // by name in lower case; a reference is the address of a name
};

}  // namespace devhost
