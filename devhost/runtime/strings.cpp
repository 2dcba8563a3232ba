#include "devhost/runtime/strings.h"

#include <algorithm>

#include "devhost/language/printable.h"

namespace devhost {
namespace {

constexpr std::size_t kPascalLimit = 255;
constexpr std::size_t kDescribedBytes = 120;

}  // namespace

String::String(std::shared_ptr<Handles> handles, std::string bytes, std::uint32_t encoding)
    : Counted(std::move(handles), kKind), bytes_(std::move(bytes)), encoding_(encoding) {}

const unsigned char* String::pascalBytes() {
  const std::size_t length = std::min(bytes_.size(), kPascalLimit);
  pascal_ = std::string(1, static_cast<char>(length)) + bytes_.substr(0, length);
  return reinterpret_cast<const unsigned char*>(pascal_.data());
}

std::string String::describe() const {
  const bool cut = bytes_.size() > kDescribedBytes;
  return "string \"" + printable(std::string_view(bytes_).substr(0, kDescribedBytes)) + (cut ? "...\"" : "\"") + " (" +
         std::to_string(bytes_.size()) + " bytes)";
}

Text::Text(std::shared_ptr<Handles> handles, std::string utf8)
    : Counted(std::move(handles), kKind), utf8_(std::move(utf8)) {}

std::string Text::describe() const {
  return "text \"" + printable(std::string_view(utf8_).substr(0, kDescribedBytes)) + "\"";
}

}  // namespace devhost
