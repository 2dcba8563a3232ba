// Checks that a built library or program is what the host and the systems expect, and that two builds of it are equal.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tools/macho/image.h"

namespace macho {

/// The architectures that files are built for.
inline constexpr const char* kArchitectures[] = {"arm64", "x86_64"};

/// One thing that was checked, and what is wrong with it: nothing when it is right.
struct Check {
  std::string subject;
  std::vector<std::string> problems;
};

/// What holds for the library and the program: the oldest system, how the code is protected, and
/// that exceptions can be unwound.
std::vector<Check> checkFile(const Image& image);

/// What holds for the library besides: its name and versions, the libraries that it links, its exports, and that
/// references are counted by hand. `exported` lists the names that it exports as plugin/exports.txt does: without the
/// leading underscore, "*" for any characters.
std::vector<Check> checkLibrary(const Image& image, const std::vector<std::string>& exported);

/// The module record and the method table that the host reads.
Check checkModule(const Image& image);

/// Whether another build of the image has the same machine code and imports the same symbols from the same libraries.
/// Machine code refers to places by their distance: where a function differs in size, others that only moved may be
/// named with it.
std::vector<Check> compareImages(const Image& image, const Image& other);

/// The functions of the symbol table, by address.
std::map<std::uint64_t, std::string> functionsOf(const Image& image);

/// The name of a symbol as the source spells it, without namespaces and parameters.
std::string plainName(std::string_view symbol);

}  // namespace macho
