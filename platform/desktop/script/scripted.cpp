#include "desktop/script/scripted.h"

#include <condition_variable>
#include <thread>

namespace platform::desktop {

struct ScriptedDesktop::State {
  std::mutex mutex;
  std::condition_variable released;
  bool walks_released = false;
  Script script;
  std::shared_ptr<const Arrangement> arrangement;
};

namespace {

/// Waits as the script demands.
template <typename State>
void beginWalk(State& state, const WalkBehaviour& behaviour) {
  if (behaviour.before) {
    behaviour.before();
  }
  if (behaviour.delay.count() > 0) {
    std::this_thread::sleep_for(behaviour.delay);
  }
  if (behaviour.hang) {
    std::unique_lock lock(state.mutex);
    state.released.wait(lock, [&] { return state.walks_released; });
  }
}

template <typename Entry, typename Visitor>
void visitEntries(const std::vector<Entry>& entries, unsigned repeat, const Visitor& visit) {
  for (unsigned round = 0; round < repeat; ++round) {
    for (const Entry& entry : entries) {
      if (!visit(entry)) {
        return;
      }
    }
  }
}

/// A walk may outlive the desktop, so it owns the state.
template <typename State, typename Entry, typename Visitor>
void walk(const std::shared_ptr<State> state, const std::vector<Entry> Script::*list, const WalkBehaviour Script::*kind,
          const Visitor& visit) {
  std::unique_lock lock(state->mutex);
  const std::vector<Entry> entries = state->script.*list;
  const WalkBehaviour behaviour = state->script.*kind;
  lock.unlock();
  beginWalk(*state, behaviour);
  visitEntries(entries, behaviour.repeat, visit);
  if (behaviour.after) {
    behaviour.after();
  }
}

}  // namespace

ScriptedDesktop::ScriptedDesktop(Script script) : state_(std::make_shared<State>()) {
  state_->arrangement = std::make_shared<const Arrangement>(script.arrangement);
  state_->script = std::move(script);
}

void ScriptedDesktop::change(const std::function<void(Script&)>& edit) {
  const std::lock_guard lock(state_->mutex);
  edit(state_->script);
  state_->arrangement = std::make_shared<const Arrangement>(state_->script.arrangement);
}

void ScriptedDesktop::releaseWalks() {
  const std::lock_guard lock(state_->mutex);
  state_->walks_released = true;
  state_->released.notify_all();
}

std::shared_ptr<const Arrangement> ScriptedDesktop::arrangement() {
  const std::lock_guard lock(state_->mutex);
  return state_->arrangement;
}

void ScriptedDesktop::visitDeviceProfiles(const DeviceProfileVisitor& visit) {
  walk(state_, &Script::device_profiles, &Script::device_walk, visit);
}

void ScriptedDesktop::visitInstalledProfiles(const InstalledProfileVisitor& visit) {
  walk(state_, &Script::installed_profiles, &Script::installed_walk, visit);
}

bool ScriptedDesktop::setDeviceProfile(const Uuid& device, const std::string& profile_path) {
  const std::lock_guard lock(state_->mutex);
  std::vector<DeviceProfile>& entries = state_->script.device_profiles;
  DeviceProfile* chosen = nullptr;
  for (DeviceProfile& entry : entries) {
    if (entry.device_class != kDisplayDeviceClass || entry.device_id != device) {
      continue;
    }
    if (chosen == nullptr || (entry.is_default == true && chosen->is_default != true)) {
      chosen = &entry;
    }
  }
  if (chosen == nullptr || !state_->script.accepts_profiles) {
    return false;
  }
  for (DeviceProfile& entry : entries) {
    if (entry.device_class == kDisplayDeviceClass && entry.device_id == device) {
      entry.is_default = false;
      entry.is_current = false;
    }
  }
  chosen->profile_path = profile_path;
  chosen->is_default = true;
  chosen->is_current = true;
  return true;
}

}  // namespace platform::desktop
