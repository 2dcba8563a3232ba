#include "host/resolver.h"

REALresolver gResolver = nullptr;

void* CallResolver(const char* name) { return gResolver(name); }
