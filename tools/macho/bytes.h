// Bounds-checked reading of numbers out of untrusted bytes.
#pragma once

#include <bit>
#include <cstring>

#include "tools/macho/image.h"

namespace macho {

static_assert(std::endian::native == std::endian::little, "numbers are read as they lie in memory");

/// `size` bytes at `offset`, or MachoError that names `what`.
inline Bytes slice(Bytes bytes, std::uint64_t offset, std::uint64_t size, const char* what) {
  if (offset > bytes.size() || size > bytes.size() - offset) {
    throw MachoError(std::string(what) + " lies outside the file");
  }
  return bytes.subspan(offset, size);
}

/// The little-endian number at `offset`.
template <typename Number>
Number number(Bytes bytes, std::uint64_t offset, const char* what) {
  Number result;
  std::memcpy(&result, slice(bytes, offset, sizeof(Number), what).data(), sizeof(Number));
  return result;
}

/// The NUL-terminated text at `offset`.
inline std::string text(Bytes bytes, std::uint64_t offset, const char* what) {
  const Bytes rest = slice(bytes, offset, bytes.size() - std::min<std::uint64_t>(offset, bytes.size()), what);
  const void* end = std::memchr(rest.data(), 0, rest.size());
  if (end == nullptr) {
    throw MachoError(std::string(what) + " does not end");
  }
  const char* begin = reinterpret_cast<const char*>(rest.data());
  return {begin, static_cast<const char*>(end)};
}

/// Reads the operands of a loader's opcodes, one after the other.
class OpcodeReader {
 public:
  explicit OpcodeReader(Bytes bytes) : bytes_(bytes) {}

  bool atEnd() const { return position_ >= bytes_.size(); }
  std::uint8_t byte() { return number<std::uint8_t>(bytes_, position_++, "an opcode"); }
  /// A number in groups of seven bits, the lowest first (ULEB128, or SLEB128 without its sign).
  std::uint64_t leb128() {
    std::uint64_t result = 0;
    for (unsigned shift = 0;; shift += 7) {
      const std::uint8_t group = byte();
      if (shift >= 64) {
        throw MachoError("an opcode's number is too long");
      }
      result |= static_cast<std::uint64_t>(group & 0x7F) << shift;
      if ((group & 0x80) == 0) {
        return result;
      }
    }
  }
  void skipText() {
    while (byte() != 0) {
    }
  }

 private:
  Bytes bytes_;
  std::uint64_t position_ = 0;
};

}  // namespace macho
