#include "desktop/colord/colord_devices.h"

#include <algorithm>
#include <exception>
#include <optional>

#include "desktop/colord/assigned_profiles.h"
#include "desktop/colord/colord_client.h"
#include "desktop/colord/colord_matching.h"
#include "desktop/colord/glib_thread.h"

namespace platform::desktop {
namespace {

/// The client of colord, and the thread that it runs on.
class Session {
 public:
  Session() : thread_(*new GlibThread([this](GMainContext* context) { whenIdle(context); })) {}

  void prepare() {
    thread_.start<bool>(kDeviceWalkLimit, [this](const Operation& operation) { return client_.connect(operation); });
  }

  ColordClient::Devices devicesOf(std::shared_ptr<const Arrangement> arrangement) {
    return thread_
        .call<ColordClient::Devices>(kDeviceWalkLimit,
                                     [this, arrangement = std::move(arrangement)](const Operation& operation) {
                                       return client_.devicesOf(operation, arrangement->displays);
                                     })
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

/// Never freed: a walk may still be running while the process exits.
Session& session() {
  static auto* const session = new Session;
  return *session;
}

/// The result of `use`, or `failure` without a session, which needs a thread.
template <typename Result>
Result withSession(Result failure, const std::function<Result(Session&)>& use) {
  try {
    return use(session());
  } catch (const std::exception&) {
    return failure;
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

/// False when the visitor ends the walk.
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

void prepareColord() {
  withSession<bool>(false, [](Session& session) {
    session.prepare();
    return true;
  });
}

ColordDevices::ColordDevices(ArrangementSource arrangement) : arrangement_(std::move(arrangement)) {}

void ColordDevices::visit(const DeviceProfileVisitor& visit) const {
  const auto arrangement = arrangement_();
  const auto devices =
      withSession<ColordClient::Devices>(nullptr, [&](Session& session) { return session.devicesOf(arrangement); });
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
  return withSession<bool>(false, [&](Session& session) { return session.assign(arrangement, index, profile_path); });
}

}  // namespace platform::desktop
