#include "desktop/current.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "desktop/script/scripted.h"

namespace platform::desktop {
namespace {

struct Choice {
  std::mutex mutex;
  std::shared_ptr<Desktop> desktop;
};

/// Never freed: a walk may still be running while the process exits.
Choice& choice() {
  static auto* const choice = new Choice;
  return *choice;
}

std::shared_ptr<Desktop> choose() {
  const char* const file = std::getenv("OSTREVIN_DESKTOP");
  if (file == nullptr || *file == '\0') {
    return makeLiveDesktop();
  }
  if (const auto source = liveSourceNamed(file)) {
    return makeLiveDesktop(*source);
  }
  try {
    return std::make_shared<ScriptedDesktop>(readScript(file));
  } catch (const std::runtime_error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return std::make_shared<ScriptedDesktop>();
  }
}

}  // namespace

std::optional<LiveSource> liveSourceNamed(std::string_view word) {
  for (const auto& [name, source] :
       {std::pair{"live", LiveSource::kAny}, {"wayland", LiveSource::kWayland}, {"x11", LiveSource::kX11}}) {
    if (word == name) {
      return source;
    }
  }
  return std::nullopt;
}

std::shared_ptr<Desktop> current() {
  const std::lock_guard lock(choice().mutex);
  if (!choice().desktop) {
    choice().desktop = choose();
  }
  return choice().desktop;
}

void setCurrent(std::shared_ptr<Desktop> desktop) {
  const std::lock_guard lock(choice().mutex);
  choice().desktop = std::move(desktop);
}

}  // namespace platform::desktop
