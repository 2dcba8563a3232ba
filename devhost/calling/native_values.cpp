#include "devhost/calling/native_values.h"

#include <cstring>
#include <stdexcept>

namespace devhost {
namespace {

constexpr std::size_t kSlotSize = 8;

ffi_type* nativeType(const DeclaredType& type) {
  if (type.is_array) {
    return &ffi_type_pointer;
  }
  const TypeFacts& facts = factsOf(type.type);
  switch (facts.form) {
    case Form::kBoolean:
      return &ffi_type_uint8;
    case Form::kSigned:
      return facts.width == 1   ? &ffi_type_sint8
             : facts.width == 2 ? &ffi_type_sint16
             : facts.width == 4 ? &ffi_type_sint32
                                : &ffi_type_sint64;
    case Form::kUnsigned:
      return facts.width == 1   ? &ffi_type_uint8
             : facts.width == 2 ? &ffi_type_uint16
             : facts.width == 4 ? &ffi_type_uint32
                                : &ffi_type_uint64;
    case Form::kReal:
      return facts.width == sizeof(float) ? &ffi_type_float : &ffi_type_double;
    default:
      return &ffi_type_pointer;
  }
}

// --- To a plugin

Slot slotOf(const Ref<Counted>& counted) {
  return {reinterpret_cast<std::uintptr_t>(counted ? counted->handle() : nullptr), counted};
}

Slot slotOfArray(Runtime& runtime, const Value& value) {
  std::vector<Ref<String>> strings;
  for (const Value& element : value.elements()) {
    strings.push_back(element.isNil() ? nullptr : runtime.makeString(element.text()));
  }
  return slotOf(runtime.makeArray(std::move(strings)));
}

std::uint64_t realBits(double number, std::size_t width) {
  std::uint64_t bits = 0;
  if (width == sizeof(float)) {
    const auto narrow = static_cast<float>(number);
    std::memcpy(&bits, &narrow, sizeof narrow);
  } else {
    std::memcpy(&bits, &number, sizeof number);
  }
  return bits;
}

// --- From a plugin

template <typename T>
Ref<T> receive(Handles& handles, const void* handle, Ownership ownership, const char* where) {
  return ownership == Ownership::kHandedOver ? handles.take<T>(handle, where) : handles.find<T>(handle, where);
}

Value valueOf(const Ref<String>& string) { return string ? Value(string->bytes()) : Value(nullptr); }

Value valueOf(const Ref<Array>& array) {
  if (!array) {
    return nullptr;
  }
  Values elements;
  for (const Ref<String>& element : array->elements()) {
    elements.push_back(valueOf(element));
  }
  return Value::array(std::move(elements));
}

Value fromPointer(Handles& handles, void* pointer, const DeclaredType& type, Ownership ownership, const char* where) {
  if (type.is_array) {
    return valueOf(receive<Array>(handles, pointer, ownership, where));
  }
  switch (factsOf(type.type).form) {
    case Form::kString:
      return valueOf(receive<String>(handles, pointer, ownership, where));
    case Form::kObject:
      return receive<Object>(handles, pointer, ownership, where);
    default:
      return Value::pointer(pointer);
  }
}

Value realFrom(const void* address, std::size_t width) {
  if (width == sizeof(float)) {
    float number = 0;
    std::memcpy(&number, address, sizeof number);
    return static_cast<double>(number);
  }
  double number = 0;
  std::memcpy(&number, address, sizeof number);
  return number;
}

std::int64_t signExtended(std::uint64_t bits, std::size_t width) {
  const unsigned shift = static_cast<unsigned>(kSlotSize - width) * 8;
  return static_cast<std::int64_t>(bits << shift) >> shift;
}

}  // namespace

NativeSignature::NativeSignature(const Declaration& declaration, bool for_object) {
  if (for_object) {
    types_.push_back(&ffi_type_pointer);
  }
  for (const Parameter& parameter : declaration.parameters) {
    types_.push_back(parameter.by_reference ? &ffi_type_pointer : nativeType(parameter.type));
  }
  ffi_type* const result = declaration.result ? nativeType(*declaration.result) : &ffi_type_void;
  if (ffi_prep_cif(&interface_, FFI_DEFAULT_ABI, static_cast<unsigned>(types_.size()), result, types_.data()) !=
      FFI_OK) {
    throw std::runtime_error("no native signature for " + declaration.text);
  }
}

Slot toSlot(Runtime& runtime, const Value& value, const DeclaredType& type) {
  const Value converted = convert(value, type);
  if (converted.isNil()) {
    return {};
  }
  if (type.is_array) {
    return slotOfArray(runtime, converted);
  }
  const TypeFacts& facts = factsOf(type.type);
  switch (facts.form) {
    case Form::kBoolean:
      return {converted.boolean() ? 1U : 0U, nullptr};
    case Form::kSigned:
      return {static_cast<std::uint64_t>(converted.integer()), nullptr};
    case Form::kUnsigned:
      return {converted.unsignedNumber(), nullptr};
    case Form::kReal:
      return {realBits(converted.real(), facts.width), nullptr};
    case Form::kString:
      return slotOf(runtime.makeString(converted.text()));
    case Form::kObject:
      return slotOf(converted.object());
    case Form::kPointer:
      return {reinterpret_cast<std::uintptr_t>(converted.pointer()), nullptr};
  }
  return {};
}

Value fromSlot(Runtime& runtime, const void* address, const DeclaredType& type, Ownership ownership,
               const char* where) {
  const TypeFacts& facts = factsOf(type.type);
  std::uint64_t bits = 0;
  if (!type.is_array) {
    // Both systems are little-endian: the first bytes of a slot are its low ones.
    std::memcpy(&bits, address, facts.width);
    switch (facts.form) {
      case Form::kBoolean:
        return bits != 0;
      case Form::kSigned:
        return signExtended(bits, facts.width);
      case Form::kUnsigned:
        return bits;
      case Form::kReal:
        return realFrom(address, facts.width);
      default:
        break;
    }
  }
  void* pointer = nullptr;
  std::memcpy(&pointer, address, sizeof pointer);
  return fromPointer(runtime.handles(), pointer, type, ownership, where);
}

}  // namespace devhost
