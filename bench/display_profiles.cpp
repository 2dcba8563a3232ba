// A display's profiles. On the live desktop the twins are libcolord's: one connects to the devices at every call, as a
// program does that asks now and then, one keeps connected devices and asks colord for nothing but the list.
#include <ColorSync/ColorSync.h>
#include <colord.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include "desktop/current.h"
#include "desktop/script/scripted.h"
#include "groups.h"
#include "plugin_methods.h"
#include "profile/profile_services.h"
#include "support/process.h"

namespace bench {
namespace {

struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Unref>;

struct UnrefArray {
  void operator()(GPtrArray* array) const { g_ptr_array_unref(array); }
};
using OwnedArray = std::unique_ptr<GPtrArray, UnrefArray>;

bool connect(CdProfile* profile) {
  return cd_profile_get_connected(profile) != FALSE || cd_profile_connect_sync(profile, nullptr, nullptr) != FALSE;
}

/// Connected to colord once; the devices are asked for at every call.
class Colord {
 public:
  explicit Colord(bool keeps_devices) : keeps_devices_(keeps_devices) {
    if (cd_client_connect_sync(client_.get(), nullptr, nullptr) == FALSE) {
      throw std::runtime_error("no colord");
    }
  }

  /// The file of the first profile of the output's device; "" without one.
  std::string profileOf(const std::string& output) {
    const Owned<CdDevice> device = deviceOf(output);
    const Owned<CdProfile> profile(device ? cd_device_get_default_profile(device.get()) : nullptr);
    if (!profile || !connect(profile.get())) {
      return "";
    }
    const char* const file = cd_profile_get_filename(profile.get());
    return file == nullptr ? "" : file;
  }

  /// Makes colord's profile of this file the default one of the output's device.
  bool makeDefault(const std::string& output, const std::string& file) {
    const Owned<CdProfile> profile(
        cd_client_find_profile_by_filename_sync(client_.get(), file.c_str(), nullptr, nullptr));
    const Owned<CdDevice> device = deviceOf(output);
    if (!profile || !device || !connect(profile.get())) {
      return false;
    }
    // Refused when the device has the profile already.
    keep(cd_device_add_profile_sync(device.get(), CD_DEVICE_RELATION_HARD, profile.get(), nullptr, nullptr));
    return cd_device_make_profile_default_sync(device.get(), profile.get(), nullptr, nullptr) != FALSE;
  }

 private:
  /// The kept device of the same path, else this one, connected. Null when it does not connect.
  CdDevice* connected(CdDevice* device) {
    const std::string path = cd_device_get_object_path(device);
    const auto found = kept_.find(path);
    if (found != kept_.end()) {
      return found->second.get();
    }
    if (cd_device_connect_sync(device, nullptr, nullptr) == FALSE) {
      return nullptr;
    }
    if (keeps_devices_) {
      kept_.emplace(path, static_cast<CdDevice*>(g_object_ref(device)));
    }
    return device;
  }

  /// Walks the display devices up to the output's; null without one.
  Owned<CdDevice> deviceOf(const std::string& output) {
    const OwnedArray devices(
        cd_client_get_devices_by_kind_sync(client_.get(), CD_DEVICE_KIND_DISPLAY, nullptr, nullptr));
    for (guint i = 0; devices && i < devices->len; ++i) {
      CdDevice* const device = connected(static_cast<CdDevice*>(g_ptr_array_index(devices.get(), i)));
      const char* const connector =
          device == nullptr ? nullptr : cd_device_get_metadata_item(device, CD_DEVICE_METADATA_XRANDR_NAME);
      if (connector != nullptr && connector == output) {
        return Owned<CdDevice>(static_cast<CdDevice*>(g_object_ref(device)));
      }
    }
    return nullptr;
  }

