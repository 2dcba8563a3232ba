#include "devhost/runtime/autorelease.h"

#include <dlfcn.h>

namespace devhost {
namespace {

using Push = void* (*)();
using Pop = void (*)(void*);

Push push_pool = nullptr;
Pop pop_pool = nullptr;

void* findSymbol(void* library, const char* name) {
  void* const in_process = dlsym(RTLD_DEFAULT, name);
  return in_process != nullptr ? in_process : dlsym(library, name);
}

}  // namespace

void findAutoreleasePools(void* library) {
  if (push_pool != nullptr) {
    return;
  }
  void* const push = findSymbol(library, "objc_autoreleasePoolPush");
  void* const pop = findSymbol(library, "objc_autoreleasePoolPop");
  if (push != nullptr && pop != nullptr) {
    push_pool = reinterpret_cast<Push>(push);
    pop_pool = reinterpret_cast<Pop>(pop);
  }
}

AutoreleasePool::AutoreleasePool() {
  if (push_pool != nullptr) {
    pool_ = push_pool();
  }
}

AutoreleasePool::~AutoreleasePool() {
  if (pool_ != nullptr) {
    pop_pool(pool_);
  }
}

}  // namespace devhost
