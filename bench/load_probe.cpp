// load_probe LIBRARY [ENTRY]: in a fresh process, prints the nanoseconds that it takes to load a library, and to call
// its entry REALPluginMain when it is named, as a host does.
#include <dlfcn.h>

#include <chrono>
#include <cstdio>
#include <cstring>

namespace {

using Resolver = void* (*)(const char*);

void announce(int) {}
void registerModule(const void*) {}

void* resolve(const char* name) {
  if (std::strcmp(name, "RegisterPluginVersion") == 0) {
    return reinterpret_cast<void*>(&announce);
  }
  return std::strcmp(name, "PluginRegisterModule") == 0 ? reinterpret_cast<void*>(&registerModule) : nullptr;
}

}  // namespace

int main(int count, char** arguments) {
  const auto begin = std::chrono::steady_clock::now();
  void* const library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  if (count > 2) {
    void* const entry = dlsym(library, arguments[2]);
    if (entry == nullptr) {
      std::fprintf(stderr, "%s\n", dlerror());
      return 1;
    }
    reinterpret_cast<void (*)(Resolver)>(entry)(resolve);
  }
  const auto end = std::chrono::steady_clock::now();
  std::printf("%lld\n", static_cast<long long>(std::chrono::nanoseconds(end - begin).count()));
  return 0;
}
