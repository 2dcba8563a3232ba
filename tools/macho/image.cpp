#include "tools/macho/image.h"

#include <algorithm>

#include "tools/macho/bytes.h"

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

enum LoadCommand : std::uint32_t {
  kSymbolTable = 0x2,
  kSegment64 = 0x19,
  kDyldInfo = 0x22,
  kDyldInfoOnly = 0x80000022,
  kDyldChainedFixups = 0x80000034,
};

constexpr std::uint32_t kProtectionWrite = 2;
constexpr std::uint32_t kProtectionExecute = 4;
constexpr std::uint32_t kSegmentReadOnlyAfterFixups = 0x10;

constexpr std::uint8_t kSymbolDebugMask = 0xE0;
constexpr std::uint8_t kSymbolTypeMask = 0x0E;
constexpr std::uint8_t kSymbolInSection = 0x0E;

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

}  // namespace

Image::Image(Bytes bytes) : bytes_(bytes) {
  if (number<std::uint32_t>(bytes_, 0, "the header") != kMagic64) {
    throw MachoError("not a 64-bit, little-endian Mach-O file");
  }
  architecture_ = architectureName(number<std::uint32_t>(bytes_, 4, "the header"));
  readLoadCommands();
}

void Image::readLoadCommands() {
  const auto count = number<std::uint32_t>(bytes_, 16, "the header");
  std::uint64_t offset = kHeaderSize;
  for (std::uint32_t index = 0; index < count; ++index) {
    const auto kind = number<std::uint32_t>(bytes_, offset, "a load command");
    const auto size = number<std::uint32_t>(bytes_, offset + 4, "a load command");
    const Bytes command = slice(bytes_, offset, std::max<std::uint32_t>(size, 8), "a load command");
    const auto part = [&](std::uint64_t field, const char* what) {
      return slice(bytes_, number<std::uint32_t>(command, field, what), number<std::uint32_t>(command, field + 4, what),
                   what);
    };
    switch (kind) {
      case kSegment64:
        readSegment(command);
        break;
      case kSymbolTable:
        readSymbols(command);
        break;
      case kDyldInfo:
      case kDyldInfoOnly:
        readRebaseOpcodes(part(8, "the rebase table"));
        readBindOpcodes(part(16, "the bind table"));
        break;
      case kDyldChainedFixups:
        readChainedFixups(part(8, "the chained fixups"));
        break;
      default:
        break;
    }
    offset += command.size();
  }
}

void Image::readSegment(Bytes command) {
  const char* what = "a segment";
  Segment segment;
  const Bytes name = slice(command, 8, 16, what);
  segment.name.assign(name.begin(), std::find(name.begin(), name.end(), std::uint8_t{0}));
  segment.address = number<std::uint64_t>(command, 24, what);
  segment.size = number<std::uint64_t>(command, 32, what);
  segment.fileOffset = number<std::uint64_t>(command, 40, what);
  segment.fileSize = number<std::uint64_t>(command, 48, what);
  const auto protection = number<std::uint32_t>(command, 60, what);
  const auto flags = number<std::uint32_t>(command, 68, what);
  segment.writable = (protection & kProtectionWrite) != 0 && (flags & kSegmentReadOnlyAfterFixups) == 0;
  segment.executable = (protection & kProtectionExecute) != 0;
  slice(bytes_, segment.fileOffset, segment.fileSize, what);
  segments_.push_back(std::move(segment));
}

void Image::readSymbols(Bytes command) {
  const char* what = "the symbol table";
  const auto count = number<std::uint32_t>(command, 12, what);
  const Bytes entries = slice(bytes_, number<std::uint32_t>(command, 8, what), count * kSymbolSize, what);
  const Bytes names =
      slice(bytes_, number<std::uint32_t>(command, 16, what), number<std::uint32_t>(command, 20, what), what);
  for (std::uint32_t index = 0; index < count; ++index) {
    const Bytes entry = entries.subspan(index * kSymbolSize, kSymbolSize);
    const auto type = number<std::uint8_t>(entry, 4, what);
    if ((type & kSymbolDebugMask) != 0 || (type & kSymbolTypeMask) != kSymbolInSection) {
      continue;
    }
    symbols_.push_back(
        {text(names, number<std::uint32_t>(entry, 0, what), "a symbol's name"), number<std::uint64_t>(entry, 8, what)});
  }
}

void Image::addFixup(std::uint64_t address, Pointer pointer) {
  if (!fixups_.emplace(address, pointer).second) {
    throw MachoError("two fixups at one address");
  }
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
  const Bytes contents = slice(bytes_, segment.fileOffset, segment.fileSize, "a segment");
  return slice(contents, address - segment.address, size, "what an address points to");
}

std::uint64_t Image::numberAt(std::uint64_t address) const {
  return number<std::uint64_t>(bytesAt(address, sizeof(std::uint64_t)), 0, "a number");
}

Pointer Image::pointerAt(std::uint64_t address) const {
  const auto fixup = fixups_.find(address);
  return fixup != fixups_.end() ? fixup->second : Pointer{Pointer::Kind::plain, numberAt(address)};
}

std::string Image::textAt(std::uint64_t address) const {
  const Segment& segment = segmentAt(address);
  return text(slice(bytes_, segment.fileOffset, segment.fileSize, "a segment"), address - segment.address, "a text");
}

std::vector<Image> imagesIn(Bytes file) {
  if (number<std::uint32_t>(file, 0, "the header") != kFatMagicBigEndian) {
    return {Image(file)};
  }
  std::vector<Image> images;
  const std::uint32_t count = bigEndian(file, 4);
  for (std::uint32_t index = 0; index < count; ++index) {
    const std::uint64_t entry = kFatHeaderSize + index * kFatEntrySize;
    images.emplace_back(slice(file, bigEndian(file, entry + 8), bigEndian(file, entry + 12), "an architecture"));
  }
  return images;
}

}  // namespace macho
