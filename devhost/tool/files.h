// The files that the tool works with: those that come with it, found from where the program lies, in the build tree and
// in an installed tree alike, and those that the user names.
#pragma once

#include <string>

namespace devhost::tool {

/// Path of the plugin's library; where it should be, when there is none.
std::string findPlugin();
/// Path of the example desktop; empty when there is none.
std::string findExampleDesktop();

/// `path` seen from the root directory. An empty path stays empty; the last component is not followed if it is a link.
std::string absolutePath(const std::string& path);
/// Whether both name one and the same file that exists.
bool isSameFile(const std::string& a, const std::string& b);

}  // namespace devhost::tool
