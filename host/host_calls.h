// The whole host-call family. What a program does not call costs it nothing.
#pragma once

#include "host/arrays.h"
#include "host/files.h"
#include "host/graphics.h"
#include "host/objects.h"
#include "host/properties.h"
#include "host/records.h"
#include "host/runtime.h"
#include "host/strings.h"
