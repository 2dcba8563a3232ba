#include "devhost/language/types.h"

#include <algorithm>

namespace devhost {
namespace {

constexpr TypeFacts kFacts[] = {
    {Type::kBoolean, Form::kBoolean, "Boolean", 1},
    {Type::kInteger, Form::kSigned, "Integer", 4},
    {Type::kUInteger, Form::kUnsigned, "UInteger", 4},
    {Type::kInt8, Form::kSigned, "Int8", 1},
    {Type::kInt16, Form::kSigned, "Int16", 2},
    {Type::kInt32, Form::kSigned, "Int32", 4},
    {Type::kInt64, Form::kSigned, "Int64", 8},
    {Type::kUInt8, Form::kUnsigned, "UInt8", 1},
    {Type::kUInt16, Form::kUnsigned, "UInt16", 2},
    {Type::kUInt32, Form::kUnsigned, "UInt32", 4},
    {Type::kUInt64, Form::kUnsigned, "UInt64", 8},
    {Type::kSingle, Form::kReal, "Single", 4},
    {Type::kDouble, Form::kReal, "Double", 8},
    {Type::kCurrency, Form::kSigned, "Currency", 8},
    {Type::kColor, Form::kUnsigned, "Color", 4},
    {Type::kString, Form::kString, "String", 8},
    {Type::kText, Form::kPointer, "Text", 8},
    {Type::kObject, Form::kObject, "Object", 8},
    {Type::kPtr, Form::kPointer, "Ptr", 8},
    {Type::kCString, Form::kPointer, "CString", 8},
    {Type::kWString, Form::kPointer, "WString", 8},
    {Type::kPString, Form::kPointer, "PString", 8},
    {Type::kCFStringRef, Form::kPointer, "CFStringRef", 8},
    {Type::kOSType, Form::kUnsigned, "OSType", 4},
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

bool sameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

std::string lowerCase(std::string_view name) {
  std::string result(name);
  std::transform(result.begin(), result.end(), result.begin(), lower);
  return result;
}

}  // namespace devhost
