// Compact encodings, written by the rules of Apple's header, and the DWARF instructions that they become.
#include "tools/machorun/unwinding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <set>

#include "tools/macho/synthetic_image.h"

namespace {

using macho::MachoError;
using macho::UnwindEntry;

/// Where a function keeps things, by DWARF's numbers of registers.
struct Rules {
  std::uint64_t frame_register = 0;
  std::uint64_t frame_offset = 0;
  std::map<std::uint64_t, std::uint64_t> below;  ///< Saved registers: bytes below the caller's stack pointer.

  bool operator==(const Rules&) const = default;
};

void PrintTo(const Rules& rules, std::ostream* out) {
  *out << "r" << rules.frame_register << "+" << rules.frame_offset;
  for (const auto& [number, place] : rules.below) {
    *out << " r" << number << "@-" << place;
  }
}

Rules read(const std::vector<std::uint8_t>& instructions) {
  Rules rules;
  macho::OpcodeReader reader(instructions);
  while (!reader.atEnd()) {
    const std::uint8_t opcode = reader.byte();
    if (opcode == 0x0C) {
      rules.frame_register = reader.leb128();
      rules.frame_offset = reader.leb128();
    } else if (opcode == 0x05) {
      const std::uint64_t number = reader.leb128();
      rules.below[number] = reader.leb128() * 8;
    } else {
      EXPECT_EQ(opcode & 0xC0, 0x80);
      rules.below[opcode & 0x3F] = reader.leb128() * 8;
    }
  }
  return rules;
}

std::optional<Rules> rulesFor(std::uint32_t cpu, std::uint32_t encoding, const FileBytes& code = FileBytes(64)) {
  SyntheticImage synthetic;
  synthetic.cpu = cpu;
  const std::uint64_t function = synthetic.addSection("__text", code);
  const FileBytes file = synthetic.build();
  const macho::Image image(file);
  const auto instructions = machorun::frameInstructions(image, UnwindEntry{function, function + 64, encoding, 0, 0});
  return instructions ? std::optional(read(*instructions)) : std::nullopt;
}

constexpr unsigned kCompactToDwarf[] = {0, 3, 12, 13, 14, 15, 6};

/// The number of a permutation, as a compiler makes it: of each register, how many of lower number are not yet named,
/// in digits of falling bases.
std::uint32_t permutationOf(const std::vector<unsigned>& registers) {
  std::vector<unsigned> digits;
  for (std::size_t i = 0; i < registers.size(); ++i) {
    unsigned digit = registers[i] - 1;
    for (std::size_t before = 0; before < i; ++before) {
      digit -= registers[before] < registers[i] ? 1 : 0;
    }
    digits.push_back(digit);
  }
  switch (registers.size()) {
    case 6:
    case 5:
      return 120 * digits[0] + 24 * digits[1] + 6 * digits[2] + 2 * digits[3] + digits[4];
    case 4:
      return 60 * digits[0] + 12 * digits[1] + 3 * digits[2] + digits[3];
    case 3:
      return 20 * digits[0] + 4 * digits[1] + digits[2];
    case 2:
      return 5 * digits[0] + digits[1];
    case 1:
      return digits[0];
    default:
      return 0;
  }
}

/// Every choice and order of so many of the six registers.
std::set<std::vector<unsigned>> permutations(unsigned count) {
  std::vector<unsigned> all{1, 2, 3, 4, 5, 6};
  std::set<std::vector<unsigned>> result;
  do {
    result.insert({all.begin(), all.begin() + count});
  } while (std::next_permutation(all.begin(), all.end()));
  return result;
}

TEST(FramelessX86_64, RestoresEveryPermutationOfEveryNumberOfRegisters) {
  std::size_t tried = 0;
  for (unsigned count = 0; count <= 6; ++count) {
    for (const std::vector<unsigned>& registers : permutations(count)) {
      const std::uint32_t size = count + 3;
      const std::uint32_t encoding = 0x02000000 | size << 16 | count << 10 | permutationOf(registers);
      Rules expected{7, size * 8, {{16, 8}}};
      for (unsigned i = 0; i < count; ++i) {
        expected.below[kCompactToDwarf[registers[i]]] = 8 + 8 * (count - i);
      }
      ASSERT_EQ(rulesFor(kX86_64, encoding), expected) << std::hex << encoding;
      ++tried;
    }
  }
  EXPECT_EQ(tried, 1U + 6 + 30 + 120 + 360 + 720 + 720);
}

TEST(FramelessX86_64, ReadsLargeSizeFromTheInstruction) {
  FileBytes code(64);
  code[10] = 0x78;
  code[11] = 0x56;
  code[12] = 0x01;
  const std::uint32_t encoding = 0x03000000 | 10 << 16 | 2 << 13 | 1 << 10 | 0;  // and two pushed words, one register
  EXPECT_EQ(rulesFor(kX86_64, encoding, code), (Rules{7, 0x15678 + 16, {{16, 8}, {3, 16}}}));
}

TEST(FramePointerX86_64, RestoresEveryRegisterInEveryPlace) {
  for (unsigned offset = 1; offset <= 5; ++offset) {
    for (unsigned place = 0; place < offset; ++place) {
      for (unsigned number = 1; number <= 5; ++number) {
        const std::uint32_t encoding = 0x01000000 | offset << 16 | number << (3 * place);
        const Rules expected{6, 16, {{16, 8}, {6, 16}, {kCompactToDwarf[number], 16 + 8 * (offset - place)}}};
        ASSERT_EQ(rulesFor(kX86_64, encoding), expected) << std::hex << encoding;
      }
    }
  }
}

TEST(FramePointerArm64, RestoresEveryChoiceOfPairs) {
  constexpr std::pair<std::uint32_t, unsigned> kPairs[] = {{0x001, 19}, {0x002, 21}, {0x004, 23},
                                                           {0x008, 25}, {0x010, 27}, {0x100, 72},
                                                           {0x200, 74}, {0x400, 76}, {0x800, 78}};
  for (unsigned choice = 0; choice < 512; ++choice) {
    std::uint32_t encoding = 0x04000000;
    Rules expected{29, 16, {{30, 8}, {29, 16}}};
    std::uint64_t place = 24;
    for (std::size_t i = 0; i < std::size(kPairs); ++i) {
      if ((choice >> i & 1) != 0) {
        encoding |= kPairs[i].first;
        expected.below[kPairs[i].second] = place;
        expected.below[kPairs[i].second + 1] = place + 8;
        place += 16;
      }
    }
    ASSERT_EQ(rulesFor(kArm64, encoding), expected) << std::hex << encoding;
  }
}

TEST(FramelessArm64, HasReturnAddressInItsRegister) { EXPECT_EQ(rulesFor(kArm64, 0x02005000), (Rules{31, 80, {}})); }

TEST(CompactEncoding, OfNothingOrOfDwarfHasNoInstructions) {
  EXPECT_EQ(rulesFor(kX86_64, 0), std::nullopt);
  EXPECT_EQ(rulesFor(kX86_64, 0x04000000), std::nullopt);
  EXPECT_EQ(rulesFor(kArm64, 0), std::nullopt);
  EXPECT_EQ(rulesFor(kArm64, 0x03000000), std::nullopt);
}

TEST(CompactEncoding, ThatDoesNotExistIsRefused) {
  for (const std::uint32_t encoding : {
           0x05000000U,                          // an unknown mode
           0x01000000U | 1 << 16 | 7,            // no such register
           0x01000000U | 1 << 16 | 1 << 3,       // above the frame pointer
           0x02000000U | 9 << 16 | 7 << 10,      // too many registers
           0x02000000U | 9 << 16 | 1 << 10 | 6,  // no such permutation
           0x02000000U | 1 << 16 | 1 << 10,      // more registers than stack
           0x03000000U | 62 << 16 | 0 << 10,     // the size is past the function's end
       }) {
    EXPECT_THROW(rulesFor(kX86_64, encoding), MachoError) << std::hex << encoding;
  }
  EXPECT_THROW(rulesFor(kArm64, 0x05000000), MachoError);
  EXPECT_THROW(rulesFor(kArm64, 0x02001001), MachoError);
}

}  // namespace
