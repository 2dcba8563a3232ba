// A library that knows the whole host-call family and uses what a plugin of one module uses. What became part of it is
// looked at by check_used_members.cmake.
#include "host/host_calls.h"

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED void registerModule(REALmoduleDefinition* module) { REALRegisterModule(module); }

EXPORTED REALarrayStruct* useStringsAndArrays(REALstringStruct* string) {
  REALstringStruct* const copy = REALBuildStringWithEncoding(REALGetStringContents(string, nullptr), 1, 0x08000100);
  REALUnlockString(string);
  REALarrayStruct* const array = REALCreateArray(3, -1);
  REALInsertArrayValueString(array, 0, copy);
  return array;
}

EXPORTED void* loadMethod(REALobjectStruct* object, const char* declaration) {
  return REALLoadObjectMethod(object, declaration);
}