  Owned<CdClient> client_{cd_client_new()};
  bool keeps_devices_;
  std::map<std::string, Owned<CdDevice>> kept_;
};

constexpr double kBar = 1.3;
constexpr const char* kOutput = "DUMMY2";
constexpr const char* kOtherProfile = "/usr/share/color/icc/colord/sRGB.icc";

void expectProfile(const std::string& file) {
  if (file != kProfile) {
    throw std::runtime_error("\"" + file + "\" instead of \"" + kProfile + "\"");
  }
}

Pair profilePathPair(uint32_t display, bool keeps_devices) {
  const auto plugin = [display, get_profile = pluginMethod<void(uint32_t, char**)>("GetProfilePath")] {
    static char* variable = nullptr;
    get_profile(display, &variable);
    return variable;
  };
  const auto colord = std::make_shared<Colord>(keeps_devices);
  // The first reading of many devices can take longer than the plugin waits for it.
  for (int tries = 0; tries < 10 && std::string(plugin()) != kProfile; ++tries) {
  }
  expectProfile(plugin());
  expectProfile(colord->profileOf(kOutput));
  return pairOf(plugin, [=] { keep(colord->profileOf(kOutput)); }, {.rounds = 101, .calls = 4});
}

/// Two files by turns, so that each call has something to do; batches of an even number leave kProfile.
Pair setProfilePair(uint32_t display) {
  const auto by_turns = [](auto assign) {
    return [assign, turn = 0]() mutable {
      if (!assign(++turn % 2 == 0 ? kProfile : kOtherProfile)) {
        throw std::runtime_error("no profile could be assigned");
      }
    };
  };
  auto* const set_profile = pluginMethod<bool(uint32_t, const char*)>("SetProfile");
  const auto colord = std::make_shared<Colord>(false);
  return pairOf(by_turns([=](const char* file) { return set_profile(display, file); }),
                by_turns([=](const char* file) { return colord->makeDefault(kOutput, file); }),
                {.rounds = 15, .calls = 2});
}

void addLiveRows(const Suite& suite, LiveDesktop& live) {
  // libcolord's assignment reads every device, a call to colord for each.
  constexpr long kMostForAssignment = 100;
  for (const long devices : suite.sizes({3, 10, 100, 1000})) {
    const auto add = [&](const char* method, const char* twin, double bar, std::function<Pair(uint32_t)> pair_of) {
      suite.add({method, devices, "devices in colord", twin, bar}, [=, &live] {
        live.use(3);
        live.growDevices(devices);
        return pair_of(live.display(kOutput));
      });
    };
    add("GetProfilePath", "libcolord: list, connect, default profile", kBar,
        [](uint32_t display) { return profilePathPair(display, false); });
    add("GetProfilePath", "libcolord, devices kept connected: list only", kBar,
        [](uint32_t display) { return profilePathPair(display, true); });
    if (devices <= kMostForAssignment) {
      add("SetProfile", "libcolord: find, add, make default", 0, setProfilePair);
    }
  }
}

/// A colord for the programs that a row starts; the benchmark's own process stays with the desktop's. It has as many
/// devices, those of the three live displays with kProfile included.
class OtherColord {
 public:
  explicit OtherColord(LiveDesktop& live, long devices) {
    // PrivateColord puts itself into the environment.
    const std::array variables = {"DBUS_SYSTEM_BUS_ADDRESS", "XDG_STATE_HOME"};
    std::array<std::string, variables.size()> before;
    std::transform(variables.begin(), variables.end(), before.begin(), std::getenv);
    colord_ = std::make_unique<support::PrivateColord>();
    for (const char* const output : {"DUMMY0", "DUMMY1", "DUMMY2"}) {
      support::runSuccessfully({OSTREVIN_TOOL, "call", "SetProfile", std::to_string(live.display(output)), kProfile});
    }
    registerAbsentDisplays(*colord_, kLiveDisplays, devices);
    for (std::size_t i = 0; i < variables.size(); ++i) {
      environment_.push_back(std::string(variables[i]) + "=" + std::getenv(variables[i]));
      setenv(variables[i], before[i].c_str(), 1);
    }
  }

  /// Times what a fresh process reports.
  Timer probe(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), OSTREVIN_PROFILE_PROBE);
    return [=, environment = environment_](int calls) {
      double sum = 0;
      for (int i = 0; i < calls; ++i) {
        sum += std::stod(support::runSuccessfully(arguments, environment));
      }
      return sum / calls;
    };
  }

