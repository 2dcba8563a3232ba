#include "desktop/colord/colord_devices.h"

#include <algorithm>
#include <exception>
#include <optional>

#include "desktop/colord/colord_client.h"
#include "desktop/colord/colord_matching.h"
#include "desktop/colord/display_profile_file.h"
#include "desktop/colord/glib_thread.h"

namespace platform::desktop {
namespace {

/// The process's conversation with colord.
class Session {
 public:
  Session() : thread_(*new GlibThread([this](GMainContext* context) { whenIdle(context); })) {}

  ColordClient::Devices devices() {
    return thread_
        .call<ColordClient::Devices>(kDeviceWalkLimit,
                                     [this](const Operation& operation) { return client_.devices(operation); })
        .value_or(nullptr);
  }

  bool assign(std::shared_ptr<const Arrangement> arrangement, std::size_t display, const std::string& file) {
    return thread_
        .call<bool>(kAssignmentLimit,
                    [this, arrangement = std::move(arrangement), display, file](const Operation& operation) {
                      return file.starts_with('/') && isDisplayProfileFile(file) &&
                             client_.assign(operation, arrangement->displays, display, file);
                    })
        .value_or(false);
  }

 private:
  void whenIdle(GMainContext* context) {
    if (client_.takeRestart()) {
      client_.restoreProfiles(Operation(context, Operation::Clock::now() + kDeviceWalkLimit));
    }
  }

  ColordClient client_;
  GlibThread& thread_;
};

/// Kept for the life of the process: a walk may still be running while the process exits.
Session& session() {
  static auto* const kept = new Session;
  return *kept;
}

/// What `ask` answers about the session, or `otherwise` when there cannot be one: it needs a thread.
template <typename Answer>
Answer askSession(Answer otherwise, const std::function<Answer(Session&)>& ask) {
  try {
    return ask(session());
  } catch (const std::exception&) {
    return otherwise;
  }
}

std::string describe(const ColordDevice& device, const Display& display) {
  if (!device.model.empty()) {
    return device.model;
  }
  return device.vendor.empty() ? display.connector : device.vendor;
}

std::optional<std::string> orAbsent(std::string value) {
  return value.empty() ? std::nullopt : std::optional(std::move(value));
}

/// False when the visitor ended the walk.
bool visitProfiles(const Display& display, const ColordDevice& device, const DeviceProfileVisitor& visit) {
  for (std::size_t i = 0; i < device.profiles.size(); ++i) {
    DeviceProfile entry;
    entry.device_class = kDisplayDeviceClass;
    entry.device_id = display.uuid;
    entry.description = orAbsent(describe(device, display));
    entry.is_default = i == 0;
    entry.is_current = i == 0;
    entry.profile_path = orAbsent(device.profiles[i].filename);
    if (!visit(entry)) {
      return false;
    }
  }
  return true;
}

}  // namespace

ColordDevices::ColordDevices(ArrangementSource arrangement) : arrangement_(std::move(arrangement)) {}

void ColordDevices::visit(const DeviceProfileVisitor& visit) const {
  const auto arrangement = arrangement_();
  const auto devices = askSession<ColordClient::Devices>(nullptr, [](Session& session) { return session.devices(); });
  if (!devices) {
    return;
  }
  const auto matches = matchDevices(arrangement->displays, *devices);
  for (std::size_t i = 0; i < matches.size(); ++i) {
    if (matches[i] && !visitProfiles(arrangement->displays[i], (*devices)[*matches[i]], visit)) {
      return;
    }
  }
}

bool ColordDevices::assign(const Uuid& device, const std::string& profile_path) const {
  const auto arrangement = arrangement_();
  const auto& displays = arrangement->displays;
  const auto display =
      std::find_if(displays.begin(), displays.end(), [&](const Display& one) { return one.uuid == device; });
  if (display == displays.end()) {
    return false;
  }
  const auto index = static_cast<std::size_t>(display - displays.begin());
  return askSession<bool>(false, [&](Session& session) { return session.assign(arrangement, index, profile_path); });
}

}  // namespace platform::desktop
