// Compact encodings: Apple's <mach-o/compact_unwind_encoding.h>. Numbers of registers and instructions: the DWARF
// standard and the processors' ABIs.
#include "tools/machorun/unwinding.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>

extern "C" void __register_frame(void* section);  // NOLINT(bugprone-reserved-identifier): the unwinder's name

namespace machorun {
namespace {

using macho::FrameDescription;
using macho::UnwindEntry;

constexpr std::uint32_t kModeMask = 0x0F000000;
constexpr std::uint8_t kDataAlignment = 0x78;  // -8

/// Writes instructions and records of frame descriptions.
class FrameWriter {
 public:
  template <typename Number>
  void put(Number number) {
    for (std::size_t i = 0; i < sizeof number; ++i) {
      bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(number) >> (8 * i)));
    }
  }
  void leb128(std::uint64_t number) {
    for (; number >= 0x80; number >>= 7) {
      put(static_cast<std::uint8_t>(number | 0x80));
    }
    put(static_cast<std::uint8_t>(number));
  }
  void append(Bytes more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

  /// DW_CFA_def_cfa: the caller's stack pointer is `offset` above the register.
  void frame(unsigned dwarf_register, std::uint64_t offset) {
    put(std::uint8_t{0x0C});
    leb128(dwarf_register);
    leb128(offset);
  }
  /// DW_CFA_offset, or its long form: a register was saved so many bytes below the caller's stack pointer.
  void saved(unsigned dwarf_register, std::uint64_t below) {
    if (dwarf_register < 64) {
      put(static_cast<std::uint8_t>(0x80 | dwarf_register));
    } else {
      put(std::uint8_t{0x05});
      leb128(dwarf_register);
    }
    leb128(below / 8);
  }

  std::size_t beginRecord() {
    put(std::uint32_t{0});
    return bytes.size() - 4;
  }
  void endRecord(std::size_t begin) {
    bytes.resize(begin + (bytes.size() - begin + 7) / 8 * 8 + 4);  // DW_CFA_nop; the size itself does not count
    const auto size = static_cast<std::uint32_t>(bytes.size() - begin - 4);
    std::memcpy(bytes.data() + begin, &size, sizeof size);
  }

  std::vector<std::uint8_t> bytes;
};

[[noreturn]] void unknownEncoding() { throw MachoError("an unknown compact encoding"); }

// --- x86_64

constexpr unsigned kRbp = 6;
constexpr unsigned kRsp = 7;
constexpr unsigned kReturnAddressX86_64 = 16;

/// DWARF's number of a register that the compact format numbers from 1.
unsigned dwarfRegister(unsigned compact) {
  constexpr unsigned kNumbers[] = {3, 12, 13, 14, 15, kRbp};  // rbx, r12 to r15, rbp
  if (compact < 1 || compact > std::size(kNumbers)) {
    unknownEncoding();
  }
  return kNumbers[compact - 1];
}

/// With rbp as frame pointer: five places, the last of them `offset` words below it.
void framePointerRules(FrameWriter& writer, std::uint32_t encoding) {
  writer.frame(kRbp, 16);
  writer.saved(kReturnAddressX86_64, 8);
  writer.saved(kRbp, 16);
  const unsigned offset = encoding >> 16 & 0xFF;
  for (unsigned place = 0; place < 5; ++place) {
    const unsigned number = encoding >> (3 * place) & 7;
    if (number == 0) {
      continue;
    }
    if (place >= offset) {
      unknownEncoding();
    }
    writer.saved(dwarfRegister(number), 16 + 8 * std::uint64_t{offset - place});
  }
}

/// The registers that are saved below the return address, the lowest first, from the number of their permutation: its
/// digits, of falling bases, count through the registers that are left.
std::vector<unsigned> permutedRegisters(unsigned count, unsigned permutation) {
  constexpr unsigned kRegisters = 6;
  if (count > kRegisters) {
    unknownEncoding();
  }
  // Of all six registers the last one is what is left, and not a digit.
  std::array<unsigned, kRegisters> divisors{};
  for (unsigned i = count, divisor = 1; i > 0; --i) {
    divisors[i - 1] = divisor;
    divisor *= kRegisters - (i - 1);
  }
  std::vector<unsigned> left{1, 2, 3, 4, 5, 6};
  std::vector<unsigned> registers;
  for (unsigned i = 0; i < count; ++i) {
    const unsigned digit = permutation / divisors[i];
    permutation %= divisors[i];
    if (digit >= left.size()) {
      unknownEncoding();
    }
    registers.push_back(left[digit]);
    left.erase(left.begin() + digit);
  }
  return registers;
}

/// Without a frame pointer. The size of the stack is in words; a large one is in the instruction that makes it.
void framelessRules(FrameWriter& writer, const macho::Image& image, const UnwindEntry& entry, bool is_indirect) {
  const std::uint32_t encoding = entry.encoding;
  std::uint64_t size = (encoding >> 16 & 0xFF) * std::uint64_t{8};
  if (is_indirect) {
    const Bytes operand = image.bytesAt(entry.begin + (encoding >> 16 & 0xFF), 4);
    size = macho::number<std::uint32_t>(operand, 0, "a function") + 8 * std::uint64_t{encoding >> 13 & 7};
  }
  const std::vector<unsigned> registers = permutedRegisters(encoding >> 10 & 7, encoding & 0x3FF);
  if (size < 8 * (registers.size() + 1)) {
    unknownEncoding();
  }
  writer.frame(kRsp, size);
  writer.saved(kReturnAddressX86_64, 8);
  for (std::size_t i = 0; i < registers.size(); ++i) {
    writer.saved(dwarfRegister(registers[i]), 8 + 8 * (registers.size() - i));
  }
}

bool writeRulesX86_64(FrameWriter& writer, const macho::Image& image, const UnwindEntry& entry) {
  switch (entry.encoding & kModeMask) {
    case 0x00000000:
    case 0x04000000:
      return false;
    case 0x01000000:
      framePointerRules(writer, entry.encoding);
      return true;
    case 0x02000000:
      framelessRules(writer, image, entry, false);
      return true;
    case 0x03000000:
      framelessRules(writer, image, entry, true);
      return true;
    default:
      unknownEncoding();
  }
}

// --- arm64

constexpr unsigned kFramePointerArm64 = 29;
constexpr unsigned kLinkRegister = 30;
constexpr unsigned kStackPointerArm64 = 31;

/// Pairs of registers in the order in which they are saved, and their bits.
constexpr struct {
  std::uint32_t bit;
  unsigned first;
} kPairs[] = {{0x001, 19}, {0x002, 21}, {0x004, 23}, {0x008, 25}, {0x010, 27},
              {0x100, 72}, {0x200, 74}, {0x400, 76}, {0x800, 78}};
constexpr std::uint32_t kPairMask = 0xF1F;

bool writeRulesArm64(FrameWriter& writer, const UnwindEntry& entry) {
  switch (entry.encoding & kModeMask) {
    case 0x00000000:
    case 0x03000000:
      return false;
    case 0x02000000:  // the return address is in its register
      if ((entry.encoding & kPairMask) != 0) {
        unknownEncoding();
      }
      writer.frame(kStackPointerArm64, (entry.encoding >> 12 & 0xFFF) * std::uint64_t{16});
      return true;
    case 0x04000000: {
      writer.frame(kFramePointerArm64, 16);
      writer.saved(kLinkRegister, 8);
      writer.saved(kFramePointerArm64, 16);
      std::uint64_t below = 24;
      for (const auto& [bit, first] : kPairs) {
        if ((entry.encoding & bit) != 0) {
          writer.saved(first, below);
          writer.saved(first + 1, below + 8);
          below += 16;
        }
      }
      return true;
    }
    default:
      unknownEncoding();
  }
}

// --- sections

/// Writes the descriptions of an image with absolute pointers, and common rules for each kind.
class SectionWriter {
 public:
  SectionWriter(const macho::Image& image, const MappedImage& mapped)
      : image_(image),
        mapped_(mapped),
        return_address_(image.architecture() == "arm64" ? kLinkRegister : kReturnAddressX86_64) {}

