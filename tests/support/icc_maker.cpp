#include "support/icc_maker.h"

#include <algorithm>
#include <cmath>

namespace support {
namespace {

constexpr std::size_t kHeaderSize = 128;
constexpr std::size_t kTableLineSize = 12;
constexpr std::size_t kScriptSize = 67;

void replaceAt(std::string& bytes, std::size_t offset, std::string_view with) {
  bytes.replace(offset, with.size(), with);
}

void padToFour(std::string& bytes) { bytes.resize((bytes.size() + 3) / 4 * 4); }

}  // namespace

std::string bigEndian16(std::uint16_t value) { return {static_cast<char>(value >> 8), static_cast<char>(value)}; }

std::string bigEndian32(std::uint32_t value) {
  return bigEndian16(static_cast<std::uint16_t>(value >> 16)) + bigEndian16(static_cast<std::uint16_t>(value));
}

std::string utf16Bytes(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(2 * text.size());
  for (const char16_t unit : text) {
    bytes += bigEndian16(unit);
  }
  return bytes;
}

std::string descElement(std::string_view ascii, std::u16string_view unicode, std::uint16_t script,
                        std::string_view script_text) {
  std::string element = "desc" + bigEndian32(0) + bigEndian32(static_cast<std::uint32_t>(ascii.size() + 1));
  element += ascii;
  element += '\0';
  element += bigEndian32(0) + bigEndian32(static_cast<std::uint32_t>(unicode.size())) + utf16Bytes(unicode);
  element += bigEndian16(script) + static_cast<char>(script_text.size());
  element += script_text.substr(0, kScriptSize);
  element.append(kScriptSize - std::min(kScriptSize, script_text.size()), '\0');
  return element;
}

std::string textElement(std::string_view text) { return "text" + bigEndian32(0) + std::string(text) + '\0'; }

std::string mlucElement(const std::vector<Localized>& texts) {
  constexpr std::uint32_t kHead = 16;
  constexpr std::uint32_t kRecord = 12;
  std::string records;
  std::string strings;
  for (const Localized& localized : texts) {
    const std::string text = utf16Bytes(localized.text);
    records += localized.locale + bigEndian32(static_cast<std::uint32_t>(text.size())) +
               bigEndian32(static_cast<std::uint32_t>(kHead + kRecord * texts.size() + strings.size()));
    strings += text;
  }
  return "mluc" + bigEndian32(0) + bigEndian32(static_cast<std::uint32_t>(texts.size())) + bigEndian32(kRecord) +
         records + strings;
}

std::string xyzElement(double x, double y, double z) {
  std::string element = "XYZ " + bigEndian32(0);
  for (const double value : {x, y, z}) {
    element += bigEndian32(static_cast<std::uint32_t>(std::lround(value * 65536)));
  }
  return element;
}

IccMaker::IccMaker() : header_(kHeaderSize, '\0') {
  replaceAt(header_, 4, "lcms");
  replaceAt(header_, 8, bigEndian32(0x02400000));
  replaceAt(header_, 12, "mntrRGB XYZ ");
  replaceAt(header_, 24, bigEndian16(2024) + bigEndian16(1) + bigEndian16(1));
  replaceAt(header_, 36, "acsp");
  replaceAt(header_, 68, bigEndian32(0x0000F6D6) + bigEndian32(0x00010000) + bigEndian32(0x0000D32D));
}

IccMaker& IccMaker::deviceClass(std::string_view signature) {
  replaceAt(header_, 12, signature);
  return *this;
}

IccMaker& IccMaker::colorSpace(std::string_view signature) {
  replaceAt(header_, 16, signature);
  return *this;
}

IccMaker& IccMaker::tag(std::string_view signature, std::string element) {
  lines_.push_back({std::string(signature), std::move(element)});
  return *this;
}

IccMaker& IccMaker::description(std::string_view text) { return tag("desc", descElement(text)); }

IccMaker& IccMaker::tableLine(std::string_view signature, std::uint32_t offset, std::uint32_t size) {
  lines_.push_back({std::string(signature), {}, true, offset, size});
  return *this;
}

IccMaker& IccMaker::declaredSize(std::uint32_t size) {
  size_is_declared_ = true;
  declared_size_ = size;
  return *this;
}

IccMaker& IccMaker::declaredTagCount(std::uint32_t count) {
  count_is_declared_ = true;
  declared_count_ = count;
  return *this;
}

std::string IccMaker::bytes() const {
  const std::size_t elements_start = kHeaderSize + 4 + kTableLineSize * lines_.size();
  const auto line_count = static_cast<std::uint32_t>(lines_.size());
  std::string file = header_ + bigEndian32(count_is_declared_ ? declared_count_ : line_count);
  std::string elements;
  for (const Line& line : lines_) {
    const std::size_t offset = line.is_fixed ? line.offset : elements_start + elements.size();
    const std::size_t size = line.is_fixed ? line.size : line.element.size();
    file += line.signature;
    file += bigEndian32(static_cast<std::uint32_t>(offset)) + bigEndian32(static_cast<std::uint32_t>(size));
    elements += line.element;
    padToFour(elements);
  }
  file += elements;
  replaceAt(file, 0, bigEndian32(size_is_declared_ ? declared_size_ : static_cast<std::uint32_t>(file.size())));
  return file;
}

std::string displayProfile(std::string_view description) { return IccMaker().description(description).bytes(); }

}  // namespace support
