// Synthetic Mach-O files, byte by byte.
#pragma once

#include <cstdint>
#include <optional>
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

/// ULEB128.
void putLeb128(FileBytes& bytes, std::uint64_t value);

/// The form of the pages of an unwind table.
enum class UnwindPage { regular, compressed };

inline void PrintTo(UnwindPage page, std::ostream* out) {
  *out << (page == UnwindPage::regular ? "regular" : "compressed");
}

/// An unwind table of one page: the encodings of functions by their addresses, ascending, then the end of the last one.
struct UnwindTable {
  struct Line {
    std::uint32_t address;
    std::uint32_t encoding;
  };
  struct Data {
    std::uint32_t function;
    std::uint32_t address;
  };
  std::vector<Line> lines;
  std::uint32_t end = 0;
  UnwindPage page = UnwindPage::regular;
  std::vector<std::uint32_t> shared_encodings;  ///< Of a compressed page; it lists the others itself.
  std::vector<std::uint32_t> personalities;     ///< The addresses of pointers.
  std::vector<Data> data;

  FileBytes build() const;
};

/// A section of frame descriptions at `address`: one set of common rules, and one description for each function.
struct FrameSection {
  struct Function {
    std::uint64_t begin;
    std::uint64_t size;
    std::uint64_t data = 0;
  };
  std::uint64_t address = 0;
  std::uint64_t personality = 0;  ///< The address of a pointer; with it, descriptions have data.
  std::vector<Function> functions;

  FileBytes build() const;
};

/// A file of two segments: __TEXT at address 0 holds the headers and, from kTextAddress on, `text` and the sections;
/// __DATA at kDataAddress holds `data`.
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

  struct Section {
    std::string name;
    FileBytes contents;
    std::uint32_t type = 0;
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
  std::vector<Section> sections;
  std::vector<std::uint64_t> data;    ///< 64-bit words; of a pointer, the address that it points to.
  std::vector<std::size_t> pointers;  ///< Indices of the words that are pointers into the image, ascending.
  std::vector<NamedAddress> symbols;
  std::vector<Import> imports;
  std::vector<std::string> exports;  ///< At most 255.

  // Tables as they are in the file, in place of those made from the members above.
  std::optional<FileBytes> loader_info;  ///< Rebase opcodes or chained fixups.
  std::optional<FileBytes> trie;
  FileBytes bind_opcodes;  ///< With Fixups::opcodes, as the next two.
  FileBytes weak_bind_opcodes;
  FileBytes lazy_bind_opcodes;

  /// Appends a NUL-terminated text and returns its address.
  std::uint64_t addText(const std::string& value);
  /// Appends a section and returns its address. No text may follow.
  std::uint64_t addSection(const std::string& name, const FileBytes& contents, std::uint32_t type = 0);
  /// The address of the next section.
  std::uint64_t nextSection() const;
  FileBytes build() const;
};

/// The thin files as one universal file.
FileBytes universal(const std::vector<FileBytes>& files, const std::vector<std::uint32_t>& cpus);
