// Host strings and host texts: counted, immutable but for a string's encoding. One thread at a time.
#pragma once

#include <cstdint>
#include <string>

#include "devhost/runtime/handles.h"

namespace devhost {

/// The text-encoding value that stands for UTF-8.
inline constexpr std::uint32_t kUtf8Encoding = 0x08000100;

/// Bytes with an encoding. What plugins hold as REALstringStruct*.
class String final : public Counted {
 public:
  static constexpr Kind kKind = Kind::kString;
  String(std::shared_ptr<Handles> handles, std::string bytes, std::uint32_t encoding);

  const std::string& bytes() const { return bytes_; }
  std::uint32_t encoding() const { return encoding_; }
  void setEncoding(std::uint32_t encoding) { encoding_ = encoding; }
  /// A length byte and at most 255 bytes; valid while the string lives.
  const unsigned char* pascalBytes();
  std::string describe() const override;

 private:
  std::string bytes_;
  std::string pascal_;
  std::uint32_t encoding_;
};

/// UTF-8 text. What plugins hold as RuntimeText*.
class Text final : public Counted {
 public:
  static constexpr Kind kKind = Kind::kText;
  Text(std::shared_ptr<Handles> handles, std::string utf8);

  const std::string& utf8() const { return utf8_; }
  std::string describe() const override;

 private:
  std::string utf8_;
};

}  // namespace devhost
