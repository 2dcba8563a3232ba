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
  std::uint64_t address, size, fileOffset, fileSize;
  std::uint32_t protection, flags;
};

void putSegment(FileBytes& bytes, const std::string& name, const SegmentPlace& place) {
  put<std::uint32_t>(bytes, 0x19);
  put<std::uint32_t>(bytes, 72);
  putName(bytes, name);
  for (const std::uint64_t number : {place.address, place.size, place.fileOffset, place.fileSize}) {
    put(bytes, number);
  }
  for (const std::uint32_t number : {place.protection, place.protection, std::uint32_t{0}, place.flags}) {
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

}  // namespace

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
    put<std::uint32_t>(table, static_cast<std::uint32_t>(names.size()));
    put<std::uint8_t>(table, 0x0E);
    put<std::uint8_t>(table, 1);
    put<std::uint16_t>(table, 0);
    put(table, symbol.address);
    names.insert(names.end(), symbol.name.begin(), symbol.name.end());
    names.push_back(0);
  }
  const bool chains = fixups == Fixups::chains;
  const FileBytes loaderInfo = chains ? chainedFixups(pointers) : rebaseOpcodes(pointers);
  FileBytes contents;
  for (const std::uint64_t word : chains ? chained(data, pointers) : data) {
    put(contents, word);
  }

  const std::uint64_t dataOffset = kTextAddress + text.size();
  const auto loaderOffset = static_cast<std::uint32_t>(dataOffset + contents.size());
  const auto tableOffset = static_cast<std::uint32_t>(loaderOffset + loaderInfo.size());
  const std::uint32_t loaderCommandSize = chains ? 16 : 48;
  FileBytes file;
  for (const std::uint32_t number : {0xFEEDFACFu, cpu, 0u, 6u, 4u, 72u + 72 + 24 + loaderCommandSize, 0u, 0u}) {
    put(file, number);
  }
  putSegment(file, "__TEXT", {0, kDataAddress, 0, dataOffset, 5, 0});
  putSegment(file, "__DATA", {kDataAddress, kPageSize, dataOffset, contents.size(), 3, dataSegmentFlags});
  for (const std::uint32_t number : {chains ? 0x80000034u : 0x80000022u, loaderCommandSize, loaderOffset,
                                     static_cast<std::uint32_t>(loaderInfo.size())}) {
    put(file, number);
  }
  file.resize(file.size() + loaderCommandSize - 16);  // no bind, weak bind, lazy bind and export tables
  for (const std::uint32_t number :
       {0x2u, 24u, tableOffset, static_cast<std::uint32_t>(symbols.size()),
        static_cast<std::uint32_t>(tableOffset + table.size()), static_cast<std::uint32_t>(names.size())}) {
    put(file, number);
  }
  file.resize(kTextAddress);
  for (const FileBytes* part : {&text, static_cast<const FileBytes*>(&contents), &loaderInfo,
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
