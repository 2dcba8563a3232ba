// Elements of arrays, in two stages: an entry takes the array and answers the procedure that does the operation on it,
// or null when the array's elements are of another type.
//
// Procedures: insert (array, int64 index, value); get (array, int64 index) -> value; set (array, value, int64 index).
// An array takes over the reference that a plugin passes; one that a plugin gets is its own. An index outside the array
// is noted as a fault; get then answers zero or null.
#include "devhost/entries/entries.h"
#include "devhost/entries/entry_values.h"

namespace devhost {
namespace {

void addIndexFault(Host& host, const char* where, const Array& array, std::int64_t index) {
  host.handles().addFault(std::string(where) + ": index " + std::to_string(index) + " is outside the " +
                          array.describe());
}

template <Type kType, typename C>
void insertElement(void* array, std::int64_t index, C value) {
  guarded("inserting an element", 0, [=](Host& host) {
    auto* const found = host.handles().find<Array>(array, "inserting an element");
    Value element = fromPlugin<kType>(value, Ownership::kHandedOver, "inserting an element");
    if (found != nullptr && !found->insert(index, convertToVariable(host, element, kType))) {
      addIndexFault(host, "inserting an element", *found, index);
    }
    return 0;
  });
}

template <Type kType, typename C>
C getElement(void* array, std::int64_t index) {
  return guarded("getting an element", C{}, [=](Host& host) {
    auto* const found = host.handles().find<Array>(array, "getting an element");
    const Value* const element = found == nullptr ? nullptr : found->get(index);
    if (found != nullptr && element == nullptr) {
      addIndexFault(host, "getting an element", *found, index);
    }
    return element == nullptr ? C{} : toPlugin<C>(*element);
  });
}

template <Type kType, typename C>
void setElement(void* array, C value, std::int64_t index) {
  guarded("setting an element", 0, [=](Host& host) {
    auto* const found = host.handles().find<Array>(array, "setting an element");
    Value element = fromPlugin<kType>(value, Ownership::kHandedOver, "setting an element");
    if (found != nullptr && !found->set(index, convertToVariable(host, element, kType))) {
      addIndexFault(host, "setting an element", *found, index);
    }
    return 0;
  });
}

template <typename Function>
void* ifElementsAre(Type type, void* array, Function* procedure) {
  const Array* const found = Host::current().handles().find<Array>(array, "asking for an element procedure");
  return found != nullptr && found->elementType() == type ? reinterpret_cast<void*>(procedure) : nullptr;
}

template <Type kType, typename C>
void* insertProcedure(void* array) {
  return ifElementsAre(kType, array, &insertElement<kType, C>);
}

template <Type kType, typename C>
void* getProcedure(void* array) {
  return ifElementsAre(kType, array, &getElement<kType, C>);
}

template <Type kType, typename C>
void* setProcedure(void* array) {
  return ifElementsAre(kType, array, &setElement<kType, C>);
}

// clang-format off
const Entry kEntries[] = {
    entry("PluginColorArrayInsertProc", insertProcedure<Type::kColor, std::uint32_t>),
    entry("PluginIntegerArrayInsertProc", insertProcedure<Type::kInteger, std::int64_t>),
    entry("PluginUIntegerArrayInsertProc", insertProcedure<Type::kUInteger, std::uint64_t>),
    entry("PluginBooleanArrayInsertProc", insertProcedure<Type::kBoolean, std::uint8_t>),
    entry("PluginCurrencyArrayInsertProc", insertProcedure<Type::kCurrency, std::int64_t>),
    entry("PluginInt64ArrayInsertProc", insertProcedure<Type::kInt64, std::int64_t>),
    entry("PluginInt32ArrayInsertProc", insertProcedure<Type::kInt32, std::int32_t>),
    entry("PluginInt16ArrayInsertProc", insertProcedure<Type::kInt16, std::int16_t>),
    entry("PluginInt8ArrayInsertProc", insertProcedure<Type::kInt8, std::int8_t>),
    entry("PluginUInt64ArrayInsertProc", insertProcedure<Type::kUInt64, std::uint64_t>),
    entry("PluginUInt32ArrayInsertProc", insertProcedure<Type::kUInt32, std::uint32_t>),
    entry("PluginUInt16ArrayInsertProc", insertProcedure<Type::kUInt16, std::uint16_t>),
    entry("PluginUInt8ArrayInsertProc", insertProcedure<Type::kUInt8, std::uint8_t>),
    entry("PluginSingleArrayInsertProc", insertProcedure<Type::kSingle, float>),
    entry("PluginDoubleArrayInsertProc", insertProcedure<Type::kDouble, double>),
    entry("PluginStringArrayInsertProc", insertProcedure<Type::kString, void*>),
    entry("PluginTextArrayInsertProc", insertProcedure<Type::kText, void*>),
    entry("PluginObjectArrayInsertProc", insertProcedure<Type::kObject, void*>),

    entry("PluginColorArrayGetProc", getProcedure<Type::kColor, std::uint32_t>),
    entry("PluginIntegerArrayGetProc", getProcedure<Type::kInteger, std::int64_t>),
    entry("PluginUIntegerArrayGetProc", getProcedure<Type::kUInteger, std::uint64_t>),
    entry("PluginBooleanArrayGetProc", getProcedure<Type::kBoolean, std::uint8_t>),
    entry("PluginCurrencyArrayGetProc", getProcedure<Type::kCurrency, std::int64_t>),
    entry("PluginInt64ArrayGetProc", getProcedure<Type::kInt64, std::int64_t>),
    entry("PluginInt32ArrayGetProc", getProcedure<Type::kInt32, std::int32_t>),
    entry("PluginInt16ArrayGetProc", getProcedure<Type::kInt16, std::int16_t>),
    entry("PluginInt8ArrayGetProc", getProcedure<Type::kInt8, std::int8_t>),
    entry("PluginUInt64ArrayGetProc", getProcedure<Type::kUInt64, std::uint64_t>),
    entry("PluginUInt32ArrayGetProc", getProcedure<Type::kUInt32, std::uint32_t>),
    entry("PluginUInt16ArrayGetProc", getProcedure<Type::kUInt16, std::uint16_t>),
    entry("PluginUInt8ArrayGetProc", getProcedure<Type::kUInt8, std::uint8_t>),
    entry("PluginSingleArrayGetProc", getProcedure<Type::kSingle, float>),
    entry("PluginDoubleArrayGetProc", getProcedure<Type::kDouble, double>),
    entry("PluginStringArrayGetProc", getProcedure<Type::kString, void*>),
    entry("PluginTextArrayGetProc", getProcedure<Type::kText, void*>),
    entry("PluginObjectArrayGetProc", getProcedure<Type::kObject, void*>),

    entry("PluginColorArraySetProc", setProcedure<Type::kColor, std::uint32_t>),
    entry("PluginIntegerArraySetProc", setProcedure<Type::kInteger, std::int64_t>),
    entry("PluginUIntegerArraySetProc", setProcedure<Type::kUInteger, std::uint64_t>),
    entry("PluginBooleanArraySetProc", setProcedure<Type::kBoolean, std::uint8_t>),
    entry("PluginCurrencyArraySetProc", setProcedure<Type::kCurrency, std::int64_t>),
    entry("PluginInt64ArraySetProc", setProcedure<Type::kInt64, std::int64_t>),
    entry("PluginInt32ArraySetProc", setProcedure<Type::kInt32, std::int32_t>),
    entry("PluginInt16ArraySetProc", setProcedure<Type::kInt16, std::int16_t>),
    entry("PluginInt8ArraySetProc", setProcedure<Type::kInt8, std::int8_t>),
    entry("PluginUInt64ArraySetProc", setProcedure<Type::kUInt64, std::uint64_t>),
    entry("PluginUInt32ArraySetProc", setProcedure<Type::kUInt32, std::uint32_t>),
    entry("PluginUInt16ArraySetProc", setProcedure<Type::kUInt16, std::uint16_t>),
    entry("PluginUInt8ArraySetProc", setProcedure<Type::kUInt8, std::uint8_t>),
    entry("PluginSingleArraySetProc", setProcedure<Type::kSingle, float>),
    entry("PluginDoubleArraySetProc", setProcedure<Type::kDouble, double>),
    entry("PluginStringArraySetProc", setProcedure<Type::kString, void*>),
    entry("PluginTextArraySetProc", setProcedure<Type::kText, void*>),
    entry("PluginObjectArraySetProc", setProcedure<Type::kObject, void*>),
};
// clang-format on

}  // namespace

void addArrayElementEntries(Host& host) { addEntries(host, kEntries); }

}  // namespace devhost
