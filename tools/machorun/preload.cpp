// The loader for a whole program that is not written for it, with LD_PRELOAD: the C library's functions about loaded
// libraries take a Mac's library as they take this system's.
//
// MACHORUN_LOG names a file that a line is appended to for each image: the process, the program and the image.
#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tools/machorun/loader.h"

namespace {

#ifdef __aarch64__
constexpr const char* kOldestVersion = "GLIBC_2.17";
#else
constexpr const char* kOldestVersion = "GLIBC_2.2.5";
#endif
constexpr const char* kVersion = "GLIBC_2.34";  // since when the functions are in libc itself

/// The C library's own function. dlsym would find it, but is replaced here too.
template <typename Function>
Function* original(const char* name, const char* version = kVersion) {
  return reinterpret_cast<Function*>(dlvsym(RTLD_NEXT, name, version));
}

/// Found before the first failure, because dlvsym clears what dlerror is to return.
auto* originalError() {
  static auto* const found = original<char*()>("dlerror");
  return found;
}

/// What dlerror() is to return next, for this thread.
thread_local std::string error;
thread_local bool has_error = false;

void setError(const std::string& text) {
  error = text;
  has_error = true;
}

const machorun::LoadedImage* imageOfHandle(const void* handle) {
  const machorun::LoadedImage* image = machorun::newestImage();
  while (image != nullptr && image != handle) {
    image = image->older;
  }
  return image;
}

void log(const std::string& path) {
  const char* const file = std::getenv("MACHORUN_LOG");
  if (file == nullptr) {
    return;
  }
  const std::string line = std::to_string(getpid()) + ' ' + program_invocation_short_name + ' ' + path + '\n';
  const int out = open(file, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  if (out < 0 || write(out, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
    std::perror("machorun: MACHORUN_LOG");
  }
  close(out);
}

void* openForMac(const char* path) {
  if (const machorun::LoadedImage* const image = machorun::imageOf(path)) {
    return const_cast<machorun::LoadedImage*>(image);
  }
  try {
    const machorun::LoadedImage& image = machorun::load(path);
    log(path);
    return const_cast<machorun::LoadedImage*>(&image);
  } catch (const std::exception& failure) {
    setError(failure.what());
    return nullptr;
  }
}

bool isForMac(const char* path) {
  return path != nullptr && std::string_view(path).find('/') != std::string_view::npos && machorun::isForMac(path);
}

void* findIn(const machorun::LoadedImage& image, const char* name) {
  void* const found = machorun::findSymbol(image, name);
  if (found == nullptr) {
    setError(image.path + ": exports no " + name);
  }
  return found;
}

}  // namespace

#define REPLACEMENT extern "C" __attribute__((visibility("default")))

// Tail calls: the C library's functions look at where they are called from. A function that is declared not to throw,
// as the C library's are, could not make one, so these have other names here.

REPLACEMENT void* openLibrary(const char* path, int flags) __asm__("dlopen");
REPLACEMENT void* findSymbol(void* handle, const char* name) __asm__("dlsym");

void* openLibrary(const char* path, int flags) {
  static auto* const next = original<void*(const char*, int)>("dlopen");
  originalError();
  if (isForMac(path)) {
    return openForMac(path);
  }
  [[clang::musttail]] return next(path, flags);
}

void* findSymbol(void* handle, const char* name) {
  static auto* const next = original<void*(void*, const char*)>("dlsym");
  originalError();
  if (const machorun::LoadedImage* const image = imageOfHandle(handle)) {
    return findIn(*image, name);
  }
  [[clang::musttail]] return next(handle, name);
}

/// Images stay.
REPLACEMENT int dlclose(void* handle) noexcept {
  static auto* const next = original<int(void*)>("dlclose");
  return imageOfHandle(handle) != nullptr ? 0 : next(handle);
}

REPLACEMENT char* dlerror() noexcept {
  if (!has_error) {
    return originalError()();
  }
  has_error = false;
  return error.data();
}

REPLACEMENT int dladdr(const void* address, Dl_info* info) noexcept {
  static auto* const next = original<int(const void*, Dl_info*)>("dladdr");
  const machorun::LoadedImage* const image = machorun::imageAt(address);
  if (image == nullptr) {
    return next(address, info);
  }
  *info = {image->path.c_str(), image->mapped.begin(), nullptr, nullptr};
  return 1;
}

/// The images follow this system's libraries, each as one segment.
REPLACEMENT int dl_iterate_phdr(int (*callback)(dl_phdr_info*, std::size_t, void*), void* data) {
  static auto* const next =
      original<int(int (*)(dl_phdr_info*, std::size_t, void*), void*)>("dl_iterate_phdr", kOldestVersion);
  int result = next(callback, data);
  for (const auto* image = machorun::newestImage(); image != nullptr && result == 0; image = image->older) {
    ElfW(Phdr) segment{};
    segment.p_type = PT_LOAD;
    segment.p_memsz = image->mapped.size();
    segment.p_flags = PF_R | PF_X;
    dl_phdr_info info{};
    info.dlpi_addr = reinterpret_cast<ElfW(Addr)>(image->mapped.begin());
    info.dlpi_name = image->path.c_str();
    info.dlpi_phdr = &segment;
    info.dlpi_phnum = 1;
    result = callback(&info, sizeof info, data);
  }
  return result;
}
