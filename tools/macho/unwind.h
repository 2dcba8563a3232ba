// Reads what an unwinder needs of an image: the table of compact encodings (__unwind_info) and the DWARF frame
// descriptions
// (__eh_frame) of functions that the table cannot describe. Addresses are relative to where the image is loaded.
//
// Malformed sections raise MachoError.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/macho/image.h"

namespace macho {

/// One line of the table: how the functions from `begin` on, up to `end`, are unwound.
struct UnwindEntry {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  std::uint32_t encoding = 0;
  std::uint64_t personality = 0;  ///< The address of the pointer to the personality function; 0 for none.
  std::uint64_t data = 0;         ///< The address of the language-specific data; 0 for none.
};

/// Those of the table, in ascending order; none when the image has no table.
std::vector<UnwindEntry> unwindEntries(const Image& image);

/// Whether the function is described by DWARF, in a frame description.
bool usesFrameDescription(const Image& image, const UnwindEntry& entry);

/// What frame descriptions have in common (a CIE).
struct FrameRules {
  Bytes alignments;  ///< As in the file: of code and data, and the number of the return address's register.
  std::uint64_t personality = 0;  ///< The address of the pointer to the personality function; 0 for none.
  bool has_augmentation = false;
  bool has_data = false;  ///< Descriptions hold the address of language-specific data.
  bool is_signal_frame = false;
  std::uint8_t pointer_encoding = 0;
  std::uint8_t data_encoding = 0;
  Bytes instructions;
};

/// How the frame of one function is unwound (an FDE).
struct FrameDescription {
  std::uint64_t offset = 0;  ///< In the section.
  std::uint64_t begin = 0;
  std::uint64_t size = 0;
  std::uint64_t data = 0;  ///< The address of the language-specific data; 0 for none.
  FrameRules rules;
  Bytes instructions;
};

/// Those of the image, in the section's order.
std::vector<FrameDescription> frameDescriptions(const Image& image);

}  // namespace macho
