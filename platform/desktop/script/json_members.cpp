#include "desktop/script/json_members.h"

#include <limits>

#include "desktop/model/uuid.h"

namespace platform::desktop::json {
const Array& arrayOf(const Value& value, const char* what) {
  if (const auto* const array = std::get_if<Array>(&value.content)) {
    return *array;
  }
  throw Error(value.line, std::string(what) + " must be an array");
}

bool booleanOf(const Value& value, const char* what) {
  if (const auto* const boolean = std::get_if<bool>(&value.content)) {
    return *boolean;
  }
  throw Error(value.line, std::string(what) + " must be true or false");
}

std::string stringOf(const Value& value, const char* what) {
  if (const auto* const string = std::get_if<std::string>(&value.content)) {
    return *string;
  }
  throw Error(value.line, std::string(what) + " must be a string");
}

double numberOf(const Value& value, const char* what) {
  if (const auto* const number = std::get_if<double>(&value.content)) {
    return *number;
  }
  if (const auto* const whole = std::get_if<std::uint64_t>(&value.content)) {
    return static_cast<double>(*whole);
  }
  if (const auto* const whole = std::get_if<std::int64_t>(&value.content)) {
    return static_cast<double>(*whole);
  }
  throw Error(value.line, std::string(what) + " must be a number");
}

std::uint64_t wholeOf(const Value& value, const char* what, std::uint64_t least, std::uint64_t most) {
  const auto* const whole = std::get_if<std::uint64_t>(&value.content);
  if (whole == nullptr || *whole < least || *whole > most) {
    throw Error(value.line, std::string(what) + " must be a whole number from " + std::to_string(least) + " to " +
                                std::to_string(most));
  }
  return *whole;
}

std::uint32_t uint32Of(const Value& value, const char* what, std::uint32_t least) {
  return static_cast<std::uint32_t>(wholeOf(value, what, least, std::numeric_limits<std::uint32_t>::max()));
}

Rect rectOf(const Value& value, const char* what) {
  const Array& parts = arrayOf(value, what);
  if (parts.size() != 4) {
    throw Error(value.line, std::string(what) + " must be four numbers: x, y, width, height");
  }
  return {numberOf(parts[0], what), numberOf(parts[1], what), numberOf(parts[2], what), numberOf(parts[3], what)};
}

Uuid uuidOf(const Value& value, const char* what) {
  const std::string text = stringOf(value, what);
  if (const auto uuid = parseUuid(text)) {
    return *uuid;
  }
  throw Error(
      value.line,
      std::string(what) + " must be a UUID of the shape xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx, not " + inQuotes(text));
}

Members::Members(const Value& value, const char* what)
    : object_(std::get_if<Object>(&value.content)), line_(value.line) {
  if (object_ == nullptr) {
    throw Error(value.line, std::string(what) + " must be an object");
  }
}

const Value* Members::findOrNull(const char* key) {
  known_.insert(key);
  for (const Member& member : *object_) {
    if (member.key == key) {
      return &member.value;
    }
  }
  return nullptr;
}

const Value* Members::find(const char* key) {
  const Value* const value = findOrNull(key);
  return value == nullptr || value->isNull() ? nullptr : value;
}

const Value& Members::need(const char* key) {
  if (const Value* const value = find(key)) {
    return *value;
  }
  throw Error(line_, std::string(key) + " is missing");
}

void Members::finish() const {
  for (const Member& member : *object_) {
    if (!known_.contains(member.key)) {
      throw Error(member.line, "unknown key " + inQuotes(member.key));
    }
  }
}

std::optional<bool> Members::boolean(const char* key) {
  const Value* const value = find(key);
  return value != nullptr ? std::optional(booleanOf(*value, key)) : std::nullopt;
}

std::optional<std::string> Members::string(const char* key) {
  const Value* const value = find(key);
  return value != nullptr ? std::optional(stringOf(*value, key)) : std::nullopt;
}

std::optional<std::uint32_t> Members::uint32(const char* key) {
  const Value* const value = find(key);
  return value != nullptr ? std::optional(uint32Of(*value, key)) : std::nullopt;
}

}  // namespace platform::desktop::json
