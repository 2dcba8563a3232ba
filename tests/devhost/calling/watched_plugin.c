/* The plugin of this build, with a line on stderr for each call of GetProfilePath: "GetProfilePath NUMBER". */
#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

typedef void* (*Resolver)(const char*);

struct Row {
  void* function;
  void* second;
  const char* declaration;
  uint64_t further[3];
};

struct Module {
  uint64_t version;
  const char* name;
  struct Row* rows;
  uint64_t count;
};

static Resolver resolver;
static void (*get_profile_path)(uint32_t, void**);

static void watchedGetProfilePath(uint32_t display, void** path) {
  fprintf(stderr, "GetProfilePath %u\n", display);
  get_profile_path(display, path);
}

static void registerWatched(struct Module* module) {
  for (uint64_t i = 0; i < module->count; ++i) {
    if (strncmp(module->rows[i].declaration, "GetProfilePath(", strlen("GetProfilePath(")) == 0) {
      get_profile_path = (void (*)(uint32_t, void**))module->rows[i].function;
      module->rows[i].function = (void*)watchedGetProfilePath;
    }
  }
  ((void (*)(struct Module*))resolver("PluginRegisterModule"))(module);
}

static void* resolveWatched(const char* name) {
  return strcmp(name, "PluginRegisterModule") == 0 ? (void*)registerWatched : resolver(name);
}

__attribute__((visibility("default"))) void REALPluginMain(Resolver resolve);

void REALPluginMain(Resolver resolve) {
  resolver = resolve;
  void* const plugin = dlopen(OSTREVIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ((void (*)(Resolver))dlsym(plugin, "REALPluginMain"))(resolveWatched);
}
