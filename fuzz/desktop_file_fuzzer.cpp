// The desktop file (docs/desktop-file.md): an accepted one gives a usable desktop, and a rejected one an error of one
// line with the line's number.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>

#include "desktop/script/scripted.h"
#include "fuzz/support/fuzzing.h"

namespace {

using fuzz::require;
using platform::desktop::Arrangement;
using platform::desktop::Rect;
using platform::desktop::Script;

bool isFinite(const Rect& rect) {
  return std::isfinite(rect.x) && std::isfinite(rect.y) && std::isfinite(rect.width) && std::isfinite(rect.height);
}

void checkArrangement(const Arrangement& arrangement) {
  std::set<std::uint32_t> numbers;
  for (const auto& display : arrangement.displays) {
    require(display.number != 0 && numbers.insert(display.number).second, "displays have numbers of their own");
    require(isFinite(display.bounds), "bounds are numbers");
  }
  require(!arrangement.main_screen || *arrangement.main_screen < arrangement.screens.size(), "the main screen is one");
}

void checkProfiles(const Script& script) {
  for (const auto& entry : script.device_profiles) {
    require(!entry.profile_path || entry.profile_path->starts_with('/'), "a device's profile has an absolute path");
  }
  for (const auto& entry : script.installed_profiles) {
    require(!entry.path || entry.path->starts_with('/'), "an installed profile has an absolute path");
  }
}

/// The desktop that the script describes, asked everything, without waiting.
void use(Script script) {
  const std::size_t device_profiles = script.device_profiles.size();
  const std::size_t installed_profiles = script.installed_profiles.size();
  script.device_walk = {};
  script.installed_walk = {};
  platform::desktop::ScriptedDesktop desktop(std::move(script));
  checkArrangement(*desktop.arrangement());
  std::size_t visited = 0;
  desktop.visitDeviceProfiles([&](const auto&) { return ++visited > 0; });
  require(visited == device_profiles, "a walk visits every device's profile");
  visited = 0;
  desktop.visitInstalledProfiles([&](const auto&) { return ++visited > 0; });
  require(visited == installed_profiles, "a walk visits every installed profile");
}

void checkRefusal(const std::string& path, const std::string& text, const std::string& message) {
  const std::string prefix = path + ":";
  require(message.starts_with(prefix), "a refusal names the file");
  require(std::all_of(message.begin(), message.end(), [](char c) { return c >= ' ' && c <= '~'; }),
          "a refusal is one line of printable characters");
  std::size_t line = 0;
  const auto [end, failure] = std::from_chars(message.data() + prefix.size(), message.data() + message.size(), line);
  const auto lines = 1 + std::count(text.begin(), text.end(), '\n');
  require(failure == std::errc() && std::string_view(end).starts_with(": ") && line >= 1 &&
              line <= static_cast<std::size_t>(lines),
          "a refusal names a line of the file");
}

/// Nothing when the text is refused in the documented way.
std::optional<Script> read(const std::string& text) {
  static const fuzz::MemoryFile file;
  file.write(text);
  try {
    return platform::desktop::readScript(file.path());
  } catch (const std::runtime_error& error) {
    checkRefusal(file.path(), text, error.what());
    return std::nullopt;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  if (std::optional<Script> script = read(text)) {
    require(nlohmann::json::accept(text), "what describes a desktop is JSON");
    checkProfiles(*script);
    use(*std::move(script));
  }
  return 0;
}
