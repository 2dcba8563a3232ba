#include "tools/macho/image.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <utility>

namespace macho {
namespace {

// Apple's <mach-o/loader.h>, <mach-o/nlist.h>, <mach-o/fat.h> and <mach/machine.h>.
constexpr std::uint32_t kMagic64 = 0xFEEDFACF;
constexpr std::uint32_t kFatMagicBigEndian = 0xBEBAFECA;
constexpr std::uint32_t kCpuArm64 = 0x0100000C;
constexpr std::uint32_t kCpuX86_64 = 0x01000007;
constexpr std::uint64_t kHeaderSize = 32;
constexpr std::uint64_t kSymbolSize = 16;
constexpr std::uint64_t kFatHeaderSize = 8;
constexpr std::uint64_t kFatEntrySize = 20;
/// There are not so many processors.
constexpr std::uint32_t kMostArchitectures = 16;

constexpr std::uint32_t kProgramFile = 2;
constexpr std::uint32_t kFlagAllowStackExecution = 0x20000;
constexpr std::uint32_t kFlagPositionIndependent = 0x200000;

enum LoadCommand : std::uint32_t {
  kSymbolTable = 0x2,
  kLoadLibrary = 0xC,
  kIdentity = 0xD,
  kSegment64 = 0x19,
  kLoadLazily = 0x20,
  kDyldInfo = 0x22,
  kOldestMacos = 0x24,
  kBuildVersion = 0x32,
  kLoadWeakly = 0x80000018,
  kReexportLibrary = 0x8000001F,
  kDyldInfoOnly = 0x80000022,
  kLoadUpward = 0x80000023,
  kDyldExportsTrie = 0x80000033,
  kDyldChainedFixups = 0x80000034,
};

constexpr std::uint32_t kPlatformMacos = 1;

constexpr std::uint32_t kProtectionRead = 1;
constexpr std::uint32_t kProtectionWrite = 2;
constexpr std::uint32_t kProtectionExecute = 4;
constexpr std::uint32_t kSegmentReadOnlyAfterFixups = 0x10;

constexpr std::uint64_t kSegmentCommandSize = 72;
constexpr std::uint64_t kSectionSize = 80;
constexpr std::uint32_t kSectionTypeMask = 0xFF;
constexpr std::uint8_t kZeroFilled = 0x1;
constexpr std::uint8_t kLargeZeroFilled = 0xC;
constexpr std::uint8_t kThreadLocalZeroFilled = 0x12;

constexpr std::uint64_t kExportFromElsewhere = 0x08;
constexpr std::uint64_t kExportByFunction = 0x10;

constexpr std::uint8_t kSymbolDebugMask = 0xE0;
constexpr std::uint8_t kSymbolTypeMask = 0x0E;
constexpr std::uint8_t kSymbolUndefined = 0x00;
constexpr std::uint8_t kSymbolInSection = 0x0E;
constexpr std::uint16_t kWeakReference = 0x40;

/// The names of all exports together.
constexpr std::size_t kMostExportedBytes = std::size_t{1} << 24;

std::uint32_t bigEndian(Bytes bytes, std::uint64_t offset) {
  return __builtin_bswap32(number<std::uint32_t>(bytes, offset, "the list of architectures"));
}

std::string architectureName(std::uint32_t cpu) {
  switch (cpu) {
    case kCpuArm64:
      return "arm64";
    case kCpuX86_64:
      return "x86_64";
    default:
      return "processor " + std::to_string(cpu);
  }
}

/// Of a number that packs three: 16, 8 and 8 bits.
std::string versionAt(Bytes command, std::uint64_t offset) {
  const auto packed = number<std::uint32_t>(command, offset, "a version");
  return std::to_string(packed >> 16) + "." + std::to_string(packed >> 8 & 0xFF) + "." + std::to_string(packed & 0xFF);
}

Library libraryIn(Bytes command) {
  const char* what = "a library's path";
  return {std::string(text(command, number<std::uint32_t>(command, 8, what), what)), versionAt(command, 16),
          versionAt(command, 20)};
}

/// The part of the file whose offset and size are in a load command.
Bytes partOf(Bytes file, Bytes command, std::uint64_t field, const char* what) {
  return slice(file, number<std::uint32_t>(command, field, what), number<std::uint32_t>(command, field + 4, what),
               what);
}

bool isWritableCode(std::uint32_t protection) {
  return (protection & kProtectionWrite) != 0 && (protection & kProtectionExecute) != 0;
}

/// Of these a file has one.
void expectFirst(bool is_first, const char* what) {
  if (!is_first) {
    throw MachoError("a second " + std::string(what));
  }
}

}  // namespace

Image::Image(Bytes bytes) : bytes_(bytes) {
  const char* what = "the header";
  if (number<std::uint32_t>(bytes_, 0, what) != kMagic64) {
    throw MachoError("not a 64-bit, little-endian Mach-O file");
  }
  architecture_ = architectureName(number<std::uint32_t>(bytes_, 4, what));
  file_type_ = number<std::uint32_t>(bytes_, 12, what);
  flags_ = number<std::uint32_t>(bytes_, 24, what);
  readLoadCommands();
}

bool Image::isProgram() const { return file_type_ == kProgramFile; }

bool Image::isPositionIndependent() const { return (flags_ & kFlagPositionIndependent) != 0; }

bool Image::allowsStackExecution() const { return (flags_ & kFlagAllowStackExecution) != 0; }

void Image::readLoadCommands() {
  const auto count = number<std::uint32_t>(bytes_, 16, "the header");
  std::uint64_t offset = kHeaderSize;
  std::vector<std::pair<std::uint32_t, Bytes>> commands;
  for (std::uint32_t index = 0; index < count; ++index) {
    const auto kind = number<std::uint32_t>(bytes_, offset, "a load command");
    const auto size = number<std::uint32_t>(bytes_, offset + 4, "a load command");
    commands.emplace_back(kind, slice(bytes_, offset, std::max<std::uint32_t>(size, 8), "a load command"));
    offset += commands.back().second.size();
  }
  for (const auto& [kind, command] : commands) {
    readLoadCommand(kind, command);
  }
  for (const auto& [kind, command] : commands) {
    readFixups(kind, command);  // needs the segments and the exports
  }
}

void Image::readFixups(std::uint32_t kind, Bytes command) {
  if (kind == kDyldInfo || kind == kDyldInfoOnly) {
    readRebaseOpcodes(partOf(bytes_, command, 8, "the rebase table"));
    readBindOpcodes(partOf(bytes_, command, 16, "the bind table"), BindTable::regular);
    readBindOpcodes(partOf(bytes_, command, 32, "the table of lazy binds"), BindTable::lazy);
    readBindOpcodes(partOf(bytes_, command, 24, "the table of weak binds"), BindTable::weak);
  } else if (kind == kDyldChainedFixups) {
    readChainedFixups(partOf(bytes_, command, 8, "the chained fixups"));
  }
}

void Image::readLoadCommand(std::uint32_t kind, Bytes command) {
  switch (kind) {
    case kSegment64:
      return readSegment(command);
    case kSymbolTable:
      return readSymbols(command);
    case kDyldInfo:
    case kDyldInfoOnly:
      return readExports(partOf(bytes_, command, 40, "the table of exports"));
    case kDyldExportsTrie:
      return readExports(partOf(bytes_, command, 8, "the table of exports"));
    case kBuildVersion:
      oldest_system_ = {number<std::uint32_t>(command, 8, "the platform") == kPlatformMacos, versionAt(command, 12)};
      return;
    case kOldestMacos:
      oldest_system_ = {true, versionAt(command, 8)};
      return;
    case kIdentity:
      identity_ = libraryIn(command);
      return;
    case kLoadLibrary:
    case kLoadWeakly:
    case kLoadLazily:
    case kLoadUpward:
    case kReexportLibrary:
      libraries_.push_back(libraryIn(command));
      return;
    default:
      return;
  }
}

void Image::readSegment(Bytes command) {
  const char* what = "a segment";
  Segment segment;
  const Bytes name = slice(command, 8, 16, what);
  segment.name.assign(name.begin(), std::find(name.begin(), name.end(), std::uint8_t{0}));
  segment.address = number<std::uint64_t>(command, 24, what);
  segment.size = number<std::uint64_t>(command, 32, what);
  segment.file_offset = number<std::uint64_t>(command, 40, what);
  segment.file_size = number<std::uint64_t>(command, 48, what);
  const auto most_protection = number<std::uint32_t>(command, 56, what);
  const auto protection = number<std::uint32_t>(command, 60, what);
  const auto flags = number<std::uint32_t>(command, 68, what);
  segment.readable = (protection & kProtectionRead) != 0;
  segment.writable = (protection & kProtectionWrite) != 0 && (flags & kSegmentReadOnlyAfterFixups) == 0;
  segment.executable = (protection & kProtectionExecute) != 0;
  segment.writable_code = isWritableCode(protection) || isWritableCode(most_protection);
  slice(bytes_, segment.file_offset, segment.file_size, what);
  segments_.push_back(std::move(segment));
  readSections(command);
}

void Image::readSections(Bytes command) {
  const char* what = "a section";
  const auto count = number<std::uint32_t>(command, 64, what);
  const Bytes entries = slice(command, kSegmentCommandSize, count * kSectionSize, what);
  const Segment& segment = segments_.back();
  for (std::uint32_t index = 0; index < count; ++index) {
    const Bytes entry = entries.subspan(index * kSectionSize, kSectionSize);
    const Bytes name = entry.first(16);
    Section section;
    section.name.assign(name.begin(), std::find(name.begin(), name.end(), std::uint8_t{0}));
    section.address = number<std::uint64_t>(entry, 32, what);
    section.size = number<std::uint64_t>(entry, 40, what);
    section.type = static_cast<std::uint8_t>(number<std::uint32_t>(entry, 64, what) & kSectionTypeMask);
    if (section.address < segment.address || section.address - segment.address > segment.size ||
        section.size > segment.size - (section.address - segment.address)) {
      throw MachoError("the section " + section.name + " lies outside its segment");
    }
    sections_.push_back(std::move(section));
  }
}

void Image::readSymbols(Bytes command) {
  const char* what = "the symbol table";
  expectFirst(symbols_.empty() && imports_.empty(), "symbol table");
  const auto count = number<std::uint32_t>(command, 12, what);
  const Bytes entries = slice(bytes_, number<std::uint32_t>(command, 8, what), count * kSymbolSize, what);
  const Bytes names = partOf(bytes_, command, 16, what);
  for (std::uint32_t index = 0; index < count; ++index) {
    const Bytes entry = entries.subspan(index * kSymbolSize, kSymbolSize);
    const auto type = number<std::uint8_t>(entry, 4, what);
    const unsigned kind = type & kSymbolTypeMask;
    if ((type & kSymbolDebugMask) != 0 || (kind != kSymbolInSection && kind != kSymbolUndefined)) {
      continue;
    }
    const std::string_view name = text(names, number<std::uint32_t>(entry, 0, what), "a symbol's name");
    if (kind == kSymbolInSection) {
      symbols_.push_back({name, number<std::uint64_t>(entry, 8, what)});
    } else {
      imports_.push_back({name, (number<std::uint16_t>(entry, 6, what) & kWeakReference) != 0});
    }
  }
}

/// The table is a tree: a node holds what is said about the name that leads to it, if it is a whole one, and the next
/// parts of longer names with the places of their nodes.
void Image::readExports(Bytes trie) {
  const char* what = "the table of exports";
  expectFirst(exports_.empty(), what);
  struct Node {
    std::uint64_t offset;
    std::string name;
  };
  std::vector<Node> nodes;
  if (!trie.empty()) {
    nodes.push_back({0, {}});
  }
  std::set<std::uint64_t> known{0};
  std::size_t bytes = 0;
  while (!nodes.empty()) {
    const Node node = std::move(nodes.back());
    nodes.pop_back();
    OpcodeReader reader(from(trie, node.offset, what));
    const std::uint64_t description = reader.leb128();
    if (description > 0) {
      OpcodeReader operands = reader;
      const std::uint64_t flags = operands.leb128();
      const bool is_elsewhere = (flags & (kExportFromElsewhere | kExportByFunction)) != 0;
      exports_.push_back({node.name, is_elsewhere ? 0 : baseAddress() + operands.leb128(), is_elsewhere});
    }
    reader.skip(description);
    for (unsigned children = reader.byte(); children > 0; --children) {
      std::string name = node.name + std::string(reader.text());
      const std::uint64_t offset = reader.leb128();
      bytes += name.size();
      if (!known.insert(offset).second || bytes > kMostExportedBytes) {
        throw MachoError("the table of exports is not a tree, or too large");
      }
      nodes.push_back({offset, std::move(name)});
    }
  }
}

std::uint64_t Image::baseAddress() const {
  const auto holds_header = [](const Segment& segment) { return segment.file_offset == 0 && segment.file_size > 0; };
  const auto found = std::find_if(segments_.begin(), segments_.end(), holds_header);
  return found == segments_.end() ? 0 : found->address;
}

const Section* Image::findSection(std::string_view name) const {
  const auto found =
      std::find_if(sections_.begin(), sections_.end(), [&](const Section& section) { return section.name == name; });
  return found == sections_.end() ? nullptr : &*found;
}

const Export* Image::findExport(std::string_view name) const {
  const auto found =
      std::find_if(exports_.begin(), exports_.end(), [&](const Export& symbol) { return symbol.name == name; });
  return found == exports_.end() ? nullptr : &*found;
}

Bytes Image::contentsOf(const Section& section) const {
  const bool is_empty = section.size == 0 || section.type == kZeroFilled || section.type == kLargeZeroFilled ||
                        section.type == kThreadLocalZeroFilled;
  return is_empty ? Bytes() : bytesAt(section.address, section.size);
}

const Segment& Image::segmentAt(std::uint64_t address) const {
  for (const Segment& segment : segments_) {
    if (address >= segment.address && address - segment.address < segment.size) {
      return segment;
    }
  }
  throw MachoError("an address lies in no segment");
}

Bytes Image::bytesAt(std::uint64_t address, std::uint64_t size) const {
  const Segment& segment = segmentAt(address);
  const Bytes contents = slice(bytes_, segment.file_offset, segment.file_size, "a segment");
  return slice(contents, address - segment.address, size, "what an address points to");
}

std::uint64_t Image::numberAt(std::uint64_t address) const {
  return number<std::uint64_t>(bytesAt(address, sizeof(std::uint64_t)), 0, "a number");
}

Pointer Image::pointerAt(std::uint64_t address) const {
  const auto fixup = fixups_.find(address);
  return fixup != fixups_.end() ? fixup->second : Pointer{Pointer::Kind::plain, numberAt(address)};
}

std::string_view Image::textAt(std::uint64_t address) const {
  const Segment& segment = segmentAt(address);
  return text(slice(bytes_, segment.file_offset, segment.file_size, "a segment"), address - segment.address, "a text");
}

std::vector<std::uint8_t> contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::vector<std::uint8_t> contents{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) {
    throw MachoError("cannot be read");
  }
  return contents;
}

bool isMacho(Bytes file) {
  const std::uint32_t magic = file.size() < sizeof magic ? 0 : number<std::uint32_t>(file, 0, "the header");
  return magic == kMagic64 || magic == kFatMagicBigEndian;
}

std::vector<Image> imagesIn(Bytes file) {
  if (number<std::uint32_t>(file, 0, "the header") != kFatMagicBigEndian) {
    return {Image(file)};
  }
  std::vector<Image> images;
  const std::uint32_t count = bigEndian(file, 4);
  if (count > kMostArchitectures) {
    throw MachoError("more architectures than there are");
  }
  for (std::uint32_t index = 0; index < count; ++index) {
    const std::uint64_t entry = kFatHeaderSize + index * kFatEntrySize;
    images.emplace_back(slice(file, bigEndian(file, entry + 8), bigEndian(file, entry + 12), "an architecture"));
  }
  return images;
}

Image imageForThisProcessor(Bytes file) {
  for (Image& image : imagesIn(file)) {
    if (image.architecture() == kThisArchitecture) {
      return std::move(image);
    }
  }
  throw MachoError(std::string("has no code for ") + kThisArchitecture);
}

}  // namespace macho
