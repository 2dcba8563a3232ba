#include "devhost/calling/native_values.h"

#include <cstring>

namespace devhost {
namespace {

constexpr std::size_t kSlotSize = 8;

template <typename T>
Value takeOrBorrow(Host& host, const void* handle, Ownership ownership, const char* where) {
  return ownership == Ownership::kHandedOver ? host.handles().take<T>(handle, where)
                                             : Ref<T>(host.handles().find<T>(handle, where));
}

Value fromHandle(Host& host, void* handle, const DeclaredType& type, Ownership ownership, const char* where) {
  if (type.is_array) {
    return takeOrBorrow<Array>(host, handle, ownership, where);
  }
  switch (factsOf(type.type).form) {
    case Form::kString:
      return takeOrBorrow<String>(host, handle, ownership, where);
    case Form::kObject:
      return takeOrBorrow<Object>(host, handle, ownership, where);
    default:
      return Value::pointer(handle);
  }
}

bool isPointer(const DeclaredType& type) {
  const Form form = factsOf(type.type).form;
  return type.is_array || form == Form::kString || form == Form::kObject || form == Form::kPointer;
}

std::int64_t signExtended(std::uint64_t bits, std::size_t width) {
  const unsigned shift = static_cast<unsigned>(kSlotSize - width) * 8;
  return static_cast<std::int64_t>(bits << shift) >> shift;
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

std::uint64_t realToSlot(double number, std::size_t width) {
  std::uint64_t slot = 0;
  if (width == sizeof(float)) {
    const auto narrow = static_cast<float>(number);
    std::memcpy(&slot, &narrow, sizeof narrow);
  } else {
    std::memcpy(&slot, &number, sizeof number);
  }
  return slot;
}

}  // namespace

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

ffi_type* nativeResultType(const Declaration& declaration) {
  return declaration.result ? nativeType(*declaration.result) : &ffi_type_void;
}

std::uint64_t toSlot(const Value& value, const DeclaredType& type) {
  if (Counted* const counted = countedOf(value)) {
    return reinterpret_cast<std::uintptr_t>(counted->handle());
  }
  if (isPointer(type)) {
    return reinterpret_cast<std::uintptr_t>(value.pointer());
  }
  const TypeFacts& facts = factsOf(type.type);
  switch (facts.form) {
    case Form::kBoolean:
      return value.boolean() ? 1 : 0;
    case Form::kSigned:
      return static_cast<std::uint64_t>(value.integer());
    case Form::kUnsigned:
      return value.unsignedNumber();
    case Form::kReal:
      return realToSlot(value.real(), facts.width);
    default:
      return 0;
  }
}

Value fromSlot(Host& host, const void* address, const DeclaredType& type, Ownership ownership, const char* where) {
  const TypeFacts& facts = factsOf(type.type);
  if (isPointer(type)) {
    void* handle = nullptr;
    std::memcpy(&handle, address, sizeof handle);
    return fromHandle(host, handle, type, ownership, where);
  }
  if (facts.form == Form::kReal) {
    return realFrom(address, facts.width);
  }
  // Both systems are little-endian: the first bytes of a slot are its low ones.
  std::uint64_t bits = 0;
  std::memcpy(&bits, address, facts.width);
  switch (facts.form) {
    case Form::kBoolean:
      return bits != 0;
    case Form::kSigned:
      return signExtended(bits, facts.width);
    default:
      return bits;
  }
}

Counted* countedOf(const Value& value) {
  const Value::Storage& storage = value.storage();
  if (const auto* const string = std::get_if<Ref<String>>(&storage)) {
    return string->get();
  }
  if (const auto* const object = std::get_if<Ref<Object>>(&storage)) {
    return object->get();
  }
  if (const auto* const array = std::get_if<Ref<Array>>(&storage)) {
    return array->get();
  }
  return nullptr;
}

}  // namespace devhost
