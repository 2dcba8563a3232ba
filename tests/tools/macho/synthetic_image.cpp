#include "tools/macho/synthetic_image.h"

#include <algorithm>

namespace {

constexpr std::uint64_t kPageSize = 0x4000;

template <typename Number>
void put(FileBytes& bytes, Number value) {
  for (std::size_t index = 0; index < sizeof(Number); ++index) {
    bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * index)));
  }
}

void putName(FileBytes& bytes, const std::string& name) {
  for (std::size_t index = 0; index < 16; ++index) {
    bytes.push_back(index < name.size() ? static_cast<std::uint8_t>(name[index]) : 0);
  }
}

void putBigEndian(FileBytes& bytes, std::uint32_t value) { put(bytes, __builtin_bswap32(value)); }

void append(FileBytes& bytes, const FileBytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

struct SegmentPlace {
  std::uint64_t address, size, file_offset, file_size;
  std::uint32_t most_protection, protection, flags;
};

void putSegment(FileBytes& bytes, const std::string& name, const SegmentPlace& place, std::uint32_t sections = 0) {
  put<std::uint32_t>(bytes, 0x19);
  put<std::uint32_t>(bytes, 72 + 80 * sections);
  putName(bytes, name);
  for (const std::uint64_t number : {place.address, place.size, place.file_offset, place.file_size}) {
    put(bytes, number);
  }
  for (const std::uint32_t number : {place.most_protection, place.protection, sections, place.flags}) {
    put(bytes, number);
  }
}

FileBytes rebaseOpcodes(const std::vector<std::size_t>& pointers) {
  FileBytes opcodes{0x11};  // type: pointer
  for (const std::size_t index : pointers) {
    opcodes.push_back(0x21);  // segment 1, offset
    putLeb128(opcodes, index * 8);
    opcodes.push_back(0x51);  // rebase one pointer
  }
  opcodes.push_back(0x00);
  return opcodes;
}

FileBytes chainedFixups(const std::vector<std::size_t>& pointers) {
  FileBytes fixups;
  for (const std::uint32_t number : {0u, 28u, 0u, 0u, 0u, 1u, 0u}) {  // version, starts, imports, symbols, ...
    put(fixups, number);
  }
  for (const std::uint32_t number : {2u, 0u, 12u}) {  // two segments: no chains in the first, those of the second here
    put(fixups, number);
  }
  put<std::uint32_t>(fixups, 24);
  put<std::uint16_t>(fixups, kPageSize);
  put<std::uint16_t>(fixups, 6);  // 64 bits, offsets
  put<std::uint64_t>(fixups, SyntheticImage::kDataAddress);
  put<std::uint32_t>(fixups, 0);
  put<std::uint16_t>(fixups, 1);
  put<std::uint16_t>(fixups, pointers.empty() ? 0xFFFF : pointers.front() * 8);
  return fixups;
}

/// The words of the data segment as the file holds them: with chains, each pointer also leads to the next one.
std::vector<std::uint64_t> chained(std::vector<std::uint64_t> words, const std::vector<std::size_t>& pointers) {
  for (std::size_t index = 0; index + 1 < pointers.size(); ++index) {
    words[pointers[index]] |= (pointers[index + 1] - pointers[index]) * 2 << 51;
  }
  return words;
}

/// A tree of exports whose root leads to each name at once.
FileBytes exportsTrie(const std::vector<std::string>& names) {
  constexpr std::size_t kLeafSize = 4;
  std::size_t leaf = 2;
  for (const std::string& name : names) {
    leaf += name.size() + 3;
  }
  FileBytes trie{0, static_cast<std::uint8_t>(names.size())};
  for (const std::string& name : names) {
    trie.insert(trie.end(), name.begin(), name.end());
    trie.insert(trie.end(), {0, static_cast<std::uint8_t>(leaf | 0x80U), static_cast<std::uint8_t>(leaf >> 7)});
    leaf += kLeafSize;
  }
  for (std::size_t index = 0; index < names.size(); ++index) {
    trie.insert(trie.end(), {2, 0, 0, 0});  // two bytes of description, no children
  }
  return names.empty() ? FileBytes() : trie;
}

/// One entry of the symbol table; its name is appended to `names`.
void putSymbol(FileBytes& table, FileBytes& names, const std::string& name, std::uint8_t type,
               std::uint16_t description, std::uint64_t address) {
  put<std::uint32_t>(table, static_cast<std::uint32_t>(names.size()));
  put(table, type);
  put<std::uint8_t>(table, type == 0x0E ? 1 : 0);
  put(table, description);
  put(table, address);
  names.insert(names.end(), name.begin(), name.end());
  names.push_back(0);
}

void putSection(FileBytes& bytes, const SyntheticImage::Section& section, std::uint64_t address) {
  putName(bytes, section.name);
  putName(bytes, "__TEXT");
  put(bytes, address);
  put(bytes, static_cast<std::uint64_t>(section.contents.size()));
  for (const std::uint32_t number : {static_cast<std::uint32_t>(address), 0U, 0U, 0U, section.type, 0U, 0U, 0U}) {
    put(bytes, number);
  }
}

/// Writes the size of a record of frame descriptions, which begins at `begin`, and fills it up with DW_CFA_nop.
void closeRecord(FileBytes& bytes, std::size_t begin) {
  bytes.resize((bytes.size() - begin + 7) / 8 * 8 + begin);
  FileBytes size;
  put(size, static_cast<std::uint32_t>(bytes.size() - begin - 4));
  std::copy(size.begin(), size.end(), bytes.begin() + static_cast<std::ptrdiff_t>(begin));
}

}  // namespace

