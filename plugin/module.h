// What the host reads of the module: its record. The record's methods are bound in plugin/methods.cpp.
//
// Data only, complete before the library's first call; nothing here changes it.
#pragma once

#include "host/records.h"

/// The methods' rows, in the order in which the host receives them.
extern REALmethodDefinition DisplayModuleMethods[15];

/// The module "Ostrevin" with its fifteen methods.
extern REALmoduleDefinition DisplayModuleDefinition;
