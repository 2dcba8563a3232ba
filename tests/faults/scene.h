// The subject of the faults: a fresh plugin on a scripted desktop of five displays, and the questions put to it.
#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "devhost/entries/host.h"
#include "support/scripted.h"

namespace faults {

/// What a method returned, and its waits.
struct Outcome {
  std::string result;  ///< as text; "threw ..." when an exception came out of it
  std::chrono::milliseconds time{0};
  std::vector<std::chrono::seconds> limits;  ///< the limit of each wait for ColorSync
};

/// Except in real time, a query waits for ColorSync until no walk is left that could give a result, not until its
/// limit, which is recorded.
class Scene {
 public:
  Scene();
  ~Scene();
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  enum class Wait { kUntilNoWalkIsLeft, kInRealTime };

  /// Loads a plugin into the host as it is then.
  void load(Wait wait = Wait::kUntilNoWalkIsLeft);
  const devhost::Plugin& plugin() const { return *plugin_; }
  /// Calls, and describes the outcome.
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

/// The desktop's description. Displays 1 to 3 have names; displays 4 and 5 have empty ones, which ColorSync replaces.
platform::desktop::Script fiveDisplays();

/// The folder of the profiles "a.icc", "b.icc" and "c.icc". In results it stands as "DIR".
const std::string& profileFolder();

/// Put to the plugin once disturbed and once more afterwards.
struct Question {
  std::string name;
  std::function<std::string(Scene&)> ask;
  std::string right;  ///< the result when nothing is wrong
  /// Put afterwards; the same, unless the plugin caches.
  std::function<std::string(Scene&)> ask_afterwards;
  std::string right_afterwards;
  std::chrono::seconds limit{0};  ///< how long it may wait for ColorSync
};

/// All fifteen methods, in the order of the table, and then other exported functions about displays. GetName comes
/// twice, once for a display that only ColorSync can name.
const std::vector<Question>& questions();

}  // namespace faults
