// What the faults are tried on: a fresh plugin on a scripted desktop of five displays, and what is asked of it.
#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "devhost/entries/host.h"
#include "support/scripted.h"

namespace faults {

/// How a method's answer came about.
struct Outcome {
  std::string answer;  ///< what it answered, as text; "threw ..." when an exception came out of it
  std::chrono::milliseconds time{0};
  std::vector<std::chrono::seconds> limits;  ///< how long it was ready to wait for ColorSync, each time that it waited
};

/// Unless real time is asked for, queries wait for ColorSync until it is certain that no answer will come, not until
/// their time is up; how long they would have waited at most is noted.
class Scene {
 public:
  Scene();
  ~Scene();
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  enum class Wait { kWhileThereIsHope, kInRealTime };

  /// Loads a plugin into the host as it is then.
  void load(Wait wait = Wait::kWhileThereIsHope);
  const devhost::Plugin& plugin() const { return *plugin_; }
  /// Calls, and describes what came of it.
  Outcome run(const std::function<std::string(Scene&)>& question);
  /// A function that the plugin exports. Throws when there is none.
  template <typename Function>
  Function* exported(const char* symbol) const {
    return reinterpret_cast<Function*>(address(symbol));
  }

  /// The host object's events since the last time, as "NAME=PATH NAME=PATH".
  std::string takeEvents();
  devhost::Ref<devhost::Object> listener() const { return listener_; }

  support::ScriptedSession session;
  devhost::Host host;

 private:
  void* address(const char* symbol) const;

  std::optional<devhost::Plugin> plugin_;
  std::vector<std::string> events_;
  devhost::Ref<devhost::Object> listener_;
};

/// The desktop's description. Displays 1 to 3 have names; displays 4 and 5 have empty ones, so that ColorSync is asked.
platform::desktop::Script fiveDisplays();

/// The folder of the profiles "a.icc", "b.icc" and "c.icc". In answers it stands as "DIR".
const std::string& profileFolder();

/// Something that is asked of the plugin, once disturbed and once more afterwards.
struct Question {
  std::string name;
  std::function<std::string(Scene&)> ask;
  std::string right;  ///< the answer when nothing is wrong
  /// What is asked afterwards; the same, unless the plugin remembers.
  std::function<std::string(Scene&)> ask_afterwards;
  std::string right_afterwards;
  std::chrono::seconds limit{0};  ///< how long it may wait for ColorSync
};

/// All fifteen methods, in the order of the table, and then the exported functions that ask the frameworks about
/// displays beside them. GetName is asked twice, once about a display that only ColorSync has a name for.
const std::vector<Question>& questions();

}  // namespace faults
