// Typed access to a JSON tree; errors have the line of the value, and call it `what`. Any thread may call.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "desktop/model/desktop.h"
#include "desktop/script/json_lines.h"

namespace platform::desktop::json {

// Each throws Error when the value is of another kind.
const Array& arrayOf(const Value& value, const char* what);
bool booleanOf(const Value& value, const char* what);
std::string stringOf(const Value& value, const char* what);
double numberOf(const Value& value, const char* what);
/// A number without point and exponent, from `least` to `most`.
std::uint64_t wholeOf(const Value& value, const char* what, std::uint64_t least, std::uint64_t most);
std::uint32_t uint32Of(const Value& value, const char* what, std::uint32_t least = 0);
/// An array of four numbers: x, y, width, height.
Rect rectOf(const Value& value, const char* what);
/// The 36 characters of a UUID's text, in either case.
Uuid uuidOf(const Value& value, const char* what);

/// The members of one object. finish() rejects the keys that have not been looked up.
class Members {
 public:
  /// Throws Error when the value is not an object. The value must outlive this.
  Members(const Value& value, const char* what);

  /// Null when the key is missing; a null value is returned.
  const Value* findOrNull(const char* key);
  /// Null when the key is missing or its value is null.
  const Value* find(const char* key);
  /// Throws Error when the key is missing or its value is null.
  const Value& need(const char* key);

  // Nothing when the key is missing or its value is null.
  std::optional<bool> boolean(const char* key);
  std::optional<std::string> string(const char* key);
  std::optional<std::uint32_t> uint32(const char* key);

  /// Throws Error for a key that has not been looked up.
  void finish() const;

 private:
  const Object* object_;
  std::size_t line_;
  std::set<std::string, std::less<>> known_;
};

}  // namespace platform::desktop::json
