// Loads a Mac's library into this process: its machine code for this processor runs here, over this system's libraries
// and platform/. Any thread may call; a library stays loaded.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tools/machorun/mapped_image.h"
#include "tools/machorun/thread_locals.h"

namespace machorun {

/// A Mac's library in this process.
struct LoadedImage {
  LoadedImage(std::string file, const macho::Image& image) : path(std::move(file)), mapped(image) {}

  std::string path;
  MappedImage mapped;
  std::map<std::string, void*> exports;  ///< By their names in the file.
  std::unique_ptr<ThreadLocals> thread_locals;
  std::vector<std::uint8_t> frames;    ///< What the unwinder reads.
  const LoadedImage* older = nullptr;  ///< The one that was loaded before.
};

/// Maps the file, fixes it up, registers its functions with the unwinder and runs its initialisers. Throws MachoError,
/// one line that names the file and what is wrong; nothing stays behind then.
const LoadedImage& load(const std::string& path);

/// All of that up to registering and running: throws as load() does, and nothing stays behind.
void checkLoadable(const std::string& path);

/// What the image exports under this name of C, without the file's leading underscore, or null.
void* findSymbol(const LoadedImage& image, const std::string& name);

/// The images of this process, from the newest to the oldest along `older`. No lock is taken: an unwinder may ask.
const LoadedImage* newestImage();
/// The image that holds the address, or null.
const LoadedImage* imageAt(const void* address);
/// The image that was loaded from this path, or null.
const LoadedImage* imageOf(const std::string& path);

/// Whether the file can be read and is for a Mac.
bool isForMac(const std::string& path);

}  // namespace machorun
