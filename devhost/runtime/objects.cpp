#include "devhost/runtime/objects.h"

#include <cwchar>

#include "devhost/calling/native_call.h"
#include "devhost/runtime/host.h"

namespace devhost {
namespace {

/// The bytes that a pointer type refers to, terminator or length byte included; empty for other types and null.
std::string pointedBytes(Type type, const void* pointer) {
  if (pointer == nullptr) {
    return {};
  }
  switch (type) {
    case Type::kCString: {
      const std::string_view text = static_cast<const char*>(pointer);
      return {text.data(), text.size() + 1};
    }
    case Type::kWString: {
      const std::size_t size = (std::wcslen(static_cast<const wchar_t*>(pointer)) + 1) * sizeof(wchar_t);
      return {static_cast<const char*>(pointer), size};
    }
    case Type::kPString:
      return {static_cast<const char*>(pointer), std::size_t{1} + *static_cast<const unsigned char*>(pointer)};
    default:
      return {};
  }
}

}  // namespace

Object::Object(Host& host, std::shared_ptr<Handles> handles, std::string class_name)
    : Counted(std::move(handles), kKind), host_(host), class_name_(std::move(class_name)) {}

Object::~Object() = default;

void Object::addMethod(std::string_view declaration, Handler handler) {
  Declaration parsed = parseDeclaration(declaration);
  const std::string signature = parsed.signature();
  methods_[signature] = std::make_unique<NativeMethod>(host_, std::move(parsed), std::move(handler));
}

void* Object::methodAddress(const Declaration& declaration) {
  const auto found = methods_.find(declaration.signature());
  return found == methods_.end() ? nullptr : found->second->address();
}

void Object::addProperty(const std::string& name, Type type, const Value& value) {
  Property property{type, {}, {}};
  assign(host_, property, value);
  properties_[lowerCase(name)] = std::move(property);
  // The bytes may have moved with the property.
  Property& kept = properties_[lowerCase(name)];
  if (!kept.owned.empty()) {
    kept.value = Value::pointer(kept.owned.data());
  }
}

Property* Object::findProperty(std::string_view name) {
  const auto found = properties_.find(lowerCase(name));
  return found == properties_.end() ? nullptr : &found->second;
}

Value Object::property(std::string_view name) {
  Property* const found = findProperty(name);
  if (found == nullptr) {
    throw ValueError(describe() + " has no property " + std::string(name));
  }
  return found->value;
}

void Object::ownMemory(std::size_t size) {
  memory_ = std::make_unique<Memory>(Memory{nullptr, static_cast<std::int64_t>(size), std::vector<std::byte>(size)});
  memory_->address = memory_->owned.data();
}

void Object::borrowMemory(void* address) { memory_ = std::make_unique<Memory>(Memory{address, -1, {}}); }

std::string Object::describe() const { return "object of class " + class_name_; }

void assign(Host& host, Property& property, const Value& value) {
  Value converted = convertToVariable(host, value, property.type);
  if (factsOf(property.type).form == Form::kPointer) {
    std::string bytes = pointedBytes(property.type, converted.pointer());
    property.owned = std::move(bytes);
    if (!property.owned.empty()) {
      converted = Value::pointer(property.owned.data());
    }
  }
  property.value = std::move(converted);
}

}  // namespace devhost
