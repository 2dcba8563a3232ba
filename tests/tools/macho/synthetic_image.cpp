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

void putSegment(FileBytes& bytes, const std::string& name, const SegmentPlace& place) {
  put<std::uint32_t>(bytes, 0x19);
  put<std::uint32_t>(bytes, 72);
  putName(bytes, name);
  for (const std::uint64_t number : {place.address, place.size, place.file_offset, place.file_size}) {
    put(bytes, number);
  }
  for (const std::uint32_t number : {place.most_protection, place.protection, std::uint32_t{0}, place.flags}) {
    put(bytes, number);
  }
}

void putLeb128(FileBytes& bytes, std::uint64_t value) {
  for (; value >= 0x80; value >>= 7) {
    bytes.push_back(static_cast<std::uint8_t>(value | 0x80));
  }
  bytes.push_back(static_cast<std::uint8_t>(value));
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

}  // namespace

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
  const FileBytes loader_info = chains ? chainedFixups(pointers) : rebaseOpcodes(pointers);
  const FileBytes trie = exportsTrie(exports);
  const std::uint64_t data_offset = kTextAddress + text.size();
  const auto loader_offset = static_cast<std::uint32_t>(data_offset + contents.size());
  const auto trie_offset = static_cast<std::uint32_t>(loader_offset + loader_info.size());
  const auto table_offset = static_cast<std::uint32_t>(trie_offset + trie.size());
  const auto names_offset = static_cast<std::uint32_t>(table_offset + table.size());

  const auto size = [](const FileBytes& part) { return static_cast<std::uint32_t>(part.size()); };
  std::vector<FileBytes> all(2);
  putSegment(all[0], "__TEXT", {0, kDataAddress, 0, data_offset, 5, 5, 0});
  putSegment(all[1], "__DATA",
             {kDataAddress, kPageSize, data_offset, contents.size(), data_most_protection, data_protection,
              data_segment_flags});
  if (chains) {
    all.push_back(loadCommand(0x80000034, {loader_offset, size(loader_info)}));
    all.push_back(loadCommand(0x80000033, {trie_offset, size(trie)}));
  } else {  // no bind, weak bind and lazy bind tables
    all.push_back(
        loadCommand(0x80000022, {loader_offset, size(loader_info), 0, 0, 0, 0, 0, 0, trie_offset, size(trie)}));
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
  for (const FileBytes* part : {&text, static_cast<const FileBytes*>(&contents), &loader_info, &trie,
                                static_cast<const FileBytes*>(&table), static_cast<const FileBytes*>(&names)}) {
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
