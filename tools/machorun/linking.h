// Fixes the pointers of a mapped image up, and finds what its symbols stand for in this process.
#pragma once

#include <functional>
#include <string>

#include "tools/machorun/mapped_image.h"

namespace machorun {

/// The address of an imported symbol, named as in the file, or null. `library` is the path of the library that should
/// have it, or empty for any.
using Resolver = std::function<void*(const std::string& symbol, const std::string& library)>;

/// Writes every pointer that the file lists. Throws MachoError that names the first symbol that nothing provides.
void fixUp(const macho::Image& image, const MappedImage& mapped, const Resolver& resolve);

/// Loads the library that stands for the Mac's frameworks, where there is one. It stays loaded.
void loadPlatform();

/// What this process has: the substitutes for the Mac's own functions, classes of the Objective-C runtime, and then
/// symbols of libraries by their plain names, those of the program before those of others.
void* resolveFromProcess(const std::string& symbol);

}  // namespace machorun
