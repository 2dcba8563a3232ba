// The version that tools read off the library; nothing in the library reads it.
#include "base/export.h"

extern "C" {

OSTREVIN_API extern const double OstrevinVersionNumber;
OSTREVIN_API extern const char OstrevinVersionString[];

const double OstrevinVersionNumber = 5.4;
const char OstrevinVersionString[] = "@(#)PROGRAM:Ostrevin  PROJECT:Ostrevin-5.4\n";

}  // extern "C"
