#include "devhost/tool/session/files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <string_view>

#include "devhost/tool/session/system.h"

namespace devhost::tool {
namespace {

/// Without the last component: "/" for a file in the root directory, "." for a path without a slash.
std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) {
    return ".";
  }
  return slash == 0 ? "/" : path.substr(0, slash);
}

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

/// The first of the places, relative to the parent of the program's folder, at which there is a file; the first one
/// when there is none.
std::string findBeside(std::initializer_list<const char*> places) {
  const std::string tree = folderOf(folderOf(executablePath()));
  for (const char* place : places) {
    std::string path = tree + "/" + place;
    if (exists(path)) {
      return path;
    }
  }
  return tree + "/" + *places.begin();
}

}  // namespace

std::string findPlugin() {
  return findBeside({"lib/" OSTREVIN_LIBRARY_NAME, OSTREVIN_INSTALLED_LIBRARY_FOLDER "/" OSTREVIN_LIBRARY_NAME});
}

std::string findExampleDesktop() {
  std::string path = findBeside({"share/ostrevin/example-desktop.json"});
  return exists(path) ? path : std::string();
}

std::string absolutePath(const std::string& path) {
  if (path.empty() || path.front() == '/') {
    return path;
  }
  char folder[PATH_MAX];
  const std::size_t slash = path.rfind('/');
  const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  if (name != "." && name != ".." && realpath(folderOf(path).c_str(), folder) != nullptr) {
    return std::string(folder) + (std::string_view(folder) == "/" ? "" : "/") + name;
  }
  return getcwd(folder, sizeof folder) == nullptr ? path : std::string(folder) + "/" + path;
}

bool isSameFile(const std::string& a, const std::string& b) {
  struct stat first {};
  struct stat second {};
  return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
         first.st_ino == second.st_ino;
}

}  // namespace devhost::tool
