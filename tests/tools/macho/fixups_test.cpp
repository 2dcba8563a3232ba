// Every opcode of LC_DYLD_INFO's tables, chained pointers in each format, and shapes of the tree of exports.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "tools/macho/image.h"
#include "tools/macho/synthetic_image.h"

namespace {

using macho::Image;
using macho::MachoError;
using macho::Pointer;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr std::uint64_t kData = SyntheticImage::kDataAddress;

/// Bytes of tables: numbers below 256, and texts with their ends.
FileBytes operator+(FileBytes bytes, const std::string& text) {
  bytes.insert(bytes.end(), text.begin(), text.end());
  bytes.push_back(0);
  return bytes;
}
FileBytes operator+(FileBytes bytes, const FileBytes& more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
  return bytes;
}

/// Sixteen words of data, the addresses of themselves.
SyntheticImage sixteenWords() {
  SyntheticImage synthetic;
  for (std::uint64_t i = 0; i < 16; ++i) {
    synthetic.data.push_back(kData + i * 8);
  }
  return synthetic;
}

std::vector<std::uint64_t> fixedUp(const SyntheticImage& synthetic) {
  const FileBytes file = synthetic.build();
  const Image image(file);
  std::vector<std::uint64_t> words;
  for (const auto& [address, pointer] : image.fixups()) {
    words.push_back((address - kData) / 8);
  }
  return words;
}

struct Opcodes {
  const char* name;
  FileBytes bytes;
  std::vector<std::uint64_t> words;  ///< Indices of the pointers that the opcodes change.
};

void PrintTo(const Opcodes& opcodes, std::ostream* out) { *out << opcodes.name; }

class RebaseOpcode : public testing::TestWithParam<Opcodes> {};

TEST_P(RebaseOpcode, ChangesItsPointers) {
  SyntheticImage synthetic = sixteenWords();
  synthetic.loader_info = GetParam().bytes;
  EXPECT_EQ(fixedUp(synthetic), GetParam().words);
  const FileBytes file = synthetic.build();
  const Image image(file);
  for (const auto& [address, pointer] : image.fixups()) {
    EXPECT_EQ(pointer.kind, Pointer::Kind::image);
    EXPECT_EQ(pointer.value, address);
  }
}

const Opcodes kRebases[] = {
    {"Done", {0x11, 0x21, 0x00, 0x00, 0x51}, {}},
    {"SetSegmentAndOffset", {0x21, 0x08, 0x51}, {1}},
    {"AddAddress", {0x21, 0x00, 0x30, 0x18, 0x51}, {3}},
    {"AddAddressScaled", {0x21, 0x00, 0x42, 0x51}, {2}},
    {"TimesImmediate", {0x21, 0x00, 0x53}, {0, 1, 2}},
    {"Times", {0x21, 0x10, 0x60, 0x02}, {2, 3}},
    {"AddAddressAfter", {0x21, 0x00, 0x70, 0x10, 0x51}, {0, 3}},
    {"TimesSkipping", {0x21, 0x00, 0x80, 0x03, 0x08}, {0, 2, 4}},
};

INSTANTIATE_TEST_SUITE_P(, RebaseOpcode, testing::ValuesIn(kRebases), [](const auto& info) { return info.param.name; });

class BindOpcode : public testing::TestWithParam<Opcodes> {};

TEST_P(BindOpcode, ChangesItsPointers) {
  SyntheticImage synthetic = sixteenWords();
  synthetic.bind_opcodes = FileBytes{0x12, 0x51} + (FileBytes{0x40} + "_name") + GetParam().bytes;
  EXPECT_EQ(fixedUp(synthetic), GetParam().words);
}

const Opcodes kBinds[] = {
    {"Done", {0x71, 0x00, 0x00, 0x90}, {}},
    {"AddAddress", {0x71, 0x00, 0x80, 0x18, 0x90}, {3}},
    {"Once", {0x71, 0x08, 0x90, 0x90}, {1, 2}},
    {"AddAddressAfter", {0x71, 0x00, 0xA0, 0x10, 0x90}, {0, 3}},
    {"AddAddressScaledAfter", {0x71, 0x00, 0xB3, 0x90}, {0, 4}},
    {"TimesSkipping", {0x71, 0x00, 0xC0, 0x03, 0x08}, {0, 2, 4}},
};

INSTANTIATE_TEST_SUITE_P(, BindOpcode, testing::ValuesIn(kBinds), [](const auto& info) { return info.param.name; });

Pointer bound(const FileBytes& opcodes) {
  SyntheticImage synthetic = sixteenWords();
  synthetic.bind_opcodes = opcodes + FileBytes{0x71, 0x00, 0x90};
  const FileBytes file = synthetic.build();
  Pointer pointer = Image(file).pointerAt(kData);
  static std::string name;
  name = pointer.symbol;
  pointer.symbol = name;
  return pointer;
}

TEST(BindOpcodes, NameSymbolLibraryAndAddend) {
  const Pointer plain = bound(FileBytes{0x13} + (FileBytes{0x40} + "_name"));
  EXPECT_EQ(plain.kind, Pointer::Kind::import);
  EXPECT_EQ(plain.symbol, "_name");
  EXPECT_EQ(plain.library, 3);
  EXPECT_EQ(plain.value, 0U);
  EXPECT_FALSE(plain.is_weak);
  EXPECT_TRUE(bound(FileBytes{0x41} + "_weak").is_weak);
  EXPECT_EQ(bound({0x20, 0x85, 0x02}).library, 261);
  EXPECT_EQ(bound({0x3E}).library, macho::kAnyLibrary);
  EXPECT_EQ(bound({0x30}).library, 0);
  EXPECT_EQ(bound({0x60, 0xC0, 0x00}).value, 64U);
  EXPECT_EQ(bound({0x60, 0x78}).value, static_cast<std::uint64_t>(-8));
}

TEST(LazyBinds, ReplaceTheAddressOfTheHelper) {
  SyntheticImage synthetic = sixteenWords();
  synthetic.loader_info = FileBytes{0x21, 0x00, 0x52};
  synthetic.lazy_bind_opcodes = FileBytes{0x71, 0x00, 0x11} + (FileBytes{0x40} + "_one") + FileBytes{0x90, 0x00} +
                                FileBytes{0x71, 0x08, 0x11} + (FileBytes{0x40} + "_two") + FileBytes{0x90, 0x00};
  const FileBytes file = synthetic.build();
  const Image image(file);
  EXPECT_EQ(image.pointerAt(kData).symbol, "_one");
  EXPECT_EQ(image.pointerAt(kData + 8).symbol, "_two");
}

TEST(WeakBinds, PreferTheImagesOwnDefinition) {
  SyntheticImage synthetic = sixteenWords();
  synthetic.trie = FileBytes{0, 1} + (FileBytes{} + "_own") + FileBytes{8, 3, 0, 0x80, 0x20, 0};  // at 0x1000
  synthetic.bind_opcodes = FileBytes{0x11} + (FileBytes{0x40} + "_own") + FileBytes{0x71, 0x00, 0x90} +
                           (FileBytes{0x40} + "_other") + FileBytes{0x90};
  synthetic.weak_bind_opcodes = (FileBytes{0x40} + "_own") + FileBytes{0x71, 0x00, 0x90} +
                                (FileBytes{0x40} + "_other") + FileBytes{0x90} + (FileBytes{0x40} + "_third") +
                                FileBytes{0x90};
  const FileBytes file = synthetic.build();
  const Image image(file);
  EXPECT_EQ(image.pointerAt(kData).kind, Pointer::Kind::image);
  EXPECT_EQ(image.pointerAt(kData).value, 0x1000U);
  EXPECT_EQ(image.pointerAt(kData + 8).symbol, "_other");
  EXPECT_EQ(image.pointerAt(kData + 8).library, 1);
  EXPECT_EQ(image.pointerAt(kData + 16).symbol, "_third");
  EXPECT_EQ(image.pointerAt(kData + 16).library, macho::kAnyLibrary);
}

// --- chains

template <typename Number>
void put(FileBytes& bytes, Number value) {
  for (std::size_t i = 0; i < sizeof(Number); ++i) {
    bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * i)));
  }
}

