#include "tools/machorun/linking.h"

#include <dlfcn.h>

#include <ColorSync/ColorSync.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include <atomic>

#include "tools/machorun/objective_c.h"
#include "tools/machorun/system.h"

namespace machorun {
namespace {

std::string libraryOf(const macho::Image& image, const macho::Pointer& import) {
  if (import.library <= 0) {
    return {};
  }
  const auto index = static_cast<std::uint64_t>(import.library) - 1;
  if (index >= image.libraries().size()) {
    throw MachoError("the symbol " + std::string(import.symbol) + " is of a missing library");
  }
  return image.libraries()[index].path;
}

void* platformLibrary() {
  static void* const library = dlopen("libOstrevinPlatform.so", RTLD_NOW | RTLD_GLOBAL);
  return library;
}

// --- the loader's functions, as an image calls them

/// Only for RTLD_DEFAULT and its kin, which are small negative numbers.
void* findSymbol(void* handle, const char* name) {
  return reinterpret_cast<std::intptr_t>(handle) < 0 ? resolveFromProcess(std::string("_") + name) : nullptr;
}

/// No other library is loaded for an image.
void* openLibrary(const char*, int) { return nullptr; }

// --- Boolean results: functions of this system set the low byte of the register, the Mac's compilers read all of it

/// Calls the function that was found under the name, and extends its result. `Name` tells functions of one type apart.
template <typename Name, typename Function>
struct BooleanFunction;

template <typename Name, typename Result, typename... Parameters>
struct BooleanFunction<Name, Result(Parameters...)> {
  static_assert(sizeof(Result) == 1);
  static inline std::atomic<void*> found = nullptr;

  /// The types on both sides differ where the calling convention does not see it, so a sanitizer must not compare them.
  __attribute__((no_sanitize("function"))) static std::uint64_t call(Parameters... parameters) {
    return reinterpret_cast<Result (*)(Parameters...)>(found.load(std::memory_order_relaxed))(parameters...);
  }
};

struct BooleanEntry {
  std::string_view name;
  std::atomic<void*>& found;
  void* call;
};

template <typename Function>
BooleanEntry booleanEntry(std::string_view name) {
  return {name, Function::found, reinterpret_cast<void*>(Function::call)};
}

/// The function itself, or the one that extends its result.
void* withWholeResult(std::string_view name, void* function) {
#define BOOLEAN_FUNCTION(name) booleanEntry<BooleanFunction<struct name##Name, decltype(name)>>(#name),
  static const BooleanEntry kEntries[] = {
#include "boolean_functions.def"
  };
#undef BOOLEAN_FUNCTION
  for (const BooleanEntry& entry : kEntries) {
    if (entry.name == name && function != nullptr) {
      entry.found = function;
      return entry.call;
    }
  }
  return function;
}

}  // namespace

void fixUp(const macho::Image& image, const MappedImage& mapped, const Resolver& resolve) {
  for (const auto& [address, pointer] : image.fixups()) {
    if (pointer.kind == macho::Pointer::Kind::image) {
      constexpr std::uint64_t kTopByte = std::uint64_t{0xFF} << 56;
      const std::uint64_t target = pointer.value & ~kTopByte;
      mapped.write(address, reinterpret_cast<std::uint64_t>(mapped.at(target)) | (pointer.value & kTopByte));
      continue;
    }
    const std::string symbol(pointer.symbol);
    const std::string library = libraryOf(image, pointer);
    const void* const found = resolve(symbol, library);
    if (found == nullptr && !pointer.is_weak) {
      throw MachoError("nothing provides " + symbol + (library.empty() ? "" : ", which " + library + " should have"));
    }
    mapped.write(address, found == nullptr ? 0 : reinterpret_cast<std::uint64_t>(found) + pointer.value);
  }
}

void loadPlatform() { platformLibrary(); }

void* resolveFromProcess(const std::string& symbol) {
  for (const Substitute& own : {substitute("_dlsym", findSymbol), substitute("_dlopen", openLibrary)}) {
    if (own.symbol == symbol) {
      return own.address;
    }
  }
  if (void* const found = findSubstitute(symbol)) {
    return found;
  }
  if (void* const found = findObjectiveC(symbol)) {
    return found;
  }
  if (!symbol.starts_with('_')) {
    return nullptr;
  }
  const char* const name = symbol.c_str() + 1;
  void* found = dlsym(RTLD_DEFAULT, name);
  if (found == nullptr && platformLibrary() != nullptr) {
    found = dlsym(platformLibrary(), name);
  }
  return withWholeResult(name, found);
}

}  // namespace machorun
