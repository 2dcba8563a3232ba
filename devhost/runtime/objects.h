// Host objects: methods that a plugin loads by their declaration and calls by address.
// One thread at a time.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "devhost/language/declaration.h"
#include "devhost/language/value.h"
#include "devhost/runtime/handles.h"

namespace devhost {

class NativeMethod;

/// A method's body: gets the object and the arguments; what it stores into the argument of a by-reference parameter
/// goes back to the caller. It may call the plugin again. What it throws is held back until the plugin's method has
/// returned, and then thrown to whoever called that.
using Handler = std::function<Value(Object& self, Values& arguments)>;

/// What plugins hold as REALobjectStruct*.
class Object final : public Counted {
 public:
  static constexpr Kind kKind = Kind::kObject;
  Object(Host& host, std::shared_ptr<Handles> handles, std::string class_name);
  ~Object() override;

  const std::string& className() const { return class_name_; }

  /// Throws DeclarationError. A second method of the same signature replaces the first.
  void addMethod(std::string_view declaration, Handler handler);
  /// The address under which a plugin calls the method of that signature; null when there is none. Valid while the
  /// object lives and the method is not replaced.
  void* methodAddress(const Declaration& declaration);

  std::string describe() const override;

 private:
  Host& host_;
  std::string class_name_;
  std::map<std::string, std::unique_ptr<NativeMethod>> methods_;  // by signature
};

}  // namespace devhost
