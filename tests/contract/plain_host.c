/* A second host, independent of devhost: a page of plain C that loads the plugin and looks at the raw memory it is
   handed. Usage: plain_host LIBRARY. Prints what is wrong and exits with the number of wrong things. */
#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

/* clang-format off */
static const char* const kDeclarations[15] = {
    "SetObject( obj As Object )",
    "ListAllInstalledProfiles()",
    "ListDisplayProfiles(displayID As UInt32)",
    "GetName(displayID As UInt32, byref name As String)",
    "GetRect(displayID As UInt32, byref left As Integer, byref top As Integer, byref right As Integer, byref bottom As Integer)",
    "GetCGRect(displayID As UInt32, byref x As Double, byref y As Double, byref width As Double, byref height As Double)",
    "GetProfilePath(displayID As UInt32, byref path As String)",
    "GetIndex(displayID As UInt32) As UInt32",
    "GetScale(displayID As UInt32) As Double",
    "SetProfile(displayID As UInt32, path As String) As Boolean",
    "DisplayIDForWindow(left as Integer, top as Integer, width as Integer, height as Integer) As UInt32",
    "GetInstalledProfilePathsArray() As String()",
    "GetAssociatedProfilePathsArray(displayID As UInt32) As String()",
    "ICCTagExists(path As String, tag As String) As Boolean",
    "QV02Read(path As String, byref xmlString As String) As Integer",
};
/* clang-format on */

static int wrong = 0;
static char asked[256];
static int announced = -1;
static int announced_before_registration = 0;
static const unsigned char* module = NULL;

static void expect(int holds, const char* what) {
  if (!holds) {
    printf("wrong: %s\n", what);
    ++wrong;
  }
}

static void RegisterPluginVersion(int version) { announced = version; }

static void PluginRegisterModule(const void* record) {
  announced_before_registration = announced == 13;
  module = record;
}

static void* resolve(const char* name) {
  strncat(asked, name, sizeof asked - strlen(asked) - 2);
  strncat(asked, ";", 2);
  if (strcmp(name, "RegisterPluginVersion") == 0) return (void*)RegisterPluginVersion;
  if (strcmp(name, "PluginRegisterModule") == 0) return (void*)PluginRegisterModule;
  return NULL;
}

static uint64_t word(const unsigned char* at) {
  uint64_t value;
  memcpy(&value, at, sizeof value);
  return value;
}

static int zero(const unsigned char* at, size_t size) {
  for (size_t i = 0; i < size; ++i) {
    if (at[i] != 0) return 0;
  }
  return 1;
}

int main(int argc, char** argv) {
  void* const library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
  if (library == NULL) {
    printf("cannot load: %s\n", argc == 2 ? dlerror() : "no library named");
    return 1;
  }
  void (*const entry)(void* (*)(const char*)) = (void (*)(void* (*)(const char*)))dlsym(library, "REALPluginMain");
  expect(entry != NULL, "REALPluginMain is exported");
  if (entry == NULL) return wrong;
  entry(resolve);

  expect(strcmp(asked, "RegisterPluginVersion;PluginRegisterModule;") == 0, "look-ups at load and their order");
  expect(announced == 13, "the announced version");
  expect(announced_before_registration, "the version is announced before the module is registered");
  expect(module != NULL, "a module is registered");
  if (module == NULL) return wrong;

  /* The records are data that a host may write to: a read-only page would stop the process here. */
  *(volatile uint64_t*)(uintptr_t)module = 13;
  *(volatile uint64_t*)(uintptr_t)(word(module + 16) + 40) = 0;

  expect(word(module) == 13, "the module's version");
  expect(strcmp((const char*)(uintptr_t)word(module + 8), "Ostrevin") == 0, "the module's name");
  expect(word(module + 24) == 15, "the number of methods");
  expect(zero(module + 32, 192 - 32), "zeros in the rest of the module record");
  for (int i = 0; i < 15; ++i) {
    const unsigned char* const row = (const unsigned char*)(uintptr_t)word(module + 16) + 48 * (size_t)i;
    expect(word(row) != 0, "a method has a function");
    expect(word(row + 8) == 0, "a method's second function is null");
    expect(strcmp((const char*)(uintptr_t)word(row + 16), kDeclarations[i]) == 0, kDeclarations[i]);
    expect(zero(row + 24, 48 - 24), "zeros in the rest of a method's row");
  }

  const double* const number = dlsym(library, "OstrevinVersionNumber");
  const char* const text = dlsym(library, "OstrevinVersionString");
  expect(number != NULL && *number == 5.4, "OstrevinVersionNumber");
  expect(text != NULL && strcmp(text, "@(#)PROGRAM:Ostrevin  PROJECT:Ostrevin-5.4\n") == 0, "OstrevinVersionString");
  if (wrong == 0) printf("15 methods, 192 and 48 bytes, as expected\n");
  return wrong;
}