/// Three pointers in a chain: word 0 to an address of the image, words 1 and 3 bound to imports 0 and 1.
struct Chain {
  std::uint16_t pointer_format = 6;
  std::uint32_t import_format = 1;
  std::uint32_t import_count = 2;
  std::uint64_t second_import = 1;

  SyntheticImage build() const {
    SyntheticImage synthetic = sixteenWords();
    synthetic.fixups = Fixups::chains;
    synthetic.data[0] = (kData + 8) | std::uint64_t{0xAB} << 36 | std::uint64_t{2} << 51;
    synthetic.data[1] = std::uint64_t{1} << 63 | std::uint64_t{4} << 51 | std::uint64_t{16} << 24;
    synthetic.data[3] = std::uint64_t{1} << 63 | second_import;
    synthetic.loader_info = table();
    return synthetic;
  }

  FileBytes table() const {
    const std::uint32_t entry = import_format == 1 ? 4 : import_format == 2 ? 8 : 16;
    FileBytes bytes;
    for (const std::uint32_t number : {0U, 28U, 64U, 64U + 2 * entry, import_count, import_format, 0U}) {
      put(bytes, number);
    }
    for (const std::uint32_t number : {2U, 0U, 12U, 24U}) {
      put(bytes, number);
    }
    put<std::uint16_t>(bytes, 0x4000);
    put<std::uint16_t>(bytes, pointer_format);
    put<std::uint64_t>(bytes, kData);
    put<std::uint32_t>(bytes, 0);
    put<std::uint16_t>(bytes, 1);
    put<std::uint16_t>(bytes, 0);
    bytes.resize(64);
    if (import_format == 3) {
      put<std::uint64_t>(bytes, 2 | std::uint64_t{1} << 32);
      put<std::uint64_t>(bytes, 100);
      put<std::uint64_t>(bytes, 0xFFFE | 1 << 16 | std::uint64_t{6} << 32);
      put<std::uint64_t>(bytes, -8);
    } else {
      put<std::uint32_t>(bytes, 2 | 1 << 9);
      if (import_format == 2) {
        put<std::int32_t>(bytes, 100);
      }
      put<std::uint32_t>(bytes, 0xFE | 1 << 8 | 6 << 9);
      if (import_format == 2) {
        put<std::int32_t>(bytes, -8);
      }
    }
    return (bytes + "") + "_one" + "_two";
  }
};

