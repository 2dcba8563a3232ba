// Calls across the binary boundary, by a declaration: from the host to a plugin's function, and from a plugin to a
// method of a host object. One thread at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/language/value.h"
#include "devhost/runtime/runtime.h"

namespace devhost {

/// What a by-reference parameter held when the call returned.
struct ByReference {
  std::string name;
  DeclaredType type;
  Value value;         ///< read at the width that the plugin writes
  std::uint64_t slot;  ///< all 8 bytes of the host's slot
};

struct CallResult {
  Value result;  ///< nothing for a method without one
  std::vector<ByReference> by_reference;

  /// The by-reference parameter of that name, case-insensitive. Throws ValueError when there is none.
  const Value& operator[](std::string_view name) const { return find(name).value; }
  std::uint64_t slot(std::string_view name) const { return find(name).slot; }

 private:
  const ByReference& find(std::string_view name) const;
};

/// Calls `function` as declared, with the runtime made current, an autorelease pool around the call, and every
/// by-reference parameter in an 8-byte slot of its own. `arguments` are either one for each parameter, or one for each
/// parameter that is not by reference; the other slots begin as initialValue. Throws ValueError for wrong arguments,
/// and everything that the function or an object's method throws.
CallResult callFunction(Runtime& runtime, const Declaration& declaration, const void* function,
                        const Values& arguments);

/// A method's body: gets the object and the arguments. An argument that it changes is stored through the by-reference
/// parameter. It may call the plugin. An exception that it throws is held back until the plugin's method has returned,
/// and reaches the caller of that.
using Handler = std::function<Value(Object& self, Values& arguments)>;

/// Adds a method that a plugin can find and call, or replaces the one of the same signature. Throws DeclarationError.
/// The runtime must outlive the object's methods.
void addMethod(Runtime& runtime, Object& object, std::string_view declaration, Handler handler);

/// An autorelease pool around a call, as the event loop of a host keeps one. Any thread; pools nest.
class AutoreleasePool {
 public:
  AutoreleasePool();
  ~AutoreleasePool();
  AutoreleasePool(const AutoreleasePool&) = delete;
  AutoreleasePool& operator=(const AutoreleasePool&) = delete;

 private:
  void* pool_ = nullptr;
};

/// Looks for the Objective-C runtime's pool functions in the process, and in a library (a handle of dlopen) and its
/// dependencies. Until they are found, an AutoreleasePool does nothing; a process without them needs none.
void findAutoreleasePools(void* library);

}  // namespace devhost
