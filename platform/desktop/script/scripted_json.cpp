// Reads the description of a desktop from a JSON file; see docs/desktop-file.md.
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>
#include <stdexcept>

#include "desktop/model/regular_file.h"
#include "desktop/script/json_lines.h"
#include "desktop/script/json_members.h"
#include "desktop/script/scripted.h"

namespace platform::desktop {
namespace {

using namespace json;  // NOLINT(google-build-using-namespace): this file is that namespace's one user

constexpr const char* kNameLanguage = "en";  // of a display's "name"
constexpr std::uint64_t kMaxDelayMilliseconds = 24ULL * 60 * 60 * 1000;

/// The UUID of a display without one in the file: its number in a version 4 UUID.
Uuid uuidFromNumber(std::uint32_t number) {
  Uuid uuid{};
  uuid[6] = 0x40;
  uuid[8] = 0x80;
  for (std::size_t i = 0; i < sizeof(number); ++i) {
    uuid[15 - i] = static_cast<std::uint8_t>(number >> (8 * i));
  }
  return uuid;
}

class Reader {
 public:
  explicit Reader(std::filesystem::path folder) : folder_(std::move(folder)) {}

  Script read(const Value& root) {
    Members members(root, "a desktop");
    Arrangement& arrangement = script_.arrangement;
    if (const Value* const displays = members.find("displays")) {
      for (const Value& display : arrayOf(*displays, "displays")) {
        readDisplay(display);
      }
    }
    if (const Value* const screens = members.find("screens")) {
      arrangement.screens.clear();
      for (const Value& screen : arrayOf(*screens, "screens")) {
        arrangement.screens.push_back(screenOf(screen));
      }
    }
    readMainScreen(members.findOrNull("main_screen"));
    if (const Value* const services = members.find("services")) {
      arrangement.services.clear();
      for (const Value& service : arrayOf(*services, "services")) {
        arrangement.services.push_back(serviceOf(service));
      }
    }
    readProfiles(members);
    members.finish();
    return std::move(script_);
  }

 private:
  std::string pathOf(const Value& value, const char* what) const {
    const std::string text = stringOf(value, what);
    if (text.empty() || text.find('\0') != std::string::npos) {
      throw Error(value.line, std::string(what) + " must be a non-empty path");
    }
    return text.front() == '/' ? text : (folder_ / text).lexically_normal().string();
  }

  void readDisplay(const Value& value) {
    Members members(value, "a display");
    Display display;
    const Value& number = members.need("number");
    display.number = uint32Of(number, "number", 1);
    if (!numbers_.insert(display.number).second) {
      throw Error(number.line, "display number " + std::to_string(display.number) + " occurs twice");
    }
    display.bounds = rectOf(members.need("bounds"), "bounds");
    const Value* const uuid = members.findOrNull("uuid");
    if (uuid == nullptr) {
      display.uuid = uuidFromNumber(display.number);
    } else if (!uuid->isNull()) {
      display.uuid = uuidOf(*uuid, "uuid");
    }
    DisplayService service;
    service.vendor = display.vendor = members.uint32("vendor").value_or(0);
    service.product = display.model = members.uint32("model").value_or(0);
    service.serial = members.uint32("serial");
    display.serial = service.serial.value_or(0);
    display.connector = members.string("connector").value_or("");
    const auto name = members.string("name");
    if (name) {
      service.product_names = {{{kNameLanguage, *name}}};
    }
    const Value* const scale = members.find("scale");
    addScreen(display, scale != nullptr ? numberOf(*scale, "scale") : 1.0);
    if (const Value* const profiles = members.find("profiles")) {
      readDisplayProfiles(*profiles, display, name);
    }
    members.finish();
    script_.arrangement.displays.push_back(display);
    script_.arrangement.services.push_back(service);
  }

  /// The screen of a display: the same rectangle, measured from the lower left corner of the main display.
  void addScreen(const Display& display, double scale) {
    const auto& displays = script_.arrangement.displays;
    const Rect& main = displays.empty() ? display.bounds : displays.front().bounds;
    const Rect& bounds = display.bounds;
    script_.arrangement.screens.push_back(
        {Rect{bounds.x - main.x, (main.y + main.height) - (bounds.y + bounds.height), bounds.width, bounds.height},
         scale});
  }

  void readDisplayProfiles(const Value& profiles, const Display& display, const std::optional<std::string>& name) {
    if (!display.uuid) {
      throw Error(profiles.line, "a display without a uuid has no profiles");
    }
    bool first = true;
    for (const Value& profile : arrayOf(profiles, "profiles")) {
      DeviceProfile entry{kDisplayDeviceClass, display.uuid, name, first, first, std::nullopt};
      first = false;
      if (std::holds_alternative<std::string>(profile.content)) {
        entry.profile_path = pathOf(profile, "a profile");
      } else {
        Members members(profile, "a profile");
        entry.profile_path = pathOf(members.need("path"), "path");
        entry.is_default = members.boolean("default").value_or(*entry.is_default);
        entry.is_current = members.boolean("current").value_or(*entry.is_current);
        members.finish();
      }
      script_.device_profiles.push_back(std::move(entry));
    }
  }

