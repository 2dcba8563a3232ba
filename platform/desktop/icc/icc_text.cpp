#include "desktop/icc/icc_text.h"

#include <algorithm>
#include <array>

#include "desktop/model/utf8.h"

namespace platform::desktop {
namespace {

// Offsets in a 'desc' element; what follows the ASCII part is placed after it. ICC.1:2001-04, 6.5.17.
constexpr std::uint32_t kDescAsciiCount = 8;
constexpr std::uint32_t kDescAscii = 12;
constexpr std::uint32_t kDescUnicodeCount = 4;
constexpr std::uint32_t kDescUnicode = 8;
constexpr std::uint32_t kDescScriptCount = 2;
constexpr std::uint32_t kDescScript = 3;
constexpr std::uint8_t kDescScriptMax = 67;

// Offsets in an 'mluc' element and in one of its records. ICC.1:2022, 10.15.
constexpr std::uint32_t kMlucCount = 8;
constexpr std::uint32_t kMlucRecordSize = 12;
constexpr std::uint32_t kMlucRecords = 16;
constexpr std::uint32_t kRecordSize = 12;
/// Records after this many are not looked at; profiles in use have up to about a hundred.
constexpr std::uint32_t kMaxRecords = 1024;

constexpr std::uint32_t kText = 8;

constexpr char16_t kByteOrderMark = 0xFEFF;

/// Reads inside one element.
class Element {
 public:
  Element(const IccProfile& profile, const IccTag& tag) : profile_(profile), tag_(tag) {}

  std::uint32_t size() const { return tag_.size; }

  bool holds(std::uint64_t offset, std::uint64_t count) const {
    return offset <= tag_.size && count <= tag_.size - offset;
  }

  bool read(std::uint64_t offset, void* target, std::size_t count) const {
    return holds(offset, count) && profile_.read(tag_.offset + offset, target, count);
  }

  std::optional<std::uint32_t> number(std::uint64_t offset) const {
    std::array<std::uint8_t, 4> bytes;
    if (!read(offset, bytes.data(), bytes.size())) {
      return std::nullopt;
    }
    return bigEndian32(bytes.data());
  }

  /// Nothing, too, for more than a text may have.
  std::optional<std::string> bytes(std::uint64_t offset, std::uint64_t count) const {
    if (count > kMaxIccTextSize || !holds(offset, count)) {
      return std::nullopt;
    }
    std::string bytes(count, '\0');
    if (!read(offset, bytes.data(), count)) {
      return std::nullopt;
    }
    return bytes;
  }

 private:
  const IccProfile& profile_;
  IccTag tag_;
};

bool isAscii(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; });
}

void endAtNul(std::string& text) { text.resize(std::min(text.find('\0'), text.size())); }

/// Big-endian UTF-16 up to the first NUL; a last odd byte is ignored.
std::string utf8FromUtf16(std::string_view bytes) {
  const auto* const data = reinterpret_cast<const std::uint8_t*>(bytes.data());
  const std::size_t count = bytes.size() / 2;
  const auto unit = [&](std::size_t i) -> char32_t { return bigEndian16(data + 2 * i); };
  std::string text;
  text.reserve(3 * count);  // at most; growing by steps would take more
  for (std::size_t i = count > 0 && unit(0) == kByteOrderMark ? 1 : 0; i < count && unit(i) != 0; ++i) {
    const char32_t first = unit(i);
    if (first < 0xD800 || first > 0xDFFF) {
      appendUtf8(text, first);
    } else if (first < 0xDC00 && i + 1 < count && unit(i + 1) >= 0xDC00 && unit(i + 1) <= 0xDFFF) {
      appendUtf8(text, 0x10000 + ((first - 0xD800) << 10) + (unit(++i) - 0xDC00));
    } else {
      appendUtf8(text, kReplacementCharacter);
    }
  }
  return text;
}

/// As UTF-8 when they are that, else as Latin-1.
std::string utf8FromBytes(std::string bytes) {
  if (isUtf8(bytes)) {
    return bytes;
  }
  std::string text;
  text.reserve(2 * bytes.size());
  for (const char byte : bytes) {
    appendUtf8(text, static_cast<unsigned char>(byte));
  }
  return text;
}

