// Variants: (value) -> new object of class Variant, whose property Value has the value and the type. The plugin keeps
// its reference to what it passes.
#include "devhost/entries/entries.h"
#include "devhost/entries/entry_values.h"

namespace devhost {
namespace {

template <Type kType, typename C>
void* makeVariant(C value) {
  return guarded<void*>("making a variant", nullptr, [value](Host& host) {
    return give(host.makeVariant(kType, fromPlugin<kType>(value, Ownership::kBorrowed, "making a variant")));
  });
}

// clang-format off
const Entry kEntries[] = {
    entry("StringToVariant", makeVariant<Type::kString, void*>),
    entry("PtrToVariant", makeVariant<Type::kPtr, void*>),
    entry("CStringToVariant", makeVariant<Type::kCString, void*>),
    entry("WStringToVariant", makeVariant<Type::kWString, void*>),
    entry("PStringToVariant", makeVariant<Type::kPString, void*>),
    entry("OSTypeToVariant", makeVariant<Type::kOSType, std::uint32_t>),
    entry("CFStringRefToVariant", makeVariant<Type::kCFStringRef, void*>),
    entry("Int32ToVariant", makeVariant<Type::kInt32, std::int32_t>),
    entry("IntegerToVariant", makeVariant<Type::kInteger, std::int64_t>),
    entry("DoubleToVariant", makeVariant<Type::kDouble, double>),
    entry("BooleanToVariant", makeVariant<Type::kBoolean, std::uint8_t>),
    entry("ColorToVariant", makeVariant<Type::kColor, std::uint32_t>),
    entry("UInt32ToVariant", makeVariant<Type::kUInt32, std::uint32_t>),
    entry("Int64ToVariant", makeVariant<Type::kInt64, std::int64_t>),
    entry("UInt64ToVariant", makeVariant<Type::kUInt64, std::uint64_t>),
    entry("SingleToVariant", makeVariant<Type::kSingle, float>),
    entry("CurrencyToVariant", makeVariant<Type::kCurrency, std::int64_t>),
    entry("PluginNewVariantText", makeVariant<Type::kText, void*>),
};
// clang-format on

}  // namespace

void addVariantEntries(Host& host) { addEntries(host, kEntries); }

}  // namespace devhost
