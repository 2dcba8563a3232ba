// Paths of the files that come with the tool, found relative to the program in the build tree and in an installed tree,
// and of those that the user names.
#pragma once

#include <string>

namespace devhost::tool {

/// Path of the plugin's library; when there is none, the path where it is expected.
std::string findPlugin();
/// Path of the example desktop; empty when there is none.
std::string findExampleDesktop();

/// The absolute path. An empty path stays empty; the last component is not followed if it is a link.
std::string absolutePath(const std::string& path);
/// Whether both name the same existing file.
bool isSameFile(const std::string& a, const std::string& b);

}  // namespace devhost::tool
