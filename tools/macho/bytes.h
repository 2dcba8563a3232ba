// Bounds-checked reading of numbers and texts out of untrusted bytes. Texts borrow the bytes.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace macho {

class MachoError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

using Bytes = std::span<const std::uint8_t>;

static_assert(std::endian::native == std::endian::little, "numbers are read as they lie in memory");

/// `size` bytes at `offset`, or MachoError that names `what`.
inline Bytes slice(Bytes bytes, std::uint64_t offset, std::uint64_t size, const char* what) {
  if (offset > bytes.size() || size > bytes.size() - offset) {
    throw MachoError(std::string(what) + " lies outside the file");
  }
  return bytes.subspan(offset, size);
}

/// All bytes from `offset` on.
inline Bytes from(Bytes bytes, std::uint64_t offset, const char* what) {
  return slice(bytes, offset, bytes.size() - std::min<std::uint64_t>(offset, bytes.size()), what);
}

/// The little-endian number at `offset`.
template <typename Number>
Number number(Bytes bytes, std::uint64_t offset, const char* what) {
  Number result;
  std::memcpy(&result, slice(bytes, offset, sizeof(Number), what).data(), sizeof(Number));
  return result;
}

/// The NUL-terminated text at `offset`.
inline std::string_view text(Bytes bytes, std::uint64_t offset, const char* what) {
  const Bytes rest = from(bytes, offset, what);
  const auto end = std::find(rest.begin(), rest.end(), std::uint8_t{0});
  if (end == rest.end()) {
    throw MachoError(std::string(what) + " does not end");
  }
  return {reinterpret_cast<const char*>(rest.data()), static_cast<std::size_t>(end - rest.begin())};
}

/// Reads the operands of a loader's opcodes, one after the other.
class OpcodeReader {
 public:
  explicit OpcodeReader(Bytes bytes) : bytes_(bytes) {}

  bool atEnd() const { return bytes_.empty(); }
  std::uint8_t byte() { return fixed<std::uint8_t>(); }
  /// A number in groups of seven bits, the lowest first (ULEB128).
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
  /// The same with a sign (SLEB128), in two's complement.
  std::uint64_t signedLeb128() {
    std::uint64_t result = 0;
    for (unsigned shift = 0;;) {
      const std::uint8_t group = byte();
      if (shift >= 64) {
        throw MachoError("an opcode's number is too long");
      }
      result |= static_cast<std::uint64_t>(group & 0x7F) << shift;
      shift += 7;
      if ((group & 0x80) == 0) {
        return shift < 64 && (group & 0x40) != 0 ? result | ~std::uint64_t{0} << shift : result;
      }
    }
  }
  std::string_view text() {
    const std::string_view result = macho::text(bytes_, 0, kWhat);
    skip(result.size() + 1);
    return result;
  }
  /// A number of a fixed size, little-endian.
  template <typename Number>
  Number fixed() {
    const auto result = number<Number>(bytes_, 0, kWhat);
    skip(sizeof(Number));
    return result;
  }
  /// What is not read yet.
  Bytes rest() const { return bytes_; }
  void skip(std::uint64_t count) { bytes_ = from(bytes_, count, kWhat); }

 private:
  static constexpr const char* kWhat = "an opcode";
  Bytes bytes_;
};

}  // namespace macho