void putLeb128(FileBytes& bytes, std::uint64_t value) {
  for (; value >= 0x80; value >>= 7) {
    bytes.push_back(static_cast<std::uint8_t>(value | 0x80));
  }
  bytes.push_back(static_cast<std::uint8_t>(value));
}

FileBytes UnwindTable::build() const {
  FileBytes table;
  const auto word = [&](std::size_t value) { put(table, static_cast<std::uint32_t>(value)); };
  const auto half = [&](std::size_t value) { put(table, static_cast<std::uint16_t>(value)); };
  const std::size_t shared = 28;
  const std::size_t persons = shared + 4 * shared_encodings.size();
  const std::size_t index = persons + 4 * personalities.size();
  const std::size_t data_begin = index + 2 * 12;
  const std::size_t data_end = data_begin + 8 * data.size();
  for (const std::size_t number :
       {std::size_t{1}, shared, shared_encodings.size(), persons, personalities.size(), index, std::size_t{2}}) {
    word(number);
  }
  for (const auto& list : {shared_encodings, personalities}) {
    for (const std::uint32_t number : list) {
      word(number);
    }
  }
  for (const std::size_t number : {std::size_t{lines.empty() ? end : lines.front().address}, data_end, data_begin,
                                   std::size_t{end}, std::size_t{0}, data_end}) {
    word(number);
  }
  for (const Data& entry : data) {
    word(entry.function);
    word(entry.address);
  }
  if (page == UnwindPage::regular) {
    word(2);
    half(8);
    half(lines.size());
    for (const Line& line : lines) {
      word(line.address);
      word(line.encoding);
    }
    return table;
  }
  word(3);
  half(12);
  half(lines.size());
  half(12 + 4 * lines.size());
  std::vector<std::uint32_t> encodings = shared_encodings;
  for (const Line& line : lines) {
    if (std::find(encodings.begin(), encodings.end(), line.encoding) == encodings.end()) {
      encodings.push_back(line.encoding);
    }
  }
  half(encodings.size() - shared_encodings.size());
  for (const Line& line : lines) {
    const auto at = std::find(encodings.begin(), encodings.end(), line.encoding) - encodings.begin();
    word(static_cast<std::size_t>(at) << 24 | (line.address - lines.front().address));
  }
  for (std::size_t i = shared_encodings.size(); i < encodings.size(); ++i) {
    word(encodings[i]);
  }
  return table;
}

