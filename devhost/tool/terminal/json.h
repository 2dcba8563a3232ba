// JSON documents of the tool; docs/json.md describes them.
#pragma once

#include <nlohmann/json.hpp>

#include "devhost/language/value.h"

namespace devhost::tool {

/// Changes whenever a member changes its meaning or goes away; new members may come without a change.
inline constexpr int kJsonVersion = 1;

using Json = nlohmann::ordered_json;

/// A document with the members that every one has.
Json jsonDocument(const char* command);
/// Numbers, truth values, texts and lists; null for nil, NaN, infinities and everything that has no other form.
Json jsonValue(const Value& value);
/// To the standard output, indented, with a line end. Bytes that are no UTF-8 come out as U+FFFD.
void printJson(const Json& document);

}  // namespace devhost::tool
