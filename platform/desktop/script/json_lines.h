// JSON text as a tree in which every part has its line, for error messages. Any thread may call.
//
// Size of the text, depth of nesting and members of an object are limited; a key may occur once in an object.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace platform::desktop::json {

inline constexpr std::size_t kMaxBytes = std::size_t{1} << 20;
inline constexpr std::size_t kMaxDepth = 16;
inline constexpr std::size_t kMaxMembers = 256;  ///< of one object

/// The reason in one line of printable ASCII, and the line of the text, from 1.
class Error : public std::runtime_error {
 public:
  Error(std::size_t line, const std::string& reason) : std::runtime_error(reason), line_(line) {}
  std::size_t line() const { return line_; }

 private:
  std::size_t line_;
};

struct Value;
struct Member;
using Array = std::vector<Value>;
using Object = std::vector<Member>;  ///< in the order of the text

/// A value, and the line on which it begins. A number is a std::uint64_t when written without sign, point and exponent,
/// a std::int64_t when only with a minus sign, else the nearest double; always finite.
struct Value {
  std::size_t line = 1;
  std::variant<std::monostate, bool, std::uint64_t, std::int64_t, double, std::string, Array, Object> content;

  bool isNull() const { return std::holds_alternative<std::monostate>(content); }
};

struct Member {
  std::string key;
  std::size_t line = 1;  ///< of the key
  Value value;
};

/// Throws Error.
Value parse(std::string_view text);

/// The text in double quotes, shortened when long, with all but printable ASCII escaped.
std::string inQuotes(std::string_view text);

}  // namespace platform::desktop::json
