// Preloaded into a test's colord: moves /var/lib/colord to the test's directory and hides the plugins. Both
// paths are compiled into colord, which passes them to these four functions; each of them here changes the path and
// calls the library's own.
#include <dlfcn.h>
#include <gio/gio.h>

#include <cstdlib>
#include <string>
#include <string_view>

namespace {

/// `path`, or the path in the test's directory, which OSTREVIN_COLORD_DIRECTORY names, that stands for it.
std::string redirected(std::string_view path) {
  constexpr std::string_view kState = "/var/lib/colord";
  constexpr std::string_view kPlugins = "/colord-plugins";
  const std::string directory = std::getenv("OSTREVIN_COLORD_DIRECTORY");
  if (path.ends_with(kPlugins)) {
    return directory + "/no-plugins";
  }
  if (path == kState || path.starts_with(std::string(kState) + "/")) {
    return directory + "/state" + std::string(path.substr(kState.size()));
  }
  return std::string(path);
}

template <typename Function>
Function* next(Function* /*type*/, const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

#define PRELOADED extern "C" __attribute__((visibility("default")))

struct sqlite3;
PRELOADED int sqlite3_open(const char* path, sqlite3** database);
PRELOADED int sqlite3_open(const char* path, sqlite3** database) {
  return next(&sqlite3_open, "sqlite3_open")(redirected(path).c_str(), database);
}

PRELOADED gboolean g_file_test(const gchar* path, GFileTest test) {
  return next(&g_file_test, "g_file_test")(redirected(path).c_str(), test);
}

PRELOADED GFile* g_file_new_for_path(const char* path) {
  return next(&g_file_new_for_path, "g_file_new_for_path")(redirected(path).c_str());
}

PRELOADED GDir* g_dir_open(const gchar* path, guint flags, GError** error) {
  return next(&g_dir_open, "g_dir_open")(redirected(path).c_str(), flags, error);
}