  static Screen screenOf(const Value& value) {
    Members members(value, "a screen");
    Screen screen;
    if (const Value* const frame = members.find("frame")) {
      screen.frame = rectOf(*frame, "frame");
    }
    if (const Value* const scale = members.find("scale")) {
      screen.backing_scale = numberOf(*scale, "scale");
    }
    members.finish();
    return screen;
  }

  void readMainScreen(const Value* value) {
    Arrangement& arrangement = script_.arrangement;
    if (value == nullptr) {
      arrangement.main_screen = arrangement.screens.empty() ? std::nullopt : std::optional<std::size_t>(0);
    } else if (!value->isNull()) {
      if (arrangement.screens.empty()) {
        throw Error(value->line, "main_screen must be null when there are no screens");
      }
      arrangement.main_screen = wholeOf(*value, "main_screen", 0, arrangement.screens.size() - 1);
    }
  }

  static DisplayService serviceOf(const Value& value) {
    Members members(value, "a service");
    DisplayService service;
    service.has_info = members.boolean("info").value_or(true);
    service.vendor = members.uint32("vendor");
    service.product = members.uint32("product");
    service.serial = members.uint32("serial");
    if (const Value* const names = members.find("names")) {
      const auto* const object = std::get_if<Object>(&names->content);
      if (object == nullptr) {
        throw Error(names->line, "names must be an object from language to name");
      }
      service.product_names.emplace();
      for (const Member& name : *object) {
        service.product_names->emplace_back(name.key, stringOf(name.value, "a name"));
      }
    }
    members.finish();
    return service;
  }

  void readProfiles(Members& members) {
    if (const Value* const entries = members.find("device_profiles")) {
      for (const Value& entry : arrayOf(*entries, "device_profiles")) {
        script_.device_profiles.push_back(deviceProfileOf(entry));
      }
    }
    if (const Value* const entries = members.find("installed_profiles")) {
      for (const Value& entry : arrayOf(*entries, "installed_profiles")) {
        script_.installed_profiles.push_back(installedProfileOf(entry));
      }
    }
    script_.accepts_profiles = members.boolean("accepts_profiles").value_or(true);
    if (const Value* const walk = members.find("device_walk")) {
      script_.device_walk = walkOf(*walk);
    }
    if (const Value* const walk = members.find("installed_walk")) {
      script_.installed_walk = walkOf(*walk);
    }
  }

  DeviceProfile deviceProfileOf(const Value& value) const {
    Members members(value, "a device profile");
    DeviceProfile entry;
    entry.device_class = members.string("class");
    if (const Value* const device = members.find("device")) {
      entry.device_id = uuidOf(*device, "device");
    }
    entry.description = members.string("description");
    entry.is_default = members.boolean("default");
    entry.is_current = members.boolean("current");
    if (const Value* const path = members.find("path")) {
      entry.profile_path = pathOf(*path, "path");
    }
    members.finish();
    return entry;
  }

  InstalledProfile installedProfileOf(const Value& value) const {
    InstalledProfile profile;
    if (std::holds_alternative<std::string>(value.content)) {
      profile.profile_class = kDisplayDeviceClass;
      profile.path = pathOf(value, "an installed profile");
      profile.description = std::filesystem::path(*profile.path).stem().string();
      return profile;
    }
    Members members(value, "an installed profile");
    profile.profile_class = members.string("class");
    profile.description = members.string("description");
    if (const Value* const path = members.find("path")) {
      profile.path = pathOf(*path, "path");
    }
    members.finish();
    return profile;
  }

  static WalkBehaviour walkOf(const Value& value) {
    Members members(value, "a walk");
    WalkBehaviour walk;
    if (const Value* const delay = members.find("delay_ms")) {
      walk.delay = std::chrono::milliseconds(wholeOf(*delay, "delay_ms", 0, kMaxDelayMilliseconds));
    }
    walk.hang = members.boolean("hang").value_or(false);
    walk.repeat = members.uint32("repeat").value_or(1);
    members.finish();
    return walk;
  }

  std::filesystem::path folder_;
  Script script_;
  std::set<std::uint32_t> numbers_;
};

[[noreturn]] void failToRead(const std::string& path) {
  // A pipe or a terminal could block the process.
  throw std::runtime_error(path + ": " + (errno == 0 ? "not a regular file" : std::strerror(errno)));
}

/// At most one byte more than the limit, so that parse() notices a file that is too long.
std::string contentOf(const std::string& path) {
  const RegularFile file(path);
  if (!file) {
    failToRead(path);
  }
  std::string content(kMaxBytes + 1, '\0');
  const ssize_t size = file.read(0, content.data(), content.size());
  if (size < 0) {
    failToRead(path);
  }
  content.resize(static_cast<std::size_t>(size));
  return content;
}

}  // namespace

Script readScript(const std::string& path) {
  const std::string content = contentOf(path);
  std::error_code ignored;  // without a working folder, relative paths stay as they are
  const auto folder = std::filesystem::absolute(path, ignored).parent_path();
  try {
    return Reader(folder).read(parse(content));
  } catch (const Error& error) {
    throw std::runtime_error(path + ":" + std::to_string(error.line()) + ": " + error.what());
  }
}

}  // namespace platform::desktop
