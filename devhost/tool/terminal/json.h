// The tool's JSON documents; docs/json.md describes them.
#pragma once

#include <nlohmann/json.hpp>

#include "devhost/language/value.h"

namespace devhost::tool {

/// Changes when a member changes its meaning or is removed; new members do not change it.
inline constexpr int kJsonVersion = 1;

using Json = nlohmann::ordered_json;

/// A document with the members that all have in common.
Json jsonDocument(const char* command);
/// Numbers, truth values, texts and lists; null for nil, NaN, infinities and all other types.
Json jsonValue(const Value& value);
/// Prints to the standard output, indented, with a line end. Invalid UTF-8 becomes U+FFFD.
void printJson(const Json& document);

}  // namespace devhost::tool