  std::vector<std::uint8_t> write() {
    const std::vector<UnwindEntry> entries = macho::unwindEntries(image_);
    for (const UnwindEntry& entry : entries) {
      if (const auto instructions = frameInstructions(image_, entry)) {
        addCompact(entry, *instructions);
      }
    }
    for (const FrameDescription& description : macho::frameDescriptions(image_)) {
      // The unwinder takes the first description that it finds, so a function has one.
      const auto after = std::upper_bound(entries.begin(), entries.end(), description.begin,
                                          [](std::uint64_t begin, const auto& entry) { return begin < entry.begin; });
      if (after != entries.begin() && macho::usesFrameDescription(image_, *std::prev(after))) {
        addCopy(description);
      }
    }
    writer_.put(std::uint32_t{0});
    return std::move(writer_.bytes);
  }

 private:
  void addCompact(const UnwindEntry& entry, const std::vector<std::uint8_t>& instructions) {
    const auto [found, is_new] = compact_rules_.try_emplace(entry.personality, writer_.bytes.size());
    if (is_new) {
      const std::uint8_t alignments[] = {1, kDataAlignment, static_cast<std::uint8_t>(return_address_)};
      addRules(entry.personality, alignments, {});
    }
    addFunction(found->second, entry.begin, entry.end - entry.begin, entry.personality, entry.data, instructions);
  }

