#include "faults/scene.h"

#include <dlfcn.h>

#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

#include "display/internal.h"
#include "faults/plugin_library.h"
#include "frameworks/hooks/calls.h"
#include "support/fresh_plugin.h"
#include "support/icc_maker.h"
#include "support/temporary_folder.h"

namespace faults {
namespace {

using devhost::CallResult;
using devhost::Values;
using platform::desktop::DeviceProfile;
using platform::desktop::Script;
using std::chrono::milliseconds;
using std::chrono::seconds;

std::vector<seconds> limits_asked_for;

/// The library's own wait: its std::future may be of another standard library than this program's.
DisplayServices::internal::WalkWait wait_of_library = nullptr;

/// Ends when there is a result, or when no walk is left that could give one.
std::future_status waitUntilNoWalkIsLeft(const std::future<bool>& result, seconds limit) {
  limits_asked_for.push_back(limit);
  constexpr std::chrono::microseconds kStep{200};
  while (platform::unfinishedBlocks() > 0) {
    if (wait_of_library(result, seconds(0)) == std::future_status::ready) {
      return std::future_status::ready;
    }
    std::this_thread::sleep_for(kStep);
  }
  return wait_of_library(result, seconds(0));
}

/// The variable is not exported: its offset comes from the library's symbol table.
void replaceWait(const devhost::Plugin& plugin) {
  static const std::uintptr_t offset = ownSymbols(OSTREVIN_LIBRARY).at("_ZN15DisplayServices8internal9walk_waitE");
  Dl_info info{};
  if (dladdr(plugin.symbol("REALPluginMain"), &info) == 0) {
    throw std::runtime_error("the plugin's load address is unknown");
  }
  auto* const base = static_cast<char*>(info.dli_fbase);
  auto* const wait = reinterpret_cast<DisplayServices::internal::WalkWait*>(base + offset);
  wait_of_library = std::exchange(*wait, waitUntilNoWalkIsLeft);
}

/// A wide-gamut display profile with a document of the plugin's own.
std::string profile(const std::string& description, const std::string& document) {
  support::IccMaker maker;
  maker.description(description);
  maker.tag("wtpt", support::xyzElement(0.9642, 1, 0.8249));
  maker.tag("rXYZ", support::xyzElement(0.7977, 0.2880, 0.0000));
  maker.tag("gXYZ", support::xyzElement(0.1352, 0.7119, 0.0000));
  maker.tag("bXYZ", support::xyzElement(0.0313, 0.0001, 0.8249));
  maker.tag("QV02", "text" + std::string(4, '\0') + document);
  return maker.bytes();
}

DeviceProfile deviceProfile(std::uint8_t display, const std::string& path, bool is_default_and_current) {
  return {.device_class = platform::desktop::kDisplayDeviceClass,
          .device_id = support::uuid(display),
          .description = "Device " + std::to_string(display),
          .is_default = is_default_and_current,
          .is_current = is_default_and_current,
          .profile_path = path};
}

void addDisplay(Script& script, std::uint32_t number, platform::desktop::Rect bounds, const std::string& name) {
  auto display = support::display(number, bounds);
  display.vendor = 0x10AC;
  display.model = number;
  display.serial = number * 10;
  script.arrangement.displays.push_back(display);
  script.arrangement.services.push_back({true, display.vendor, display.model, display.serial, {{{"en", name}}}});
  script.arrangement.screens.push_back(support::screen(bounds, 1 + number * 0.25));
}

/// Replaces the temporary folder, which differs from run to run.
std::string withoutFolder(std::string text) {
  const std::string& folder = profileFolder();
  for (std::size_t at = text.find(folder); at != std::string::npos; at = text.find(folder, at)) {
    text.replace(at, folder.size(), "DIR");
  }
  return text;
}

}  // namespace

const std::string& profileFolder() {
  static const auto* const folder = [] {
    static const support::TemporaryFolder temporary;
    for (const char* const name : {"a", "b", "c"}) {
      temporary.write(std::string(name) + ".icc", profile(name, "<document/>"));
    }
    return &temporary.path();
  }();
  return *folder;
}

Script fiveDisplays() {
  const std::string& folder = profileFolder();
  Script script;
  addDisplay(script, 1, {0, 0, 1440, 900}, "Notebook");
  addDisplay(script, 2, {-1440.5, 0, 1440, 900}, "Größe 27″");
  addDisplay(script, 3, {1440, -100, 1920, 1080}, "Third");
  addDisplay(script, 4, {4000, 0, 800, 600}, "");
  addDisplay(script, 5, {4800, 0, 800, 600}, "");
  script.arrangement.main_screen = 0;
  for (const std::uint8_t display : {1, 2, 3, 4, 5}) {
    script.device_profiles.push_back(deviceProfile(display, folder + "/a.icc", true));
    script.device_profiles.push_back(deviceProfile(display, folder + "/b.icc", false));
  }
  for (const auto& [name, description] : {std::pair("c", "B"), {"a", "B"}, {"b", "   A"}}) {
    script.installed_profiles.push_back({"mntr", description, folder + '/' + name + ".icc"});
  }
  script.installed_profiles.push_back({"prtr", "Printer", folder + "/printer.icc"});
  return script;
}

Scene::Scene() : session(fiveDisplays()) {
  listener_ = host.makeObject("Listener");
  host.addMethod(*listener_, "DisplayProfileFound( name as String, path as String )",
                 [this](devhost::Object&, devhost::Values& arguments) -> devhost::Value {
                   events_.push_back(arguments[0].text() + '=' + arguments[1].text());
                   return {};
                 });
}

Scene::~Scene() { restoreMessageResults(); }

void Scene::load(Wait wait) {
  plugin_.emplace(support::loadFreshPlugin(host));
  watchMessagesOf(plugin_->symbol("REALPluginMain"));
  if (wait == Wait::kUntilNoWalkIsLeft) {
    replaceWait(*plugin_);
  }
}

void* Scene::address(const char* symbol) const {
  void* const found = plugin_->symbol(symbol);
  return found != nullptr ? found : throw std::runtime_error(std::string("not exported: ") + symbol);
}

std::string Scene::takeEvents() {
  std::string text;
  for (const std::string& event : std::exchange(events_, {})) {
    text += (text.empty() ? "" : " ") + event;
  }
  return text;
}

Outcome Scene::run(const std::function<std::string(Scene&)>& question) {
  Outcome outcome;
  events_.clear();
  limits_asked_for.clear();
  const auto begin = std::chrono::steady_clock::now();
  try {
    outcome.result = withoutFolder(question(*this));
  } catch (const std::exception& error) {
    outcome.result = std::string("threw ") + error.what();
  } catch (...) {
    outcome.result = "threw";
  }
  outcome.time = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - begin);
  outcome.limits = limits_asked_for;
  return outcome;
}

