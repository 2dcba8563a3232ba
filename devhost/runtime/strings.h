// Host strings: immutable bytes with an encoding. One thread at a time.
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
  std::string describe() const override;

 private:
  std::string bytes_;
  std::uint32_t encoding_;
};

}  // namespace devhost
