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

enum ChainedImportFormat : std::uint32_t {
  kImport = 1,
  kImportWithAddend = 2,
  kImportWithAddend64 = 3,
};

/// A symbol that several images may define.
constexpr std::int64_t kCoalesced = -3;

constexpr std::uint8_t kPointerType = 1;
constexpr std::uint8_t kBindWeakImport = 1;

constexpr std::uint16_t kPageHasNoChain = 0xFFFF;
constexpr std::uint64_t kChainStride = 4;

constexpr std::uint64_t bits(std::uint64_t value, unsigned first, unsigned count) {
  return (value >> first) & ((std::uint64_t{1} << count) - 1);
}

/// A number of `count` bits with a sign.
constexpr std::int64_t withSign(std::uint64_t value, unsigned count) {
  const std::uint64_t sign = std::uint64_t{1} << (count - 1);
  return static_cast<std::int64_t>((value ^ sign) - sign);
}

/// Libraries that are numbered in 8 bits: the last 16 numbers are special.
constexpr std::int64_t libraryNumber(std::uint64_t value) {
  return value >= 0xF0 ? withSign(value, 8) : static_cast<std::int64_t>(value);
}

void expectPointer(std::uint8_t type) {
  if (type != kPointerType) {
    throw MachoError("a fixup is not of a pointer");
  }
}

std::uint64_t segmentAddress(const Image& image, std::uint64_t index) {
  if (index >= image.segments().size()) {
    throw MachoError("a fixup names a missing segment");
  }
  return image.segments()[index].address;
}

/// The symbols that chained pointers name by their numbers.
std::vector<Pointer> chainedImports(Bytes fixups) {
  const char* what = "the chained imports";
  const auto count = number<std::uint32_t>(fixups, 16, what);
  const auto format = number<std::uint32_t>(fixups, 20, what);
  if (count > 0 && (format < kImport || format > kImportWithAddend64)) {
    throw MachoError("chained imports in an unknown format");
  }
  if (number<std::uint32_t>(fixups, 24, what) != 0) {
    throw MachoError("chained imports with compressed names");
  }
  const std::uint64_t size = format == kImport ? 4 : format == kImportWithAddend ? 8 : 16;
  const Bytes entries = slice(fixups, number<std::uint32_t>(fixups, 8, what), count * size, what);
  const Bytes names = from(fixups, number<std::uint32_t>(fixups, 12, what), what);
  std::vector<Pointer> imports;
  for (std::uint64_t at = 0; at < entries.size(); at += size) {
    Pointer import{Pointer::Kind::import, 0};
    std::uint64_t name = 0;
    if (format == kImportWithAddend64) {  // 16 bits of library, a bit, 15 unused, 32 bits of name
      const auto entry = number<std::uint64_t>(entries, at, what);
      import.library = bits(entry, 0, 16) >= 0xFFF0 ? withSign(bits(entry, 0, 16), 16)
                                                    : static_cast<std::int64_t>(bits(entry, 0, 16));
      import.is_weak = bits(entry, 16, 1) != 0;
      name = bits(entry, 32, 32);
      import.value = number<std::uint64_t>(entries, at + 8, what);
    } else {  // 8 bits of library, a bit, 23 bits of name
      const auto entry = number<std::uint32_t>(entries, at, what);
      import.library = libraryNumber(bits(entry, 0, 8));
      import.is_weak = bits(entry, 8, 1) != 0;
      name = bits(entry, 9, 23);
      import.value = format == kImport ? 0 : static_cast<std::uint64_t>(number<std::int32_t>(entries, at + 4, what));
    }
    import.symbol = text(names, name, "an import's name");
    imports.push_back(import);
  }
  return imports;
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
        expectPointer(immediate);
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

void Image::readBindOpcodes(Bytes opcodes, BindTable table) {
  OpcodeReader reader(opcodes);
  std::uint64_t address = 0;
  Pointer target{Pointer::Kind::import, 0};
  if (table == BindTable::weak) {
    target.library = kCoalesced;
  }
  std::uint64_t count = 0;  // binds may step in place, and no file has more of them than bytes
  const auto bind = [&](std::uint64_t times, std::uint64_t skip) {
    for (std::uint64_t index = 0; index < times; ++index) {
      numberAt(address);
      if (++count > bytes_.size()) {
        throw MachoError("fixups overlap");
      }
      addBinding(address, target, table);
      address += kPointerSize + skip;
    }
  };
  while (!reader.atEnd()) {
    const std::uint8_t opcode = reader.byte();
    const std::uint8_t immediate = opcode & kImmediateMask;
    switch (opcode & kOpcodeMask) {
      case kBindDone:
        if (table != BindTable::lazy) {  // ends each lazy pointer's opcodes, not the table
          return;
        }
        break;
      case kBindSetLibraryImmediate:
        target.library = immediate;
        break;
      case kBindSetSpecialLibrary:
        target.library = immediate == 0 ? 0 : withSign(immediate, 4);
        break;
      case kBindSetType:
        expectPointer(immediate);
        break;
      case kBindSetLibrary:
        target.library = static_cast<std::int64_t>(reader.leb128());
        break;
      case kBindSetAddend:
        target.value = reader.signedLeb128();
        break;
      case kBindSetSymbol:
        target.symbol = reader.text();
        target.is_weak = (immediate & kBindWeakImport) != 0;
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
  const std::vector<Pointer> imports = chainedImports(fixups);
  const Bytes starts = from(fixups, number<std::uint32_t>(fixups, 4, what), what);
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
        readChain(segmentAddress(*this, index) + page * std::uint64_t{page_size} + first, format, imports);
      }
    }
  }
}