// --- questions

namespace {

std::string textOf(const devhost::Value& value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

/// The method's result and then the by-reference arguments, with blanks between them.
std::string describe(const CallResult& call) {
  std::string text = call.result.isNothing() ? "" : textOf(call.result);
  for (const devhost::ByReference& parameter : call.by_reference) {
    text += (text.empty() ? "" : " ") + textOf(parameter.value);
  }
  return text;
}

std::function<std::string(Scene&)> method(const char* name, Values arguments = {}) {
  return [=](Scene& scene) { return describe(scene.plugin().call(name, arguments)); };
}

/// A method, with its events as the result.
std::function<std::string(Scene&)> events(const char* name, Values arguments = {}) {
  return [=](Scene& scene) {
    scene.plugin().call(name, arguments);
    return scene.takeEvents();
  };
}

Question same(const char* name, const std::function<std::string(Scene&)>& ask, const char* right, seconds limit = {}) {
  return {name, ask, right, ask, right, limit};
}

std::string setObject(Scene& scene) { return describe(scene.plugin().call("SetObject", {scene.listener()})); }

std::string isWideGamut(Scene& scene) {
  return scene.exported<bool(std::uint32_t)>("_ZN7Display11IsWideGamutEj")(1) ? "True" : "False";
}

std::string buildMonitorsSet(Scene& scene) {
  scene.exported<void()>("_ZN15DisplayServices23BuildInitialMonitorsSetEv")();
  return "";
}

/// Called twice: the first result is about the desktop before.
std::string displaysChanged(Scene& scene) {
  auto* const changed = scene.exported<bool()>("_ZN15DisplayServices15DisplaysChangedEv");
  changed();
  return changed() ? "True" : "False";
}

std::string path(const char* name) { return profileFolder() + '/' + name; }

std::vector<Question> makeQuestions() {
  constexpr const char* kAllEvents = "B=DIR/a.icc A=DIR/b.icc B=DIR/c.icc";
  return {
      same("SetObject", setObject, ""),
      same("ListAllInstalledProfiles", events("ListAllInstalledProfiles"), kAllEvents),
      same("ListDisplayProfiles", events("ListDisplayProfiles", {1}), "B=DIR/a.icc A=DIR/b.icc"),
      {"GetName", method("GetName", {1}), R"("Notebook")", method("GetName", {2}), R"("Größe 27″")", seconds(10)},
      {"GetName of display 4", method("GetName", {4}), R"("Device 4")", method("GetName", {5}), R"("Device 5")",
       seconds(10)},
      same("GetRect", method("GetRect", {1}), "0 0 1440 900"),
      same("GetCGRect", method("GetCGRect", {2}), "-1440.5 0 1440 900"),
      same("GetProfilePath", method("GetProfilePath", {1}), R"("DIR/a.icc")", seconds(2)),
      same("GetIndex", method("GetIndex", {2}), "1"),
      same("GetScale", method("GetScale", {2}), "1.5"),
      same("GetScale of display 77", method("GetScale", {77}), "1.25"),
      same("SetProfile", method("SetProfile", {3, path("b.icc")}), "True"),
      same("DisplayIDForWindow", method("DisplayIDForWindow", {10, -10, 10, 20}), "1"),
      same("GetInstalledProfilePathsArray", method("GetInstalledProfilePathsArray"),
           R"(["DIR/b.icc", "DIR/c.icc", "DIR/a.icc"])"),
      same("GetAssociatedProfilePathsArray", method("GetAssociatedProfilePathsArray", {1}),
           R"(["DIR/b.icc", "DIR/a.icc"])"),
      same("ICCTagExists", method("ICCTagExists", {path("a.icc"), "desc"}), "True"),
      same("QV02Read", method("QV02Read", {path("a.icc"), "before"}), R"(0 "<document/>")"),
      same("IsWideGamut", isWideGamut, "True", seconds(2)),
      same("BuildInitialMonitorsSet", buildMonitorsSet, ""),
      same("DisplaysChanged", displaysChanged, "False"),
  };
}

}  // namespace

const std::vector<Question>& questions() {
  static const std::vector<Question> all = makeQuestions();
  return all;
}

}  // namespace faults
