// The two ways in which a file lists the pointers that the loader changes: opcodes (LC_DYLD_INFO) and chains
// (LC_DYLD_CHAINED_FIXUPS). Layouts are those of Apple's <mach-o/loader.h> and <mach-o/fixup-chains.h>.
#include "tools/macho/image.h"

namespace macho {
namespace {

constexpr std::uint8_t kOpcodeMask = 0xF0;
constexpr std::uint8_t kImmediateMask = 0x0F;
constexpr std::uint64_t kPointerSize = 8;

enum RebaseOpcode : std::uint8_t {
  kRebaseDone = 0x00,
  kRebaseSetType = 0x10,
  kRebaseSetSegmentAndOffset = 0x20,
  kRebaseAddAddress = 0x30,
  kRebaseAddAddressScaled = 0x40,
  kRebaseTimesImmediate = 0x50,
  kRebaseTimes = 0x60,
  kRebaseAddAddressAfter = 0x70,
  kRebaseTimesSkipping = 0x80,
};

enum BindOpcode : std::uint8_t {
  kBindDone = 0x00,
  kBindSetLibraryImmediate = 0x10,
  kBindSetLibrary = 0x20,
  kBindSetSpecialLibrary = 0x30,
  kBindSetSymbol = 0x40,
  kBindSetType = 0x50,
  kBindSetAddend = 0x60,
  kBindSetSegmentAndOffset = 0x70,
  kBindAddAddress = 0x80,
  kBindOnce = 0x90,
  kBindAddAddressAfter = 0xA0,
  kBindAddAddressScaledAfter = 0xB0,
  kBindTimesSkipping = 0xC0,
};

enum ChainedPointerFormat : std::uint16_t {
  kChained64 = 2,        ///< A target is an address.
  kChained64Offset = 6,  ///< A target is an offset from the image's start.
};

constexpr std::uint16_t kPageHasNoChain = 0xFFFF;
constexpr std::uint64_t kChainStride = 4;

constexpr std::uint64_t bits(std::uint64_t value, unsigned first, unsigned count) {
  return (value >> first) & ((std::uint64_t{1} << count) - 1);
}

std::uint64_t segmentAddress(const Image& image, std::uint64_t index) {
  if (index >= image.segments().size()) {
    throw MachoError("a fixup names a missing segment");
  }
  return image.segments()[index].address;
}

}  // namespace

void Image::readRebaseOpcodes(Bytes opcodes) {
  OpcodeReader reader(opcodes);
  std::uint64_t address = 0;
  const auto rebase = [&](std::uint64_t times, std::uint64_t skip) {
    for (std::uint64_t index = 0; index < times; ++index) {
      addFixup(address, {Pointer::Kind::image, numberAt(address)});
      address += kPointerSize + skip;
    }
  };
  while (!reader.atEnd()) {
    const std::uint8_t opcode = reader.byte();
    const std::uint8_t immediate = opcode & kImmediateMask;
    switch (opcode & kOpcodeMask) {
      case kRebaseDone:
        return;
      case kRebaseSetType:
        break;
      case kRebaseSetSegmentAndOffset:
        address = segmentAddress(*this, immediate) + reader.leb128();
        break;
      case kRebaseAddAddress:
        address += reader.leb128();
        break;
      case kRebaseAddAddressScaled:
        address += immediate * kPointerSize;
        break;
      case kRebaseTimesImmediate:
        rebase(immediate, 0);
        break;
      case kRebaseTimes:
        rebase(reader.leb128(), 0);
        break;
      case kRebaseAddAddressAfter:
        rebase(1, reader.leb128());
        break;
      case kRebaseTimesSkipping: {
        const std::uint64_t times = reader.leb128();
        rebase(times, reader.leb128());
        break;
      }
      default:
        throw MachoError("an unknown rebase opcode");
    }
  }
}

void Image::readBindOpcodes(Bytes opcodes) {
  OpcodeReader reader(opcodes);
  std::uint64_t address = 0;
  const auto bind = [&](std::uint64_t times, std::uint64_t skip) {
    for (std::uint64_t index = 0; index < times; ++index) {
      numberAt(address);
      addFixup(address, {Pointer::Kind::import, 0});
      address += kPointerSize + skip;
    }
  };
  while (!reader.atEnd()) {
    const std::uint8_t opcode = reader.byte();
    const std::uint8_t immediate = opcode & kImmediateMask;
    switch (opcode & kOpcodeMask) {
      case kBindDone:
        return;
      case kBindSetLibraryImmediate:
      case kBindSetSpecialLibrary:
      case kBindSetType:
        break;
      case kBindSetLibrary:
      case kBindSetAddend:
        reader.leb128();
        break;
      case kBindSetSymbol:
        reader.text();
        break;
      case kBindSetSegmentAndOffset:
        address = segmentAddress(*this, immediate) + reader.leb128();
        break;
      case kBindAddAddress:
        address += reader.leb128();
        break;
      case kBindOnce:
        bind(1, 0);
        break;
      case kBindAddAddressAfter:
        bind(1, reader.leb128());
        break;
      case kBindAddAddressScaledAfter:
        bind(1, immediate * kPointerSize);
        break;
      case kBindTimesSkipping: {
        const std::uint64_t times = reader.leb128();
        bind(times, reader.leb128());
        break;
      }
      default:
        throw MachoError("an unknown bind opcode");
    }
  }
}

void Image::readChainedFixups(Bytes fixups) {
  const char* what = "the chained fixups";
  const auto starts_offset = number<std::uint32_t>(fixups, 4, what);
  const Bytes starts = from(fixups, starts_offset, what);
  const auto segment_count = number<std::uint32_t>(starts, 0, what);
  for (std::uint32_t index = 0; index < segment_count; ++index) {
    const auto offset = number<std::uint32_t>(starts, 4 + index * std::uint64_t{4}, what);
    if (offset == 0) {
      continue;
    }
    const auto page_size = number<std::uint16_t>(starts, offset + std::uint64_t{4}, what);
    const auto format = number<std::uint16_t>(starts, offset + std::uint64_t{6}, what);
    const auto page_count = number<std::uint16_t>(starts, offset + std::uint64_t{20}, what);
    for (std::uint16_t page = 0; page < page_count; ++page) {
      const auto first = number<std::uint16_t>(starts, offset + std::uint64_t{22} + page * std::uint64_t{2}, what);
      if (first != kPageHasNoChain) {
        readChain(segmentAddress(*this, index) + page * std::uint64_t{page_size} + first, format);
      }
    }
  }
}

void Image::readChain(std::uint64_t address, std::uint16_t format) {
  if (format != kChained64 && format != kChained64Offset) {
    throw MachoError("chained fixups in an unknown format");
  }
  // Both formats: bit 63 marks an import, bits 51 to 62 lead to the next pointer; of an address in the image, bits 0 to
  // 35 are the target and bits 36 to 43 its topmost byte.
  const std::uint64_t base = format == kChained64Offset ? segments_.front().address : 0;
  for (std::uint64_t next = 0;; address += next * kChainStride) {
    const std::uint64_t value = numberAt(address);
    const bool is_import = bits(value, 63, 1) != 0;
    const std::uint64_t target = (bits(value, 0, 36) + base) | bits(value, 36, 8) << 56;
    addFixup(address, is_import ? Pointer{Pointer::Kind::import, 0} : Pointer{Pointer::Kind::image, target});
    next = bits(value, 51, 12);
    if (next == 0) {
      return;
    }
  }
}

}  // namespace macho