FileBytes FrameSection::build() const {
  FileBytes bytes(4);  // the common rules
  put<std::uint32_t>(bytes, 0);
  const std::string augmentation = personality != 0 ? "zPLR" : "zR";
  bytes.push_back(1);
  bytes.insert(bytes.end(), augmentation.begin(), augmentation.end());
  bytes.insert(bytes.end(), {0, 1, 0x78, 16});  // alignments 1 and -8; the return address's register
  if (personality != 0) {
    bytes.insert(bytes.end(), {7, 0x9B});  // through a pointer, relative, 4 bytes
    put(bytes, static_cast<std::uint32_t>(personality - (address + bytes.size())));
    bytes.insert(bytes.end(), {0x10, 0x10});
  } else {
    bytes.insert(bytes.end(), {1, 0x10});  // relative, 8 bytes
  }
  bytes.insert(bytes.end(), {0x0C, 7, 8});  // DW_CFA_def_cfa: the stack pointer + 8
  closeRecord(bytes, 0);
  for (const Function& function : functions) {
    const std::size_t begin = bytes.size();
    put<std::uint32_t>(bytes, 0);
    put(bytes, static_cast<std::uint32_t>(bytes.size()));  // back to the common rules
    put(bytes, function.begin - (address + bytes.size()));
    put(bytes, function.size);
    bytes.push_back(personality != 0 ? 8 : 0);
    if (personality != 0) {
      put(bytes, function.data == 0 ? 0 : function.data - (address + bytes.size()));
    }
    bytes.insert(bytes.end(), {0x0E, 16});  // DW_CFA_def_cfa_offset
    closeRecord(bytes, begin);
  }
  return bytes;
}

FileBytes loadCommand(std::uint32_t kind, const std::vector<std::uint32_t>& numbers, const std::string& text) {
  FileBytes command;
  const std::size_t size = 8 + numbers.size() * 4 + (text.empty() ? 0 : text.size() + 1);
  put(command, kind);
  put(command, static_cast<std::uint32_t>((size + 7) / 8 * 8));
  for (const std::uint32_t number : numbers) {
    put(command, number);
  }
  command.insert(command.end(), text.begin(), text.end());
  command.resize((size + 7) / 8 * 8);
  return command;
}

FileBytes libraryCommand(const std::string& path, std::uint32_t kind, std::uint32_t version,
                         std::uint32_t compatibility) {
  return loadCommand(kind, {24, 0, version, compatibility}, path);
}

std::uint64_t SyntheticImage::addText(const std::string& value) {
  const std::uint64_t address = kTextAddress + text.size();
  text.insert(text.end(), value.begin(), value.end());
  text.push_back(0);
  return address;
}

std::uint64_t SyntheticImage::nextSection() const {
  std::uint64_t address = kTextAddress + text.size();
  for (const Section& section : sections) {
    address += section.contents.size();
  }
  return address;
}

std::uint64_t SyntheticImage::addSection(const std::string& name, const FileBytes& contents, std::uint32_t type) {
  const std::uint64_t address = nextSection();
  sections.push_back({name, contents, type});
  return address;
}

