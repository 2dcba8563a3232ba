// Properties of objects, by name and type.
//
// A getter takes (object, const char* name, pointer to a value) and answers 1 when it has stored one; a setter takes
// (object, const char* name, value) and answers 1 when it has taken it. A number may be read and set through any type
// of number that it fits. A setter takes a reference of its own and leaves the plugin's.
#include "devhost/entries/entries.h"
#include "devhost/entries/entry_values.h"

namespace devhost {
namespace {

Property* find(void* object, const char* name, const char* where) {
  auto* const found = Host::current().handles().find<Object>(object, where);
  return found == nullptr || name == nullptr ? nullptr : found->findProperty(name);
}

/// Answers in a whole register: plugins test some of these results with all their bits.
template <Type kType, typename C>
std::uint64_t getProperty(void* object, const char* name, C* value) {
  Property* const property = find(object, name, "getting a property");
  const bool other_pointer = property != nullptr && factsOf(kType).form == Form::kPointer && property->type != kType;
  if (property == nullptr || value == nullptr || other_pointer) {
    return 0;
  }
  try {
    *value = toPlugin<C>(convertToVariable(Host::current(), property->value, kType));
    return 1;
  } catch (const ValueError&) {
    return 0;
  }
}

/// Null for a bad handle is not the same as nil.
bool isBadHandle(const void* passed, const Value& value) { return passed != nullptr && value.isNil(); }

template <Type kType, typename C>
std::uint64_t setProperty(void* object, const char* name, C value) {
  Property* const property = find(object, name, "setting a property");
  const bool other_pointer = property != nullptr && factsOf(kType).form == Form::kPointer && property->type != kType;
  if (property == nullptr || other_pointer) {
    return 0;
  }
  try {
    const Value passed = fromPlugin<kType>(value, Ownership::kBorrowed, "setting a property");
    if constexpr (std::is_pointer_v<C>) {
      if (isBadHandle(value, passed)) {
        return 0;
      }
    }
    assign(Host::current(), *property, passed);
    return 1;
  } catch (const ValueError&) {
    return 0;
  }
}

/// One entry serves Boolean and UInt8 properties: plugins set both through it.
std::uint64_t setBooleanOrByte(void* object, const char* name, std::uint8_t value) {
  const Property* const property = find(object, name, "setting a property");
  return property != nullptr && property->type == Type::kUInt8
             ? setProperty<Type::kUInt8, std::uint8_t>(object, name, value)
             : setProperty<Type::kBoolean, std::uint8_t>(object, name, value);
}

/// One entry serves Ptr and Object properties: plugins set both through it.
std::uint64_t setPtrOrObject(void* object, const char* name, void* value) {
  const Property* const property = find(object, name, "setting a property");
  return property != nullptr && property->type == Type::kObject ? setProperty<Type::kObject, void*>(object, name, value)
                                                                : setProperty<Type::kPtr, void*>(object, name, value);
}

// clang-format off
const Entry kGetters[] = {
    entry("REALGetPropValueString", getProperty<Type::kString, void*>),
    entry("REALGetPropValueDouble", getProperty<Type::kDouble, double>),
    entry("REALGetPropValueObject", getProperty<Type::kObject, void*>),
    entry("REALGetPropValuePtr", getProperty<Type::kPtr, void*>),
    entry("REALGetPropValueCString", getProperty<Type::kCString, void*>),
    entry("REALGetPropValueWString", getProperty<Type::kWString, void*>),
    entry("REALGetPropValuePString", getProperty<Type::kPString, void*>),
    entry("REALGetPropValueCFStringRef", getProperty<Type::kCFStringRef, void*>),
    entry("REALGetPropValueInt64", getProperty<Type::kInt64, std::int64_t>),
    entry("REALGetPropValueUInt64", getProperty<Type::kUInt64, std::uint64_t>),
    entry("REALGetPropValueUInt32", getProperty<Type::kUInt32, std::uint32_t>),
    entry("REALGetPropValueUInt16", getProperty<Type::kUInt16, std::uint16_t>),
    entry("REALGetPropValueInt16", getProperty<Type::kInt16, std::int16_t>),
    entry("REALGetPropValueSingle", getProperty<Type::kSingle, float>),
    entry("REALGetPropValueColor", getProperty<Type::kColor, std::uint32_t>),
    entry("REALGetPropValueCurrency", getProperty<Type::kCurrency, std::int64_t>),
    entry("REALGetPropValueInteger", getProperty<Type::kInteger, std::int64_t>),
    entry("REALGetPropValueUInteger", getProperty<Type::kUInteger, std::uint64_t>),
    entry("REALGetPropValueInt", getProperty<Type::kInt32, std::int32_t>),
    entry("REALGetPropValueBool", getProperty<Type::kBoolean, std::uint8_t>),
    entry("PluginGetPropValueText", getProperty<Type::kText, void*>),
};

const Entry kSetters[] = {
    entry("REALSetPropValueString", setProperty<Type::kString, void*>),
    entry("REALSetPropValueDouble", setProperty<Type::kDouble, double>),
    entry("REALSetPropValueObject", setProperty<Type::kObject, void*>),
    entry("REALSetPropValueColor", setProperty<Type::kColor, std::uint32_t>),
    entry("REALSetPropValueCurrency", setProperty<Type::kCurrency, std::int64_t>),
    entry("REALSetPropValueInteger", setProperty<Type::kInteger, std::int64_t>),
    entry("REALSetPropValueUInteger", setProperty<Type::kUInteger, std::uint64_t>),
    entry("REALSetPropValueUInt32", setProperty<Type::kUInt32, std::uint32_t>),
    entry("REALSetPropValueUInt64", setProperty<Type::kUInt64, std::uint64_t>),
    entry("REALSetPropValueInt64", setProperty<Type::kInt64, std::int64_t>),
    entry("REALSetPropValueInt16", setProperty<Type::kInt16, std::int16_t>),
    entry("REALSetPropValueUInt16", setProperty<Type::kUInt16, std::uint16_t>),
    entry("REALSetPropValueInt8", setProperty<Type::kInt8, std::int8_t>),
    entry("REALSetPropValueBoolean", setBooleanOrByte),
    entry("REALSetPropValueSingle", setProperty<Type::kSingle, float>),
    entry("REALSetPropValuePtr", setPtrOrObject),
    entry("REALSetPropValueCString", setProperty<Type::kCString, void*>),
    entry("REALSetPropValueWString", setProperty<Type::kWString, void*>),
    entry("REALSetPropValuePString", setProperty<Type::kPString, void*>),
    entry("REALSetPropValueCFStringRef", setProperty<Type::kCFStringRef, void*>),
    entry("REALSetPropValueInt", setProperty<Type::kInt32, std::int32_t>),
    entry("PluginSetPropValueText", setProperty<Type::kText, void*>),
};
// clang-format on

}  // namespace

void addPropertyEntries(Host& host) {
  addEntries(host, kGetters);
  addEntries(host, kSetters);
}

}  // namespace devhost
