// Synthetic Mach-O files, byte by byte.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

using FileBytes = std::vector<std::uint8_t>;

inline constexpr std::uint32_t kArm64 = 0x0100000C;
inline constexpr std::uint32_t kX86_64 = 0x01000007;

/// The form of a file's pointers and exports for the loader.
enum class Fixups { opcodes, chains };

inline void PrintTo(Fixups fixups, std::ostream* out) { *out << (fixups == Fixups::opcodes ? "opcodes" : "chains"); }

/// A load command: numbers, then a text if it is not empty.
FileBytes loadCommand(std::uint32_t kind, const std::vector<std::uint32_t>& numbers, const std::string& text = {});
/// The load command of a library that is linked, or (kind 0xD) of the library's own name. Versions are packed.
FileBytes libraryCommand(const std::string& path, std::uint32_t kind = 0xC, std::uint32_t version = 0x10000,
                         std::uint32_t compatibility = 0x10000);

/// A file of two segments: __TEXT at address 0 holds the headers and, from kTextAddress on, `text`; __DATA at
/// kDataAddress holds `data`.
struct SyntheticImage {
  static constexpr std::uint64_t kTextAddress = 0x1000;
  static constexpr std::uint64_t kDataAddress = 0x4000;

  struct NamedAddress {
    std::string name;
    std::uint64_t address;
  };
  struct Import {
    std::string name;
    bool is_weak = false;
  };

  std::uint32_t cpu = kArm64;
  std::uint32_t file_type = 6;  ///< A library; 2 is a program.
  std::uint32_t flags = 0;
  Fixups fixups = Fixups::opcodes;
  std::uint32_t data_protection = 3;
  std::uint32_t data_most_protection = 3;
  std::uint32_t data_segment_flags = 0;
  std::vector<FileBytes> commands;  ///< Further load commands.
  FileBytes text;
  std::vector<std::uint64_t> data;    ///< 64-bit words; of a pointer, the address that it points to.
  std::vector<std::size_t> pointers;  ///< Indices of the words that are pointers into the image, ascending.
  std::vector<NamedAddress> symbols;
  std::vector<Import> imports;
  std::vector<std::string> exports;  ///< At most 255.

  /// Appends a NUL-terminated text and returns its address.
  std::uint64_t addText(const std::string& value);
  FileBytes build() const;
};

/// The thin files as one universal file.
FileBytes universal(const std::vector<FileBytes>& files, const std::vector<std::uint32_t>& cpus);
