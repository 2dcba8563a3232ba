#include "tools/machorun/loader.h"

#include <atomic>
#include <fstream>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "tools/machorun/linking.h"
#include "tools/machorun/objective_c.h"
#include "tools/machorun/thread_locals.h"
#include "tools/machorun/unwinding.h"

namespace machorun {
namespace {

/// S_MOD_INIT_FUNC_POINTERS and S_INIT_FUNC_OFFSETS.
constexpr std::uint8_t kInitialiserPointers = 0x9;
constexpr std::uint8_t kInitialiserOffsets = 0x16;

/// As the Mac's loader calls them.
using Initialiser = void (*)(int count, const char** arguments, const char** environment, const char** apple,
                             const void* programs);

/// Initialisers may load.
std::recursive_mutex& mutex() {
  static auto* const kept = new std::recursive_mutex;
  return *kept;
}
std::atomic<const LoadedImage*> newest{nullptr};

/// What an image of ours exports, when the symbol is of another library that is found by its path at run time.
void* resolve(const MappedImage& mapped, const std::string& symbol, const std::string& library) {
  if (void* const entry = messageEntry(mapped, symbol)) {
    return entry;
  }
  if (library.empty() || library.starts_with("@rpath/")) {
    for (const LoadedImage* image = newest; image != nullptr; image = image->older) {
      if (const auto found = image->exports.find(symbol); found != image->exports.end()) {
        return found->second;
      }
    }
  }
  return library.starts_with("@rpath/") ? nullptr : resolveFromProcess(symbol);
}

void* codeAt(const macho::Image& image, const MappedImage& mapped, std::uint64_t address) {
  if (!image.segmentAt(address).executable) {
    throw MachoError("an initialiser is not a function of the image");
  }
  return mapped.at(address);
}

std::vector<Initialiser> initialisersOf(const macho::Image& image, const MappedImage& mapped) {
  std::vector<Initialiser> initialisers;
  const auto add = [&](std::uint64_t address) {
    initialisers.push_back(reinterpret_cast<Initialiser>(codeAt(image, mapped, address)));
  };
  for (const macho::Section& section : image.sections()) {
    if (section.type == kInitialiserPointers) {
      for (std::uint64_t at = section.address; at + 8 <= section.address + section.size; at += 8) {
        add(image.pointerAt(at).value);
      }
    } else if (section.type == kInitialiserOffsets) {
      const Bytes offsets = image.contentsOf(section);
      for (std::uint64_t at = 0; at + 4 <= offsets.size(); at += 4) {
        add(image.baseAddress() + macho::number<std::uint32_t>(offsets, at, "an initialiser"));
      }
    }
  }
  return initialisers;
}

/// An image that is ready to run.
struct PreparedImage {
  std::unique_ptr<LoadedImage> loaded;
  std::vector<Initialiser> initialisers;
};

PreparedImage prepareChecked(const std::string& path) {
  const std::vector<std::uint8_t> file = macho::contentsOf(path);
  const macho::Image image = macho::imageForThisProcessor(file);
  if (image.isProgram()) {
    throw MachoError("is a program, not a library");
  }
  loadPlatform();
  PreparedImage result;
  result.loaded = std::make_unique<LoadedImage>(path, image);
  MappedImage& mapped = result.loaded->mapped;
  makeMessageEntries(mapped);
  fixUp(image, mapped,
        [&](const std::string& symbol, const std::string& library) { return resolve(mapped, symbol, library); });
  adaptObjectiveC(image, mapped);
  result.loaded->thread_locals = makeThreadLocals(image, mapped);
  for (const macho::Export& symbol : image.exports()) {
    if (!symbol.is_elsewhere) {
      image.segmentAt(symbol.address);
      result.loaded->exports[symbol.name] = mapped.at(symbol.address);
    }
  }
  result.initialisers = initialisersOf(image, mapped);
  result.loaded->frames = frameSection(image, mapped);
  mapped.protect(image);
  return result;
}

PreparedImage prepare(const std::string& path) {
  try {
    return prepareChecked(path);
  } catch (const MachoError& error) {
    throw MachoError(path + ": " + error.what());
  }
}

}  // namespace

const LoadedImage& load(const std::string& path) {
  const std::lock_guard lock(mutex());
  PreparedImage prepared = prepare(path);
  prepared.loaded->older = newest;
  prepared.loaded->mapped.keep();
  LoadedImage& image = *prepared.loaded.release();  // kept, as its code is
  registerFrames(image.frames);
  newest = &image;
  const char* nothing[] = {nullptr};
  for (const Initialiser initialiser : prepared.initialisers) {
    initialiser(0, nothing, nothing, nothing, nullptr);
  }
  return image;
}

void checkLoadable(const std::string& path) {
  const std::lock_guard lock(mutex());
  prepare(path);
}

void* findSymbol(const LoadedImage& image, const std::string& name) {
  const auto found = image.exports.find("_" + name);
  return found == image.exports.end() ? nullptr : found->second;
}

const LoadedImage* newestImage() { return newest; }

const LoadedImage* imageAt(const void* address) {
  const LoadedImage* image = newest;
  while (image != nullptr && !image->mapped.holds(address)) {
    image = image->older;
  }
  return image;
}

const LoadedImage* imageOf(const std::string& path) {
  const LoadedImage* image = newest;
  while (image != nullptr && image->path != path) {
    image = image->older;
  }
  return image;
}

bool isForMac(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::uint8_t magic[4] = {};
  file.read(reinterpret_cast<char*>(magic), sizeof magic);
  return file && macho::isMacho(magic);
}

}  // namespace machorun
