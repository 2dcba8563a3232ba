// What is asked of the plugin, and the right answers.
#include <algorithm>
#include <sstream>

#include "faults/scene.h"

namespace faults {
namespace {

using devhost::CallResult;
using devhost::Values;
using std::chrono::seconds;

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

/// A method whose answer is the events that it raises.
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

/// Asked twice, because the first answer is about what was there before.
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