void Image::readChain(std::uint64_t address, std::uint16_t format, const std::vector<Pointer>& imports) {
  if (format != kChained64 && format != kChained64Offset) {
    throw MachoError("chained fixups in an unknown format");
  }
  // Both formats: bit 63 marks an import, bits 51 to 62 lead to the next pointer; of an address in the image, bits 0 to
  // 35 are the target and bits 36 to 43 its topmost byte; of an import, bits 0 to 23 are its number and 24 to 31 are
  // added.
  const std::uint64_t base = format == kChained64Offset ? baseAddress() : 0;
  for (std::uint64_t next = 0;; address += next * kChainStride) {
    const std::uint64_t value = numberAt(address);
    if (bits(value, 63, 1) == 0) {
      addFixup(address, {Pointer::Kind::image, (bits(value, 0, 36) + base) | bits(value, 36, 8) << 56});
    } else if (const std::uint64_t import = bits(value, 0, 24); import < imports.size()) {
      Pointer target = imports[import];
      target.value += bits(value, 24, 8);
      addFixup(address, coalesced(target));
    } else {
      throw MachoError("a chained fixup names a missing import");
    }
    next = bits(value, 51, 12);
    if (next == 0) {
      return;
    }
  }
}

void Image::addFixup(std::uint64_t address, const Pointer& pointer) {
  if (!fixups_.emplace(address, pointer).second || fixups_.size() > bytes_.size() / sizeof(std::uint64_t)) {
    throw MachoError("fixups overlap");
  }
}

/// A lazy pointer is also rebased, to its helper; a coalesced one is rebased to the image's own definition, or bound to
/// the one of a library.
void Image::addBinding(std::uint64_t address, const Pointer& pointer, BindTable table) {
  const auto found = fixups_.find(address);
  if (found == fixups_.end()) {
    addFixup(address, coalesced(pointer));
  } else if (table == BindTable::lazy && found->second.kind == Pointer::Kind::image) {
    found->second = pointer;
  } else if (table == BindTable::weak) {
    found->second = coalesced(pointer).kind == Pointer::Kind::image ? coalesced(pointer) : found->second;
  } else {
    throw MachoError("fixups overlap");
  }
}

/// The image's own definition of a symbol that several images may define.
Pointer Image::coalesced(const Pointer& pointer) const {
  if (pointer.library != kCoalesced) {
    return pointer;
  }
  const Export* const own = findExport(pointer.symbol);
  if (own != nullptr && !own->is_elsewhere) {
    return {Pointer::Kind::image, own->address + pointer.value};
  }
  Pointer result = pointer;
  result.library = kAnyLibrary;
  return result;
}

}  // namespace macho
