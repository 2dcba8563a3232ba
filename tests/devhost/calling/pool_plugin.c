/* A plugin with autorelease pools of its own, which record events: "(" where a pool begins, ")" where one ends, and a
 * letter for a call of the plugin between them. */
#include <stdint.h>
#include <string.h>

#define EXPORT __attribute__((visibility("default")))

typedef void* (*Resolver)(const char*);

EXPORT void* objc_autoreleasePoolPush(void);
EXPORT void objc_autoreleasePoolPop(void* pool);
EXPORT const char* poolEvents(void);
EXPORT void REALPluginMain(Resolver resolve);

static char events[64];
static int pools;

static void note(char event) {
  const size_t length = strlen(events);
  if (length + 1 < sizeof events) {
    events[length] = event;
  }
}

void* objc_autoreleasePoolPush(void) {
  note('(');
  ++pools;
  return &events[pools];
}

void objc_autoreleasePoolPop(void* pool) {
  note(pool == &events[pools] ? ')' : '!');
  --pools;
}

const char* poolEvents(void) { return events; }

static void work(void) { note('w'); }

static struct {
  void* function;
  void* second;
  const char* declaration;
  uint64_t further[3];
} row = {(void*)work, NULL, "Work()", {0, 0, 0}};

static struct {
  uint64_t version;
  const char* name;
  void* rows;
  uint64_t count;
  uint64_t further[20];
} module = {13, "Pools", &row, 1, {0}};

void REALPluginMain(Resolver resolve) {
  note('m');
  ((void (*)(int))resolve("RegisterPluginVersion"))(13);
  ((void (*)(const void*))resolve("PluginRegisterModule"))(&module);
}
