// Reads a macOS library or program file (Mach-O, 64 bits, little-endian): what it is built for, what it links, exports
// and imports, its segments, sections and symbols, and what its pointers point to once the system has loaded it.
//
// The file is not trusted: what lies outside it, repeats or is not understood raises MachoError. Memory grows with the
// file's size only.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/macho/bytes.h"

namespace macho {

/// A range of addresses, relative to where the image is loaded, and the part of the file that fills its start.
struct Segment {
  std::string name;
  std::uint64_t address = 0;
  std::uint64_t size = 0;
  std::uint64_t file_offset = 0;
  std::uint64_t file_size = 0;
  bool readable = false;
  bool writable = false;  ///< While the image runs: not set for data that becomes read-only once it is loaded.
  bool executable = false;
  bool writable_code = false;  ///< Both writable and executable, at first or at most.
};

/// A part of a segment with one purpose, such as __text or __eh_frame.
struct Section {
  std::string name;
  std::uint64_t address = 0;
  std::uint64_t size = 0;
  std::uint8_t type = 0;  ///< As in the file: S_REGULAR and so on.
};

/// The oldest system that a file is built for.
struct OldestSystem {
  bool is_macos = true;
  std::string version;  ///< Three numbers, such as "10.13.0".
};

/// A library: what it is found by, and its versions of three numbers each.
struct Library {
  std::string path;
  std::string version;
  std::string compatibility;
};

/// A symbol that the image defines, exported or not. Names are as in the file: with the leading underscore, mangled.
struct Symbol {
  std::string_view name;
  std::uint64_t address = 0;
};

/// A symbol that other images find in this one.
struct Export {
  std::string name;
  std::uint64_t address = 0;
  bool is_elsewhere = false;  ///< Passed on from another library, or found by a function: has no address here.
};

/// A symbol that another library has to define; the image loads without it when it is weak.
struct Import {
  std::string_view name;
  bool is_weak = false;
};

/// What a pointer of the image holds after loading.
struct Pointer {
  enum class Kind {
    plain,   ///< The number in the file; the loader leaves it alone.
    image,   ///< An address in this image.
    import,  ///< A symbol of another library.
  };
  Kind kind = Kind::plain;
  std::uint64_t value =
      0;  ///< The number, the address relative to where the image is loaded, or what is added to the symbol's.
  std::string_view symbol = {};  ///< Of an import.
  std::int64_t library = 0;      ///< Of an import: 1 for the first library, kAnyLibrary, or another special number.
  bool is_weak = false;          ///< Of an import: null when no library has it.
};

/// In the place of a library's number: whichever library has the symbol.
inline constexpr std::int64_t kAnyLibrary = -2;

/// One architecture of a file. Borrows the bytes that it was made from, as names of symbols do.
class Image {
 public:
  explicit Image(Bytes bytes);

  /// "arm64", "x86_64", or the processor's number.
  const std::string& architecture() const { return architecture_; }
  bool isProgram() const;
  /// Whether a program is loaded at a random address, as libraries always are.
  bool isPositionIndependent() const;
  bool allowsStackExecution() const;
  const std::optional<OldestSystem>& oldestSystem() const { return oldest_system_; }
  /// The image's own name and versions; nothing for a program.
  const std::optional<Library>& identity() const { return identity_; }
  const std::vector<Library>& libraries() const { return libraries_; }
  const std::vector<Export>& exports() const { return exports_; }
  const std::vector<Import>& imports() const { return imports_; }
  const std::vector<Segment>& segments() const { return segments_; }
  const std::vector<Section>& sections() const { return sections_; }
  const std::vector<Symbol>& symbols() const { return symbols_; }

  /// The pointers that the loader changes, by their addresses.
  const std::map<std::uint64_t, Pointer>& fixups() const { return fixups_; }

  /// The address of the header, which the offsets of exports and of the unwind table count from.
  std::uint64_t baseAddress() const;
  /// The section of this name, or null.
  const Section* findSection(std::string_view name) const;
  /// The exported symbol of this name, or null.
  const Export* findExport(std::string_view name) const;
  /// The bytes of a section in the file: none for one that is filled with zeros.
  Bytes contentsOf(const Section& section) const;
  /// The segment that holds `address`.
  const Segment& segmentAt(std::uint64_t address) const;
  /// `size` bytes of the file's contents at `address`.
  Bytes bytesAt(std::uint64_t address, std::uint64_t size) const;
  /// The little-endian 64-bit number in the file at `address`, before any loading.
  std::uint64_t numberAt(std::uint64_t address) const;
  Pointer pointerAt(std::uint64_t address) const;
  /// The NUL-terminated text at `address`.
  std::string_view textAt(std::uint64_t address) const;

 private:
  /// The tables of LC_DYLD_INFO that bind pointers to symbols.
  enum class BindTable {
    regular,
    lazy,  ///< Function pointers that lead to a helper until the first call.
    weak,  ///< Symbols that several images define, of which one is used.
  };

  void readLoadCommands();
  void readLoadCommand(std::uint32_t kind, Bytes command);
  void readFixups(std::uint32_t kind, Bytes command);
  void readSegment(Bytes command);
  void readSections(Bytes command);
  void readSymbols(Bytes command);
  void readExports(Bytes trie);
  void readRebaseOpcodes(Bytes opcodes);
  void readBindOpcodes(Bytes opcodes, BindTable table);
  void readChainedFixups(Bytes fixups);
  void readChain(std::uint64_t address, std::uint16_t format, const std::vector<Pointer>& imports);
  void addFixup(std::uint64_t address, const Pointer& pointer);
  void addBinding(std::uint64_t address, const Pointer& pointer, BindTable table);
  Pointer coalesced(const Pointer& pointer) const;

  Bytes bytes_;
  std::string architecture_;
  std::uint32_t file_type_ = 0;
  std::uint32_t flags_ = 0;
  std::optional<OldestSystem> oldest_system_;
  std::optional<Library> identity_;
  std::vector<Library> libraries_;
  std::vector<Export> exports_;
  std::vector<Import> imports_;
  std::vector<Segment> segments_;
  std::vector<Section> sections_;
  std::vector<Symbol> symbols_;
  std::map<std::uint64_t, Pointer> fixups_;  ///< By the address of the pointer.
};

/// What this program's processor is called.
#ifdef __aarch64__
inline constexpr const char* kThisArchitecture = "arm64";
#else
inline constexpr const char* kThisArchitecture = "x86_64";
#endif

/// The bytes of a file. Throws MachoError when it cannot be read.
std::vector<std::uint8_t> contentsOf(const std::string& path);

/// Whether a file that begins with these bytes is of this kind, thin or universal.
bool isMacho(Bytes file);

/// The architectures in a file: several in a universal one, else one. The images borrow `file`.
std::vector<Image> imagesIn(Bytes file);

/// The image in a file that is for this processor, which borrows `file`. Throws MachoError when there is none.
Image imageForThisProcessor(Bytes file);

}  // namespace macho