/// `script` is a Script Manager code of the Macintosh; of one that is not known, only ASCII is read.
std::string utf8FromScript(std::uint16_t script, std::string_view bytes) {
  constexpr std::array<std::pair<std::uint16_t, const char*>, 6> kEncodings = {
      {{0, "MACINTOSH"}, {1, "SHIFT_JIS"}, {2, "BIG5"}, {3, "EUC-KR"}, {7, "MAC-CYRILLIC"}, {25, "EUC-CN"}}};
  const auto* const known = std::find_if(kEncodings.begin(), kEncodings.end(),
                                         [&](const auto& encoding) { return encoding.first == script; });
  return utf8From(known != kEncodings.end() ? known->second : "ASCII", bytes);
}

/// The Unicode part of a 'desc' element, or its ScriptCode part; empty when it has neither. `offset` is where the ASCII
/// part ends.
std::string nonAsciiPart(const Element& element, std::uint64_t offset) {
  const std::optional<std::uint32_t> units = element.number(offset + kDescUnicodeCount);
  if (!units) {
    return {};
  }
  const std::uint64_t unicode_size = std::uint64_t{*units} * 2;
  if (const auto bytes = element.bytes(offset + kDescUnicode, unicode_size)) {
    std::string text = utf8FromUtf16(*bytes);
    if (!text.empty()) {
      return text;
    }
  }
  const std::uint64_t script = offset + kDescUnicode + unicode_size;
  std::array<std::uint8_t, kDescScript> head;
  if (!element.read(script, head.data(), head.size())) {
    return {};
  }
  auto bytes = element.bytes(script + kDescScript, std::min(head[kDescScriptCount], kDescScriptMax));
  if (!bytes) {
    return {};
  }
  endAtNul(*bytes);
  return utf8FromScript(bigEndian16(head.data()), *bytes);
}

std::optional<std::string> readDesc(const Element& element) {
  const std::optional<std::uint32_t> count = element.number(kDescAsciiCount);
  if (!count) {
    return std::nullopt;
  }
  std::optional<std::string> text = element.bytes(kDescAscii, *count);
  if (!text) {
    return std::nullopt;
  }
  endAtNul(*text);
  if (!text->empty() && isAscii(*text)) {
    return text;
  }
  std::string other = nonAsciiPart(element, std::uint64_t{kDescAscii} + *count);
  return other.empty() ? utf8FromBytes(*std::move(text)) : other;
}

struct Record {
  std::uint32_t size = 0;
  std::uint32_t offset = 0;
};

std::optional<Record> bestRecord(const Element& element, std::uint32_t count, const Language& wanted) {
  std::optional<Record> best;
  int best_rank = -1;
  for (std::uint32_t i = 0; i < std::min(count, kMaxRecords); ++i) {
    std::array<std::uint8_t, kRecordSize> bytes;
    if (!element.read(kMlucRecords + std::uint64_t{i} * kRecordSize, bytes.data(), bytes.size())) {
      break;
    }
    const char* const codes = reinterpret_cast<const char*>(bytes.data());
    const Record record{bigEndian32(&bytes[4]), bigEndian32(&bytes[8])};
    const int rank = languageRank({codes, 2}, {codes + 2, 2}, wanted);
    if (rank > best_rank && element.holds(record.offset, record.size)) {
      best = record;
      best_rank = rank;
    }
  }
  return best;
}

std::optional<std::string> readMluc(const Element& element, const Language& wanted) {
  const std::optional<std::uint32_t> count = element.number(kMlucCount);
  if (!count || element.number(kMlucRecordSize) != kRecordSize) {
    return std::nullopt;
  }
  const std::optional<Record> record = bestRecord(element, *count, wanted);
  if (!record) {
    return std::nullopt;
  }
  const std::optional<std::string> bytes = element.bytes(record->offset, record->size);
  if (!bytes) {
    return std::nullopt;
  }
  return utf8FromUtf16(*bytes);
}

std::optional<std::string> readPlain(const Element& element) {
  if (element.size() < kText) {
    return std::nullopt;
  }
  std::optional<std::string> text = element.bytes(kText, element.size() - kText);
  if (!text) {
    return std::nullopt;
  }
  endAtNul(*text);
  return utf8FromBytes(*std::move(text));
}

}  // namespace

std::optional<std::string> readIccText(const IccProfile& profile, const IccTag& tag, const Language& wanted) {
  const Element element(profile, tag);
  switch (element.number(0).value_or(0)) {
    case iccSignature("desc"):
      return readDesc(element);
    case iccSignature("mluc"):
      return readMluc(element, wanted);
    case iccSignature("text"):
      return readPlain(element);
    default:
      return std::nullopt;
  }
}

}  // namespace platform::desktop