class ChainedImports : public testing::TestWithParam<std::uint32_t> {};

TEST_P(ChainedImports, NameSymbolLibraryAndAddend) {
  Chain chain;
  chain.import_format = GetParam();
  const FileBytes file = chain.build().build();
  const Image image(file);
  const Pointer one = image.pointerAt(kData + 8);
  EXPECT_EQ(one.kind, Pointer::Kind::import);
  EXPECT_EQ(one.symbol, "_one");
  EXPECT_EQ(one.library, 2);
  EXPECT_EQ(one.value, GetParam() == 1 ? 16U : 116U);
  EXPECT_FALSE(one.is_weak);
  const Pointer two = image.pointerAt(kData + 24);
  EXPECT_EQ(two.symbol, "_two");
  EXPECT_EQ(two.library, macho::kAnyLibrary);
  EXPECT_EQ(two.value, GetParam() == 1 ? 0U : static_cast<std::uint64_t>(-8));
  EXPECT_TRUE(two.is_weak);
  EXPECT_EQ(image.fixups().size(), 3U);
}

INSTANTIATE_TEST_SUITE_P(, ChainedImports, testing::Values(1, 2, 3),
                         [](const auto& info) { return "Format" + std::to_string(info.param); });

class ChainedPointers : public testing::TestWithParam<std::uint16_t> {};

TEST_P(ChainedPointers, HoldTheTargetAndItsTopmostByte) {
  Chain chain;
  chain.pointer_format = GetParam();
  const FileBytes file = chain.build().build();
  EXPECT_EQ(Image(file).pointerAt(kData).kind, Pointer::Kind::image);
  EXPECT_EQ(Image(file).pointerAt(kData).value, (kData + 8) | std::uint64_t{0xAB} << 56);
}

INSTANTIATE_TEST_SUITE_P(, ChainedPointers, testing::Values(2, 6),
                         [](const auto& info) { return "Format" + std::to_string(info.param); });

// --- exports

std::vector<std::pair<std::string, std::uint64_t>> exportsIn(const FileBytes& trie) {
  SyntheticImage synthetic = sixteenWords();
  synthetic.trie = trie;
  const FileBytes file = synthetic.build();
  std::vector<std::pair<std::string, std::uint64_t>> found;
  const Image image(file);
  for (const macho::Export& symbol : image.exports()) {
    found.emplace_back(symbol.name, symbol.is_elsewhere ? 0 : symbol.address);
  }
  std::sort(found.begin(), found.end());
  return found;
}

TEST(Exports, AreReadFromTreesOfEveryShape) {
  EXPECT_THAT(exportsIn({}), IsEmpty());
  EXPECT_THAT(exportsIn({0, 0}), IsEmpty());
  // A name that is the beginning of another, and a branch.
  const FileBytes branch = FileBytes{0, 1} + (FileBytes{} + "_a") + FileBytes{6} +           // root
                           FileBytes{2, 0, 0x10, 2} + (FileBytes{} + "b") + FileBytes{16} +  // 6: "_a"
                           (FileBytes{} + "c") + FileBytes{20} + FileBytes{2, 0, 0x20, 0} +  // 16: "_ab"
                           FileBytes{3, 0, 0x80, 0x01, 0};                                   // 20: "_ac"
  EXPECT_THAT(exportsIn(branch), ElementsAre(Pair("_a", 0x10), Pair("_ab", 0x20), Pair("_ac", 0x80)));
  // Passed on from library 1 under another name.
  const FileBytes elsewhere = FileBytes{0, 1} + (FileBytes{} + "_a") + FileBytes{6} + FileBytes{3, 8, 1, 'x', 0};
  EXPECT_THAT(exportsIn(elsewhere), ElementsAre(Pair("_a", 0)));
}

