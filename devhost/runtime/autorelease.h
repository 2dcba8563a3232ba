// An autorelease pool around a call, as the event loop of a host keeps one. Any thread; pools nest.
#pragma once

namespace devhost {

/// Looks for the Objective-C runtime's pool functions, in the process and in a library (a handle of dlopen) with all
/// that it depends on. Pools are empty until they were found once; a process without them needs none.
void findAutoreleasePools(void* library);

class AutoreleasePool {
 public:
  AutoreleasePool();
  ~AutoreleasePool();
  AutoreleasePool(const AutoreleasePool&) = delete;
  AutoreleasePool& operator=(const AutoreleasePool&) = delete;

 private:
  void* pool_ = nullptr;
};

}  // namespace devhost
