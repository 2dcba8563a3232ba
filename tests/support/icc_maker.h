// Makes ICC profiles, sound ones and unsound ones, byte by byte. For tests and benchmarks; one thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace support {

/// Numbers as ICC files store them, most significant byte first.
std::string bigEndian16(std::uint16_t value);
std::string bigEndian32(std::uint32_t value);
/// The UTF-16 code units, most significant byte first.
std::string utf16Bytes(std::u16string_view text);

// --- elements

/// A 'desc' element: ASCII part (a terminating NUL is added and counted), Unicode part, ScriptCode part of at most 67
/// bytes.
std::string descElement(std::string_view ascii, std::u16string_view unicode = {}, std::uint16_t script = 0,
                        std::string_view script_text = {});
/// A 'text' element, with a terminating NUL.
std::string textElement(std::string_view text);

struct Localized {
  std::string locale;  ///< such as "deAT"; four bytes, NULs where there is no country
  std::u16string text;
};
std::string mlucElement(const std::vector<Localized>& texts);

/// An 'XYZ ' element with one colour.
std::string xyzElement(double x, double y, double z);

// --- profiles

class IccMaker {
 public:
  /// A display profile, RGB to XYZ, of version 2.4.
  IccMaker();

  /// Four characters each.
  IccMaker& deviceClass(std::string_view signature);
  IccMaker& colorSpace(std::string_view signature);
  /// Adds a tag; its element is laid out after those before it, at a multiple of four bytes.
  IccMaker& tag(std::string_view signature, std::string element);
  /// Adds a tag with a `desc` element of this ASCII text.
  IccMaker& description(std::string_view text);
  /// Adds a line to the tag table and nothing to the file.
  IccMaker& tableLine(std::string_view signature, std::uint32_t offset, std::uint32_t size);
  /// False values for the header and the table.
  IccMaker& declaredSize(std::uint32_t size);
  IccMaker& declaredTagCount(std::uint32_t count);

  std::string bytes() const;

 private:
  struct Line {
    std::string signature;
    std::string element;
    bool is_fixed = false;
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
  };

  std::string header_;
  std::vector<Line> lines_;
  bool size_is_declared_ = false;
  std::uint32_t declared_size_ = 0;
  bool count_is_declared_ = false;
  std::uint32_t declared_count_ = 0;
};

/// A display profile with this description and nothing else.
std::string displayProfile(std::string_view description);

}  // namespace support
