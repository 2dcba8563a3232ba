#include "desktop/script/json_lines.h"

#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

namespace platform::desktop::json {
namespace {

constexpr std::size_t kMaxQuoted = 60;
constexpr std::size_t kMaxReason = 200;

/// The line of the last character that is not white space: the parser reads one character past a number, which may be
/// the end of the line.
struct Position {
  std::size_t current_line = 1;
  std::size_t token_line = 1;

  void read(char character) {
    if (character == '\n') {
      ++current_line;
    } else if (character != ' ' && character != '\t' && character != '\r') {
      token_line = current_line;
    }
  }
};

/// Reports every character that the parser takes to a Position.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* at, Position* position) : at_(at), position_(position) {}

  reference operator*() const { return *at_; }
  CountingIterator& operator++() {
    position_->read(*at_);
    ++at_;
    return *this;
  }
  CountingIterator operator++(int) {
    CountingIterator before = *this;
    ++*this;
    return before;
  }
  friend bool operator==(const CountingIterator& a, const CountingIterator& b) { return a.at_ == b.at_; }

 private:
  const char* at_;
  Position* position_;
};

bool isPrintable(char character) { return character >= ' ' && character <= '~'; }

/// The parser's own message without its leading class and position, as printable ASCII of bounded length.
std::string reasonOf(const std::string& message) {
  std::string reason = message;
  for (const char* const prefix : {"] ", "column "}) {
    const std::size_t at = reason.find(prefix);
    if (at != std::string::npos) {
      reason.erase(0, at + std::string_view(prefix).size());
    }
  }
  reason.erase(0, reason.find_first_not_of("0123456789: "));
  for (char& character : reason) {
    character = isPrintable(character) ? character : '?';
  }
  if (reason.size() > kMaxReason) {
    reason = reason.substr(0, kMaxReason) + "...";
  }
  return reason;
}

/// Builds the tree from the parser's events.
class Builder {
 public:
  explicit Builder(const Position& position) : position_(position) {}

  bool null() { return add(std::monostate{}); }
  bool boolean(bool value) { return add(value); }
  bool number_integer(std::int64_t value) { return add(value); }
  bool number_unsigned(std::uint64_t value) { return add(value); }
  bool number_float(double value, const std::string&) { return add(value); }
  bool string(std::string& value) { return add(std::move(value)); }
  bool binary(nlohmann::json::binary_t&) { return false; }  // not in text

  bool start_object(std::size_t) { return open(Object{}); }
  bool end_object() { return close(); }
  bool start_array(std::size_t) { return open(Array{}); }
  bool end_array() { return close(); }

  bool key(std::string& text) {
    auto& object = std::get<Object>(open_.back().content);
    for (const Member& member : object) {
      if (member.key == text) {
        throw Error(position_.token_line, "the key " + inQuotes(text) + " occurs twice in one object");
      }
    }
    if (object.size() == kMaxMembers) {
      throw Error(position_.token_line, "more than " + std::to_string(kMaxMembers) + " keys in one object");
    }
    object.push_back({std::move(text), position_.token_line, {}});
    return true;
  }

  bool parse_error(std::size_t, const std::string&, const std::exception& error) {
    throw Error(position_.token_line, "invalid JSON: " + reasonOf(error.what()));
  }

  Value take() { return std::move(root_); }

 private:
  template <typename Content>
  bool add(Content content) {
    place({position_.token_line, std::move(content)});
    return true;
  }

  template <typename Content>
  bool open(Content content) {
    if (open_.size() == kMaxDepth) {
      throw Error(position_.token_line, "nested more than " + std::to_string(kMaxDepth) + " deep");
    }
    open_.push_back({position_.token_line, std::move(content)});
    return true;
  }

  bool close() {
    Value value = std::move(open_.back());
    open_.pop_back();
    place(std::move(value));
    return true;
  }

  void place(Value value) {
    if (open_.empty()) {
      root_ = std::move(value);
    } else if (Array* const array = std::get_if<Array>(&open_.back().content)) {
      array->push_back(std::move(value));
    } else {
      std::get<Object>(open_.back().content).back().value = std::move(value);
    }
  }

  const Position& position_;
  std::vector<Value> open_;  // arrays and objects that have begun and not ended, outermost first
  Value root_;
};

}  // namespace

Value parse(std::string_view text) {
  if (text.size() > kMaxBytes) {
    throw Error(1, "longer than " + std::to_string(kMaxBytes) + " bytes");
  }
  Position position;
  Builder builder(position);
  nlohmann::json::sax_parse(CountingIterator(text.data(), &position),
                            CountingIterator(text.data() + text.size(), &position), &builder);
  return builder.take();
}

std::string inQuotes(std::string_view text) {
  constexpr char kHexDigits[] = "0123456789ABCDEF";
  std::string result = "\"";
  for (const char character : text.substr(0, kMaxQuoted)) {
    if (isPrintable(character) && character != '"' && character != '\\') {
      result += character;
      continue;
    }
    const auto byte = static_cast<unsigned char>(character);
    result += {'\\', 'x', kHexDigits[byte >> 4], kHexDigits[byte & 0xF]};
  }
  return result + (text.size() > kMaxQuoted ? "...\"" : "\"");
}

}  // namespace platform::desktop::json