 private:
  std::unique_ptr<support::PrivateColord> colord_;
  support::Environment environment_;
};

/// What fresh processes report, about a colord with that many devices beside one with those of the displays alone.
Pair growthPair(LiveDesktop& live, long devices, const std::vector<std::string>& arguments, Batches batches) {
  const auto many = std::make_shared<OtherColord>(live, devices);
  const auto few = std::make_shared<OtherColord>(live, kLiveDisplays);
  return {[many, run = many->probe(arguments)](int calls) { return run(calls); },
          [few, run = few->probe(arguments)](int calls) { return run(calls); }, batches};
}

/// In fresh processes, where the plugin has nothing of colord's yet, and where each colord has its own.
void addGrowthRows(const Suite& suite, LiveDesktop& live) {
  constexpr double kWalkLimit = 3e6;
  constexpr double kWalkGrowth = 1.3;
  constexpr double kAssignmentGrowth = 1.5;
  constexpr const char* kFirst = "first GetProfilePath: bus time";
  constexpr const char* kFew = "the same with 3 devices";
  constexpr Batches kWalks{.rounds = 101, .calls = 1};
  suite.add({kFirst, kLiveDisplays, "devices in colord", "3 ms", 1}, [=, &live]() -> Pair {
    live.use(kLiveDisplays);
    const auto colord = std::make_shared<OtherColord>(live, kLiveDisplays);
    return {[colord, run = colord->probe({"first", kProfile})](int calls) { return run(calls); },
            [](int) { return kWalkLimit; }, kWalks};
  });
  for (const long devices : suite.sizes({30})) {
    suite.add({kFirst, devices, "devices in colord", kFew, kWalkGrowth}, [=, &live] {
      live.use(kLiveDisplays);
      return growthPair(live, devices, {"first", kProfile}, kWalks);
    });
  }
  for (const long devices : suite.sizes({100})) {
    suite.add({"SetProfile", devices, "devices in colord", kFew, kAssignmentGrowth}, [=, &live] {
      live.use(kLiveDisplays);
      return growthPair(live, devices, {"assign", std::to_string(live.display(kOutput)), kOtherProfile, kProfile},
                        {.rounds = 25, .calls = 1});
    });
  }
}

constexpr uint32_t kScriptedDisplay = 1;

void useScriptedProfiles(long count) {
  const platform::desktop::Uuid uuid{1};
  platform::desktop::Script script;
  script.arrangement.displays.push_back({.number = kScriptedDisplay, .bounds = {0, 0, 1, 1}, .uuid = uuid});
  for (long i = 0; i < count; ++i) {
    const std::string path = "/profiles/" + std::to_string(i) + ".icc";
    script.device_profiles.push_back({platform::desktop::kDisplayDeviceClass, uuid, "Monitor", i == 0, i == 0, path});
    script.installed_profiles.push_back({.profile_class = "mntr", .description = "Name", .path = path});
  }
  platform::desktop::setCurrent(std::make_shared<platform::desktop::ScriptedDesktop>(script));
}

}  // namespace

void addDisplayProfiles(const Suite& suite, LiveDesktop& live) {
  addLiveRows(suite, live);
  addGrowthRows(suite, live);
  for (const long profiles : suite.sizes({10, 100, 1000, 10000})) {
    suite.add({"ListProfilesForDisplay", profiles, "scripted profiles", "ColorSync's walk over the same entries"}, [=] {
      useScriptedProfiles(profiles);
      return pairOf(
          [=] {
            if (ProfileServices::ListProfilesForDisplay(kScriptedDisplay).size() !=
                static_cast<std::size_t>(profiles)) {
              throw std::runtime_error("not every profile was listed");
            }
          },
          [] { ColorSyncIterateDeviceProfiles([](CFDictionaryRef, void*) { return true; }, nullptr); },
          {.rounds = static_cast<int>(std::clamp(200000 / profiles, 11L, 101L)), .calls = 1});
    });
  }
}

}  // namespace bench
