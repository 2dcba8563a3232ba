// Mach-O files made up for tests, byte by byte.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

using FileBytes = std::vector<std::uint8_t>;

/// How a made-up file tells the loader about its pointers.
enum class Fixups { opcodes, chains };

/// A file of two segments: __TEXT at address 0 holds the headers and, from kTextAddress on, `text`; __DATA at
/// kDataAddress holds `data`.
struct SyntheticImage {
  static constexpr std::uint64_t kTextAddress = 0x1000;
  static constexpr std::uint64_t kDataAddress = 0x4000;

  struct NamedAddress {
    std::string name;
    std::uint64_t address;
  };

  std::uint32_t cpu = 0x0100000C;
  Fixups fixups = Fixups::opcodes;
  std::uint32_t dataSegmentFlags = 0;
  FileBytes text;
  std::vector<std::uint64_t> data;    ///< 64-bit words; of a pointer, the address that it points to.
  std::vector<std::size_t> pointers;  ///< Indices of the words that are pointers into the image, ascending.
  std::vector<NamedAddress> symbols;

  /// Appends a NUL-terminated text and returns its address.
  std::uint64_t addText(const std::string& value);
  FileBytes build() const;
};

/// The thin files as one universal file.
FileBytes universal(const std::vector<FileBytes>& files, const std::vector<std::uint32_t>& cpus);
