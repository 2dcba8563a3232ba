// Unwinding through a Mac's code with this system's unwinder, which reads DWARF only: the image's compact encodings are
// written as frame descriptions.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "tools/macho/unwind.h"
#include "tools/machorun/mapped_image.h"

namespace machorun {

/// The DWARF instructions for what a compact encoding does; nothing for a function that has none or needs a frame
/// description. Throws MachoError for an encoding that does not exist.
std::optional<std::vector<std::uint8_t>> frameInstructions(const macho::Image& image, const macho::UnwindEntry& entry);

/// A section of frame descriptions for all functions of the image where it is mapped, with the zero that ends it.
std::vector<std::uint8_t> frameSection(const macho::Image& image, const MappedImage& mapped);

/// Makes a section known to the unwinder, which reads it for the life of the process.
void registerFrames(std::vector<std::uint8_t>& section);

}  // namespace machorun
