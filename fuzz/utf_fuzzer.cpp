// UTF-8 to UTF-16 and back, compared with ICU: the same texts are refused, and the others give the same result.
#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/support/fuzzing.h"
#include "strings/utils.h"
#include "support/icu_text.h"

namespace {

using fuzz::require;

/// The result, or nothing when the conversion throws its documented error. Any other exception is a finding.
template <typename Result, typename Text>
std::optional<Result> converted(Result (*convert)(Text), const Text& text, const char* message) {
  try {
    return convert(text);
  } catch (const std::range_error& error) {
    require(std::strcmp(error.what(), message) == 0, "a refusal has the message of its direction");
    return std::nullopt;
  }
}

std::optional<std::wstring> toUtf16(const std::string& text) {
  return converted(Utils::utf8_to_utf16, text, "wstring_convert: from_bytes error");
}

std::optional<std::string> toUtf8(const std::wstring& text) {
  return converted(Utils::utf16_to_utf8, text, "wstring_convert: to_bytes error");
}

std::wstring wide(const std::u16string& units) { return {units.begin(), units.end()}; }

void checkBytes(const std::string& text) {
  const auto units = toUtf16(text);
  const auto expected = support::utf16ByIcu(text);
  require(units.has_value() == expected.has_value(), "ICU accepts the same UTF-8");
  if (units) {
    require(*units == wide(*expected), "ICU makes the same UTF-16");
    require(toUtf8(*units) == text, "what came from UTF-8 goes back");
  }
}

void checkUnits(const std::u16string& text) {
  const auto bytes = toUtf8(wide(text));
  require(bytes == support::utf8ByIcu(text), "ICU makes the same UTF-8 or refuses as well");
  if (bytes) {
    require(toUtf16(*bytes) == wide(text), "what came from UTF-16 goes back");
  }
}

/// Elements that need not be code units.
void checkElements(const std::vector<std::uint32_t>& elements) {
  std::u16string units;
  for (const std::uint32_t element : elements) {
    if (element <= 0xFFFF) {
      units.push_back(static_cast<char16_t>(element));
    }
  }
  const auto expected = units.size() == elements.size() ? support::utf8ByIcu(units) : std::nullopt;
  require(toUtf8({elements.begin(), elements.end()}) == expected, "an element above 0xFFFF is refused");
}

void checkAppending(const std::uint8_t* data, std::size_t size) {
  std::vector<unsigned char> target(data, data + size / 2);
  std::vector<unsigned char> rest(data + size / 2, data + size);
  Utils::appendBytes(target, rest.data(), rest.size());
  require(target == std::vector<unsigned char>(data, data + size), "bytes are appended as they are");
}

/// As many whole elements as the data has.
template <typename Elements>
Elements elementsOf(const std::uint8_t* data, std::size_t size) {
  Elements elements(size / sizeof(typename Elements::value_type), 0);
  if (!elements.empty()) {
    std::memcpy(elements.data(), data, elements.size() * sizeof(typename Elements::value_type));
  }
  return elements;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  checkBytes(elementsOf<std::string>(data, size));
  checkUnits(elementsOf<std::u16string>(data, size));
  checkElements(elementsOf<std::vector<std::uint32_t>>(data, size));
  checkAppending(data, size);
  return 0;
}
