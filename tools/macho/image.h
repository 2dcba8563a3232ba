// Reads a macOS library or program file (Mach-O, 64 bits, little-endian): its architectures, segments and symbols, and
// what its pointers will point to once the system has loaded it.
//
// The file is not trusted: whatever lies outside it, or is not understood, raises MachoError.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace macho {

class MachoError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

using Bytes = std::span<const std::uint8_t>;

/// A range of addresses, relative to where the image is loaded, and the part of the file that fills its start.
struct Segment {
  std::string name;
  std::uint64_t address = 0;
  std::uint64_t size = 0;
  std::uint64_t fileOffset = 0;
  std::uint64_t fileSize = 0;
  bool writable = false;  ///< While the image runs: not set for data that becomes read-only once it is loaded.
  bool executable = false;
};

/// A symbol that the image defines, exported or not.
struct Symbol {
  std::string name;  ///< As in the file: with the leading underscore, mangled.
  std::uint64_t address = 0;
};

/// What a pointer of the image holds after loading.
struct Pointer {
  enum class Kind {
    plain,   ///< The number in the file; the loader leaves it alone.
    image,   ///< An address in this image.
    import,  ///< A symbol of another library.
  };
  Kind kind = Kind::plain;
  std::uint64_t value = 0;  ///< The number, or the address relative to where the image is loaded.
};

/// One architecture of a file. Borrows the bytes that it was made from.
class Image {
 public:
  explicit Image(Bytes bytes);

  /// "arm64", "x86_64", or the processor's number.
  const std::string& architecture() const { return architecture_; }
  const std::vector<Segment>& segments() const { return segments_; }
  const std::vector<Symbol>& symbols() const { return symbols_; }

  /// The segment that holds `address`.
  const Segment& segmentAt(std::uint64_t address) const;
  /// `size` bytes of the file's contents at `address`.
  Bytes bytesAt(std::uint64_t address, std::uint64_t size) const;
  /// The little-endian 64-bit number in the file at `address`, before any loading.
  std::uint64_t numberAt(std::uint64_t address) const;
  Pointer pointerAt(std::uint64_t address) const;
  /// The NUL-terminated text at `address`.
  std::string textAt(std::uint64_t address) const;

 private:
  void readSegment(Bytes command);
  void readSymbols(Bytes command);
  void readRebaseOpcodes(Bytes opcodes);
  void readBindOpcodes(Bytes opcodes);
  void readChainedFixups(Bytes fixups);
  void readChain(std::uint64_t address, std::uint16_t format);
  void readLoadCommands();
  void addFixup(std::uint64_t address, Pointer pointer);

  Bytes bytes_;
  std::string architecture_;
  std::vector<Segment> segments_;
  std::vector<Symbol> symbols_;
  std::map<std::uint64_t, Pointer> fixups_;  ///< By the address of the pointer.
};

/// The architectures in a file: several in a universal one, else one. The images borrow `file`.
std::vector<Image> imagesIn(Bytes file);

}  // namespace macho
