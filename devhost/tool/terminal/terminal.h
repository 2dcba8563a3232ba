// What is known about the terminal that the standard output goes to.
#pragma once

#include <cstddef>

namespace devhost::tool {

/// Its width; 80 where the output goes elsewhere, or the terminal does not say.
std::size_t terminalColumns();
/// Whether texts are UTF-8 by the user's locale, as LC_ALL, LC_CTYPE and LANG name it. Leaves the process's own alone.
bool localeIsUtf8();

}  // namespace devhost::tool
