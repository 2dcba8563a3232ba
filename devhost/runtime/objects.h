// Host objects: named properties, and methods that a plugin loads by their declaration and calls by address.
// One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/language/declaration.h"
#include "devhost/language/value.h"
#include "devhost/runtime/handles.h"

namespace devhost {

class NativeMethod;

/// The class of variants, and the property that holds a variant's value.
inline constexpr const char* kVariantClass = "Variant";
inline constexpr const char* kVariantProperty = "Value";

/// A method's body: gets the object and the arguments; what it stores into the argument of a by-reference parameter
/// goes back to the caller. It may call the plugin again. What it throws is held back until the plugin's method has
/// returned, and then thrown to whoever called that.
using Handler = std::function<Value(Object& self, Values& arguments)>;

/// A named value of a fixed type. C, wide and Pascal strings are copied in; `owned` keeps their bytes.
struct Property {
  Type type;
  Value value;
  std::string owned;
};

/// Memory that an object stands for: `owned`, or somebody else's, whose size is then -1.
struct Memory {
  void* address;
  std::int64_t size;
  std::vector<std::byte> owned;
};

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

  /// Adds or replaces a property. Throws ValueError when the value is not of the type.
  void addProperty(const std::string& name, Type type, const Value& value);
  /// Null when there is none of that name, letters' case aside. Borrowed; valid until properties are added.
  Property* findProperty(std::string_view name);
  /// The property's value. Throws ValueError when there is none.
  Value property(std::string_view name);
  /// A variant's value.
  Value variantValue() { return property(kVariantProperty); }

  /// Makes the object stand for `size` bytes of its own, all zero.
  void ownMemory(std::size_t size);
  /// Makes the object stand for memory that it neither owns nor reads.
  void borrowMemory(void* address);
  /// Null when the object stands for no memory. Borrowed; valid while the object lives.
  const Memory* memory() const { return memory_.get(); }

  std::string describe() const override;

 private:
  Host& host_;
  std::string class_name_;
  std::map<std::string, std::unique_ptr<NativeMethod>> methods_;  // by signature
  std::map<std::string, Property> properties_;                    // by name in lower case
  std::unique_ptr<Memory> memory_;
};

/// Stores `value` as the property's type asks. Throws ValueError.
void assign(Host& host, Property& property, const Value& value);

}  // namespace devhost
