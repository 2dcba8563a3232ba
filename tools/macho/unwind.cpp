// Layouts of the table: Apple's <mach-o/compact_unwind_encoding.h>; of the frame descriptions: the Linux Standard
// Base's chapter about .eh_frame, which the Mac's linkers keep to.
#include "tools/macho/unwind.h"

#include <map>
#include <string>

namespace macho {
namespace {

constexpr const char* kTable = "the unwind table";
constexpr const char* kFrames = "a frame description";

constexpr std::uint32_t kTableVersion = 1;
constexpr std::uint32_t kRegularPage = 2;
constexpr std::uint32_t kCompressedPage = 3;
constexpr std::uint64_t kIndexEntrySize = 12;
constexpr std::uint64_t kDataEntrySize = 8;

constexpr std::uint32_t kModeMask = 0x0F000000;
constexpr std::uint32_t kDwarfModeArm64 = 0x03000000;
constexpr std::uint32_t kDwarfModeX86_64 = 0x04000000;
constexpr std::uint32_t kHasData = 0x40000000;
constexpr unsigned kPersonalityShift = 28;

/// The table's sections, read page by page.
class TableReader {
 public:
  TableReader(const Image& image, const Section& section)
      : base_(image.baseAddress()), table_(image.contentsOf(section)), most_(table_.size() / sizeof(std::uint32_t)) {
    if (word(0) != kTableVersion) {
      throw MachoError("the unwind table has an unknown version");
    }
  }

  std::vector<UnwindEntry> read() {
    const std::uint32_t index = word(20);
    const std::uint32_t count = word(24);
    for (std::uint32_t i = 0; i + 1 < count; ++i) {
      const std::uint64_t at = index + i * kIndexEntrySize;
      readData(word(at + 8), word(at + kIndexEntrySize + 8));
      readPage(word(at), word(at + 4));
    }
    if (count > 0) {
      close(base_ + word(index + (count - 1) * kIndexEntrySize));
    }
    for (UnwindEntry& entry : entries_) {
      addPersonalityAndData(entry);
    }
    return std::move(entries_);
  }

 private:
  std::uint32_t word(std::uint64_t offset) const { return number<std::uint32_t>(table_, offset, kTable); }
  std::uint16_t half(std::uint64_t offset) const { return number<std::uint16_t>(table_, offset, kTable); }

  void readData(std::uint32_t begin, std::uint32_t end) {
    for (std::uint64_t at = begin; at < end; at += kDataEntrySize) {
      if (!data_.emplace(base_ + word(at), base_ + word(at + 4)).second) {
        throw MachoError("the unwind table has language-specific data twice");
      }
    }
  }

  void readPage(std::uint32_t first, std::uint32_t page) {
    if (page == 0) {
      return;
    }
    const std::uint64_t entries = page + std::uint64_t{half(page + std::uint64_t{4})};
    const unsigned count = half(page + std::uint64_t{6});
    const std::uint32_t kind = word(page);
    for (unsigned i = 0; i < count; ++i) {
      if (kind == kRegularPage) {
        const std::uint64_t at = entries + i * std::uint64_t{8};
        add(word(at), word(at + 4));
      } else if (kind == kCompressedPage) {
        const std::uint32_t entry = word(entries + i * std::uint64_t{4});
        add(first + (entry & 0xFFFFFF), encoding(page, entry >> 24));
      } else {
        throw MachoError("the unwind table has a page of an unknown kind");
      }
    }
  }

  /// The first numbers are of encodings for all pages, the others of the page's own.
  std::uint32_t encoding(std::uint64_t page, std::uint32_t index) const {
    const std::uint32_t shared = word(8);
    if (index < shared) {
      return word(word(4) + index * std::uint64_t{4});
    }
    if (index - shared >= half(page + 10)) {
      throw MachoError("the unwind table lacks an encoding");
    }
    return word(page + half(page + 8) + (index - shared) * std::uint64_t{4});
  }

  void add(std::uint32_t offset, std::uint32_t encoding) {
    if (entries_.size() >= most_) {
      throw MachoError("the unwind table has more entries than it has room for");
    }
    close(base_ + offset);
    entries_.push_back({base_ + offset, 0, encoding, 0, 0});
  }

  /// Ends the entry before the next one.
  void close(std::uint64_t end) {
    if (!entries_.empty()) {
      if (end < entries_.back().begin) {
        throw MachoError("the unwind table is not in order");
      }
      entries_.back().end = end;
    }
  }

  void addPersonalityAndData(UnwindEntry& entry) const {
    if (const std::uint32_t index = entry.encoding >> kPersonalityShift & 3; index > 0) {
      if (index > word(16)) {
        throw MachoError("the unwind table names a missing personality function");
      }
      entry.personality = base_ + word(word(12) + (index - 1) * std::uint64_t{4});
    }
    if ((entry.encoding & kHasData) != 0) {
      const auto found = data_.find(entry.begin);
      if (found == data_.end()) {
        throw MachoError("the unwind table lacks language-specific data");
      }
      entry.data = found->second;
    }
  }

  std::uint64_t base_;
  Bytes table_;
  std::size_t most_;
  std::map<std::uint64_t, std::uint64_t> data_;  ///< By function.
  std::vector<UnwindEntry> entries_;
};

/// Reads the frame descriptions of one section.
class FrameReader {
 public:
  FrameReader(const Image& image, const Section& section)
      : address_(section.address), frames_(image.contentsOf(section)) {}

