#include "devhost/tool/commands/display_changes.h"

#include <algorithm>

#include "devhost/calling/native_call.h"
#include "devhost/tool/session/displays.h"

namespace devhost::tool {
namespace {

// DisplayServices::BuildInitialMonitorsSet() and DisplayServices::DisplaysChanged(), mangled.
constexpr const char* kBuildInitialMonitorsSet = "_ZN15DisplayServices23BuildInitialMonitorsSetEv";
constexpr const char* kDisplaysChanged = "_ZN15DisplayServices15DisplaysChangedEv";

template <typename Function>
Function exported(const Plugin& plugin, const char* name) {
  void* const symbol = plugin.symbol(name);
  if (symbol == nullptr) {
    throw PluginError(plugin.path() + " does not export " + name);
  }
  return reinterpret_cast<Function>(symbol);
}

/// Those in `some` but not in `others`.
std::vector<KnownDisplay> missing(const std::vector<KnownDisplay>& some, const std::vector<KnownDisplay>& others) {
  std::vector<KnownDisplay> result;
  std::copy_if(some.begin(), some.end(), std::back_inserter(result), [&](const KnownDisplay& display) {
    return std::find(others.begin(), others.end(), display) == others.end();
  });
  return result;
}

}  // namespace

DisplayChanges::DisplayChanges(const Plugin& plugin)
    : plugin_(plugin), changed_(exported<bool (*)()>(plugin, kDisplaysChanged)) {
  const auto build = exported<void (*)()>(plugin, kBuildInitialMonitorsSet);
  const AutoreleasePool pool;
  build();
  displays_ = list();
}

bool DisplayChanges::look() {
  const AutoreleasePool pool;
  if (!changed_()) {
    return false;
  }
  std::vector<KnownDisplay> now = list();
  added_ = missing(now, displays_);
  removed_ = missing(displays_, now);
  displays_ = std::move(now);
  // Both are empty when the last list already showed this change.
  return !added_.empty() || !removed_.empty();
}

std::vector<KnownDisplay> DisplayChanges::list() const {
  std::vector<KnownDisplay> displays;
  for (const std::uint32_t number : activeDisplayNumbers()) {
    displays.push_back({number, uuidOf(number), nameOf(plugin_, number)});
  }
  return displays;
}

}  // namespace devhost::tool