  void addCopy(const FrameDescription& description) {
    const auto* const rules = description.rules.instructions.data();
    const auto [found, is_new] = copied_rules_.try_emplace(rules, writer_.bytes.size());
    if (is_new) {
      addRules(description.rules.personality, description.rules.alignments, description.rules.instructions);
    }
    addFunction(found->second, description.begin, description.size, description.rules.personality, description.data,
                description.instructions);
  }

  void addRules(std::uint64_t personality, Bytes alignments, Bytes instructions) {
    const std::size_t begin = writer_.beginRecord();
    writer_.put(std::uint32_t{0});
    writer_.put(std::uint8_t{1});
    const std::string augmentation = personality != 0 ? "zPLR" : "zR";
    writer_.append({reinterpret_cast<const std::uint8_t*>(augmentation.c_str()), augmentation.size() + 1});
    writer_.append(alignments);
    if (personality != 0) {
      image_.numberAt(personality);  // throws when the pointer lies outside the image
      writer_.leb128(1 + sizeof(std::uint64_t) + 2);
      writer_.put(std::uint8_t{0});  // absolute, as the three pointers are
      writer_.put(mapped_.read<std::uint64_t>(personality));
      writer_.put(std::uint16_t{0});
    } else {
      writer_.leb128(1);
      writer_.put(std::uint8_t{0});
    }
    writer_.append(instructions);
    writer_.endRecord(begin);
  }

  void addFunction(std::size_t rules, std::uint64_t function, std::uint64_t size, std::uint64_t personality,
                   std::uint64_t data, Bytes instructions) {
    image_.bytesAt(function, size);
    const std::size_t begin = writer_.beginRecord();
    writer_.put(static_cast<std::uint32_t>(writer_.bytes.size() - rules));
    writer_.put(reinterpret_cast<std::uint64_t>(mapped_.at(function)));
    writer_.put(size);
    writer_.leb128(personality != 0 ? sizeof(std::uint64_t) : 0);
    if (personality != 0) {
      writer_.put(data == 0 ? 0 : reinterpret_cast<std::uint64_t>(mapped_.at(data)));
    }
    writer_.append(instructions);
    writer_.endRecord(begin);
  }

  const macho::Image& image_;
  const MappedImage& mapped_;
  unsigned return_address_;
  FrameWriter writer_;
  std::map<std::uint64_t, std::size_t> compact_rules_;       ///< Where they begin, by personality.
  std::map<const std::uint8_t*, std::size_t> copied_rules_;  ///< The same, by the rules in the file.
};

}  // namespace

std::optional<std::vector<std::uint8_t>> frameInstructions(const macho::Image& image, const UnwindEntry& entry) {
  FrameWriter writer;
  const bool has_rules =
      image.architecture() == "arm64" ? writeRulesArm64(writer, entry) : writeRulesX86_64(writer, image, entry);
  return has_rules ? std::optional(std::move(writer.bytes)) : std::nullopt;
}

std::vector<std::uint8_t> frameSection(const macho::Image& image, const MappedImage& mapped) {
  return SectionWriter(image, mapped).write();
}

void registerFrames(std::vector<std::uint8_t>& section) { __register_frame(section.data()); }

}  // namespace machorun