FileBytes SyntheticImage::build() const {
  FileBytes names{0};
  FileBytes table;
  for (const NamedAddress& symbol : symbols) {
    putSymbol(table, names, symbol.name, 0x0E, 0, symbol.address);
  }
  for (const Import& import : imports) {
    putSymbol(table, names, import.name, 0x01, import.is_weak ? 0x0140 : 0x0100, 0);
  }
  const bool chains = fixups == Fixups::chains;
  FileBytes contents;
  for (const std::uint64_t word : chains ? chained(data, pointers) : data) {
    put(contents, word);
  }

  // What lies behind the headers and the text, in this order.
  const FileBytes fixup_table = loader_info.value_or(chains ? chainedFixups(pointers) : rebaseOpcodes(pointers));
  const FileBytes export_table = trie.value_or(exportsTrie(exports));
  const std::uint64_t data_offset = nextSection();
  const auto loader_offset = static_cast<std::uint32_t>(data_offset + contents.size());
  const auto bind_offset = static_cast<std::uint32_t>(loader_offset + fixup_table.size());
  const auto weak_offset = static_cast<std::uint32_t>(bind_offset + bind_opcodes.size());
  const auto lazy_offset = static_cast<std::uint32_t>(weak_offset + weak_bind_opcodes.size());
  const auto trie_offset = static_cast<std::uint32_t>(lazy_offset + lazy_bind_opcodes.size());
  const auto table_offset = static_cast<std::uint32_t>(trie_offset + export_table.size());
  const auto names_offset = static_cast<std::uint32_t>(table_offset + table.size());

  const auto size = [](const FileBytes& part) { return static_cast<std::uint32_t>(part.size()); };
  std::vector<FileBytes> all(2);
  putSegment(all[0], "__TEXT", {0, kDataAddress, 0, data_offset, 5, 5, 0}, static_cast<std::uint32_t>(sections.size()));
  std::uint64_t section_address = kTextAddress + text.size();
  for (const Section& section : sections) {
    putSection(all[0], section, section_address);
    section_address += section.contents.size();
  }
  putSegment(all[1], "__DATA",
             {kDataAddress, kPageSize, data_offset, contents.size(), data_most_protection, data_protection,
              data_segment_flags});
  if (chains) {
    all.push_back(loadCommand(0x80000034, {loader_offset, size(fixup_table)}));
    all.push_back(loadCommand(0x80000033, {trie_offset, size(export_table)}));
  } else {
    all.push_back(loadCommand(
        0x80000022, {loader_offset, size(fixup_table), bind_offset, size(bind_opcodes), weak_offset,
                     size(weak_bind_opcodes), lazy_offset, size(lazy_bind_opcodes), trie_offset, size(export_table)}));
  }
  all.push_back(loadCommand(
      0x2, {table_offset, static_cast<std::uint32_t>(symbols.size() + imports.size()), names_offset, size(names)}));
  all.insert(all.end(), commands.begin(), commands.end());

  FileBytes list;
  for (const FileBytes& command : all) {
    append(list, command);
  }
  FileBytes file;
  for (const std::uint32_t number :
       {0xFEEDFACFU, cpu, 0U, file_type, static_cast<std::uint32_t>(all.size()), size(list), flags, 0U}) {
    put(file, number);
  }
  append(file, list);
  file.resize(kTextAddress);
  append(file, text);
  for (const Section& section : sections) {
    append(file, section.contents);
  }
  const FileBytes* const parts[] = {&contents,          &fixup_table,  &bind_opcodes, &weak_bind_opcodes,
                                    &lazy_bind_opcodes, &export_table, &table,        &names};
  for (const FileBytes* part : parts) {
    append(file, *part);
  }
  return file;
}

FileBytes universal(const std::vector<FileBytes>& files, const std::vector<std::uint32_t>& cpus) {
  FileBytes result;
  putBigEndian(result, 0xCAFEBABE);
  putBigEndian(result, static_cast<std::uint32_t>(files.size()));
  std::size_t offset = 8 + 20 * files.size();
  for (std::size_t index = 0; index < files.size(); ++index) {
    for (const std::size_t number :
         {std::size_t{cpus[index]}, std::size_t{0}, offset, files[index].size(), std::size_t{0}}) {
      putBigEndian(result, static_cast<std::uint32_t>(number));
    }
    offset += files[index].size();
  }
  for (const FileBytes& file : files) {
    append(result, file);
  }
  return result;
}
