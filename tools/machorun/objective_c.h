// The Objective-C parts of an image over this system's runtime (GCC's): classes, selectors, constant strings, messages.
#pragma once

#include <string>

#include "tools/machorun/mapped_image.h"

namespace machorun {

/// A class or a function of the runtime by its symbol on a Mac, or null.
void* findObjectiveC(const std::string& symbol);

/// Makes the image's entries to the runtime, in its own code. Messages leave through a call that lies in the image, so
/// that a function in the place of the runtime's look-up sees whose messages they are.
void makeMessageEntries(const MappedImage& mapped);
/// The image's entry of this symbol (objc_msgSend and its kin), or null. Without a runtime there are none.
void* messageEntry(const MappedImage& mapped, const std::string& symbol);

/// Registers selectors and turns constant strings into this system's. Throws MachoError for classes that the image
/// defines and for strings of 16-bit characters, which are not supported. Call it when pointers are fixed up.
void adaptObjectiveC(const macho::Image& image, const MappedImage& mapped);

}  // namespace machorun