// --- files that are not as they must be

struct Hostile {
  const char* name;
  std::function<SyntheticImage()> make;
  const char* problem;
};

void PrintTo(const Hostile& hostile, std::ostream* out) { *out << hostile.name; }

class HostileTable : public testing::TestWithParam<Hostile> {};

TEST_P(HostileTable, IsRefusedInOneLine) {
  const FileBytes file = GetParam().make().build();
  try {
    const Image image(file);
    ADD_FAILURE() << "was read";
  } catch (const MachoError& error) {
    EXPECT_STREQ(error.what(), GetParam().problem);
  }
}

SyntheticImage withRebase(const FileBytes& opcodes) {
  SyntheticImage synthetic = sixteenWords();
  synthetic.loader_info = opcodes;
  return synthetic;
}
SyntheticImage withBind(const FileBytes& opcodes) {
  SyntheticImage synthetic = sixteenWords();
  synthetic.bind_opcodes = opcodes;
  return synthetic;
}
SyntheticImage withTrie(const FileBytes& trie) {
  SyntheticImage synthetic = sixteenWords();
  synthetic.trie = trie;
  return synthetic;
}
SyntheticImage withChain(const Chain& chain) { return chain.build(); }

const Hostile kHostile[] = {
    {"RebasePastItsTable", [] { return withRebase({0x21}); }, "an opcode lies outside the file"},
    {"RebaseOutsideEverySegment",
     [] {
       return withRebase({0x21, 0x80, 0x80, 0x80, 0x08, 0x51});
     },
     "an address lies in no segment"},
    {"RebaseOfMissingSegment",
     [] {
       return withRebase({0x2F, 0x00, 0x51});
     },
     "a fixup names a missing segment"},
    {"RebaseWithoutEnd",
     [] {
       return withRebase({0x21, 0, 0x60, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F});
     },
     "what an address points to lies outside the file"},
    {"RebaseOfOtherType", [] { return withRebase({0x12}); }, "a fixup is not of a pointer"},
    {"RebaseTwice",
     [] {
       return withRebase({0x21, 0x00, 0x51, 0x21, 0x00, 0x51});
     },
     "fixups overlap"},
    {"UnknownRebase", [] { return withRebase({0x90}); }, "an unknown rebase opcode"},
    {"NumberWithoutEnd",
     [] {
       return withRebase({0x30, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01});
     },
     "an opcode's number is too long"},
    {"BindNameWithoutEnd",
     [] {
       return withBind({0x40, 'a', 'b'});
     },
     "an opcode does not end"},
    {"BindPastItsTable", [] { return withBind({0x71}); }, "an opcode lies outside the file"},
    {"BindWithoutEnd",
     [] {
       return withBind({0x71, 0, 0xC0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 0});
     },
     "what an address points to lies outside the file"},
    {"BindInPlace",
     [] {
       return withBind({0x71, 0, 0xC0, 0x7F, 0xF8, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01});
     },
     "fixups overlap"},
    {"WeakBindInPlace",
     [] {
       SyntheticImage synthetic = sixteenWords();
       synthetic.weak_bind_opcodes = {
           0x71, 0,    0xC0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F,  // 2^42 times, stepping by 0
           0xF8, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01};
       return synthetic;
     },
     "fixups overlap"},
    {"UnknownBind", [] { return withBind({0xD0}); }, "an unknown bind opcode"},
    {"ExportsInCircle",
     [] {
       return withTrie({0, 1, 'a', 0, 0});
     },
     "the table of exports is not a tree, or too large"},
    {"ExportsOutsideTheirTable",
     [] {
       return withTrie({0, 1, 'a', 0, 0x7F});
     },
     "the table of exports lies outside the file"},
    {"ExportWithoutAddress",
     [] {
       return withTrie({0, 1, 'a', 0, 5, 1, 0});
     },
     "an opcode lies outside the file"},
    {"ChainOfUnknownFormat", [] { return withChain({.pointer_format = 1}); }, "chained fixups in an unknown format"},
    {"ChainWithMissingImport", [] { return withChain({.second_import = 2}); },
     "a chained fixup names a missing import"},
    {"ChainedImportsOfUnknownFormat", [] { return withChain({.import_format = 4}); },
     "chained imports in an unknown format"},
    {"ChainedImportsWithoutEnd", [] { return withChain({.import_count = 0x10000000}); },
     "the chained imports lies outside the file"},
};

INSTANTIATE_TEST_SUITE_P(, HostileTable, testing::ValuesIn(kHostile), [](const auto& info) { return info.param.name; });

}  // namespace
