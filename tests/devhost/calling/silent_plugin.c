/* A plugin that announces its version and registers nothing; also built without its entry function. */
typedef void* (*Resolver)(const char*);
__attribute__((visibility("default"))) void REALPluginMain(Resolver resolve);

void REALPluginMain(Resolver resolve) { ((void (*)(int))resolve("RegisterPluginVersion"))(13); }
