#include "devhost/types.h"

#include <algorithm>

namespace devhost {
namespace {

constexpr TypeFacts kFacts[] = {
    {Type::kBoolean, "Boolean", Form::kBoolean, 1, 1},
    {Type::kInteger, "Integer", Form::kSigned, 4, 8},
    {Type::kUInteger, "UInteger", Form::kUnsigned, 4, 8},
    {Type::kInt8, "Int8", Form::kSigned, 1, 1},
    {Type::kInt16, "Int16", Form::kSigned, 2, 2},
    {Type::kInt32, "Int32", Form::kSigned, 4, 4},
    {Type::kInt64, "Int64", Form::kSigned, 8, 8},
    {Type::kUInt8, "UInt8", Form::kUnsigned, 1, 1},
    {Type::kUInt16, "UInt16", Form::kUnsigned, 2, 2},
    {Type::kUInt32, "UInt32", Form::kUnsigned, 4, 4},
    {Type::kUInt64, "UInt64", Form::kUnsigned, 8, 8},
    {Type::kSingle, "Single", Form::kReal, 4, 4},
    {Type::kDouble, "Double", Form::kReal, 8, 8},
    {Type::kCurrency, "Currency", Form::kSigned, 8, 8},
    {Type::kColor, "Color", Form::kUnsigned, 4, 4},
    {Type::kString, "String", Form::kString, 8, 8},
    {Type::kText, "Text", Form::kText, 8, 8},
    {Type::kObject, "Object", Form::kObject, 8, 8},
    {Type::kPtr, "Ptr", Form::kPointer, 8, 8},
    {Type::kCString, "CString", Form::kPointer, 8, 8},
    {Type::kWString, "WString", Form::kPointer, 8, 8},
    {Type::kPString, "PString", Form::kPointer, 8, 8},
    {Type::kCFStringRef, "CFStringRef", Form::kPointer, 8, 8},
    {Type::kOSType, "OSType", Form::kUnsigned, 4, 4},
};

char lower(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; }

}  // namespace

const TypeFacts& factsOf(Type type) {
  return *std::find_if(std::begin(kFacts), std::end(kFacts), [type](const TypeFacts& f) { return f.type == type; });
}

std::optional<Type> findType(std::string_view name) {
  for (const TypeFacts& facts : kFacts) {
    if (sameName(facts.name, name)) {
      return facts.type;
    }
  }
  return std::nullopt;
}

std::optional<Type> elementTypeOfCode(std::uint32_t code) {
  if (code < 1 || code > kElementTypes.size()) {
    return std::nullopt;
  }
  return kElementTypes[code - 1];
}

std::uint32_t codeOfElementType(Type type) {
  const auto* const found = std::find(kElementTypes.begin(), kElementTypes.end(), type);
  return found == kElementTypes.end() ? 0 : static_cast<std::uint32_t>(found - kElementTypes.begin()) + 1;
}

bool sameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

std::string lowerCase(std::string_view name) {
  std::string result(name);
  std::transform(result.begin(), result.end(), result.begin(), lower);
  return result;
}

}  // namespace devhost