  std::vector<FrameDescription> read() {
    std::vector<FrameDescription> descriptions;
    for (std::uint64_t offset = 0; offset < frames_.size();) {
      const auto size = number<std::uint32_t>(frames_, offset, kFrames);
      if (size == 0) {
        break;
      }
      const Bytes record = slice(frames_, offset + 4, size, kFrames);
      if (const auto rules = number<std::uint32_t>(record, 0, kFrames); rules != 0) {
        if (rules > offset + 4) {
          throw MachoError("a frame description has no common rules");
        }
        descriptions.push_back(description(offset, record, rulesAt(offset + 4 - rules)));
      }
      offset += 4 + std::uint64_t{size};
    }
    return descriptions;
  }

 private:
  // DW_EH_PE: how pointers are written.
  static constexpr std::uint8_t kOmitted = 0xFF;
  static constexpr std::uint8_t kFormatMask = 0x0F;
  static constexpr std::uint8_t kRelativeMask = 0x70;
  static constexpr std::uint8_t kRelativeToItself = 0x10;
  static constexpr std::uint8_t kIndirect = 0x80;

  const FrameRules& rulesAt(std::uint64_t offset) {
    const auto [found, is_new] = rules_.try_emplace(offset);
    if (is_new) {
      found->second = readRules(slice(frames_, offset + 4, number<std::uint32_t>(frames_, offset, kFrames), kFrames));
    }
    return found->second;
  }

  FrameRules readRules(Bytes record) {
    FrameRules rules;
    if (number<std::uint32_t>(record, 0, kFrames) != 0 || number<std::uint8_t>(record, 4, kFrames) != 1) {
      throw MachoError("a frame description's common rules are of an unknown kind");
    }
    const std::string_view augmentation = text(record, 5, kFrames);
    const Bytes alignments = from(record, 5 + augmentation.size() + 1, kFrames);
    OpcodeReader reader(alignments);
    reader.leb128();        // of code
    reader.signedLeb128();  // of data
    reader.byte();          // the return address's register
    rules.alignments = alignments.first(alignments.size() - reader.rest().size());
    rules.has_augmentation = augmentation.starts_with('z');
    if (!augmentation.empty() && !rules.has_augmentation) {
      throw MachoError("a frame description has an unknown augmentation");
    }
    if (rules.has_augmentation) {
      const std::uint64_t size = reader.leb128();
      OpcodeReader values = reader;
      reader.skip(size);
      for (const char kind : augmentation.substr(1)) {
        readAugmentation(kind, values, rules);
      }
    }
    rules.instructions = reader.rest();
    return rules;
  }

  void readAugmentation(char kind, OpcodeReader& values, FrameRules& rules) {
    switch (kind) {
      case 'P': {
        const std::uint8_t encoding = values.byte();
        if ((encoding & kIndirect) == 0) {
          throw MachoError("a frame description's personality function is not reached through a pointer");
        }
        rules.personality = pointer(values, static_cast<std::uint8_t>(encoding & ~kIndirect));
        return;
      }
      case 'L':
        rules.data_encoding = values.byte();
        rules.has_data = rules.data_encoding != kOmitted;
        return;
      case 'R':
        rules.pointer_encoding = values.byte();
        return;
      case 'S':
        rules.is_signal_frame = true;
        return;
      default:
        throw MachoError("a frame description has an unknown augmentation");
    }
  }

  FrameDescription description(std::uint64_t offset, Bytes record, const FrameRules& rules) {
    FrameDescription result;
    result.offset = offset;
    result.rules = rules;
    OpcodeReader reader(from(record, 4, kFrames));
    result.begin = pointer(reader, rules.pointer_encoding);
    result.size = pointer(reader, rules.pointer_encoding & kFormatMask);
    if (rules.has_augmentation) {
      const std::uint64_t size = reader.leb128();
      OpcodeReader data = reader;
      reader.skip(size);
      if (rules.has_data && size > 0) {
        result.data = pointer(data, rules.data_encoding);
      }
    }
    result.instructions = reader.rest();
    return result;
  }

  /// The address that a pointer holds: 0 for none.
  std::uint64_t pointer(OpcodeReader& reader, std::uint8_t encoding) const {
    const std::uint64_t at = address_ + static_cast<std::uint64_t>(reader.rest().data() - frames_.data());
    std::uint64_t value = 0;
    switch (encoding & kFormatMask) {
      case 0x0:
      case 0x4:
      case 0xC:
        value = reader.fixed<std::uint64_t>();
        break;
      case 0x3:
        value = reader.fixed<std::uint32_t>();
        break;
      case 0xB:
        value = static_cast<std::uint64_t>(std::int64_t{reader.fixed<std::int32_t>()});
        break;
      default:
        throw MachoError("a frame description has a pointer of an unknown format");
    }
    const unsigned relative = encoding & kRelativeMask;
    if ((relative != 0 && relative != kRelativeToItself) || (encoding & kIndirect) != 0) {
      throw MachoError("a frame description has a pointer of an unknown format");
    }
    return value == 0 || relative == 0 ? value : value + at;
  }

  std::uint64_t address_;
  Bytes frames_;
  std::map<std::uint64_t, FrameRules> rules_;  ///< By offset.
};

}  // namespace

std::vector<UnwindEntry> unwindEntries(const Image& image) {
  const Section* const section = image.findSection("__unwind_info");
  return section == nullptr ? std::vector<UnwindEntry>() : TableReader(image, *section).read();
}

bool usesFrameDescription(const Image& image, const UnwindEntry& entry) {
  return (entry.encoding & kModeMask) == (image.architecture() == "arm64" ? kDwarfModeArm64 : kDwarfModeX86_64);
}

std::vector<FrameDescription> frameDescriptions(const Image& image) {
  const Section* const section = image.findSection("__eh_frame");
  return section == nullptr ? std::vector<FrameDescription>() : FrameReader(image, *section).read();
}

}  // namespace macho
