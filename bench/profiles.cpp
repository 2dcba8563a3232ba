// Lists of profiles beside a plain loop of lcms2 over the same files (open, class, description, close), and tags beside
// lcms2 as well.
//
// Files are made anew in a temporary folder, and every listing is of that folder alone. "first" is a listing by a
// desktop that has seen none of the files before, "again" one with nothing changed since the last.
#include <ColorSync/ColorSync.h>
#include <lcms2.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "desktop/current.h"
#include "desktop/script/scripted.h"
#include "groups.h"
#include "plugin_rows.h"
#include "profile/profile_services.h"
#include "support/folder_desktop.h"
#include "support/icc_maker.h"
#include "support/temporary_folder.h"

namespace bench {
namespace {

/// A folder with `count` display profiles of the kind that a monitor's maker delivers, each with its own description.
class ProfileFolder {
 public:
  explicit ProfileFolder(long count) {
    for (long i = 0; i < count; ++i) {
      std::array<char, 64> name;
      std::snprintf(name.data(), name.size(), "profile-%06ld.icc", i);
      files_.push_back(folder_.write(name.data(), profile("Monitor number " + std::to_string(i))));
    }
  }

  const std::string& path() const { return folder_.path(); }
  const std::vector<std::string>& files() const { return files_; }

 private:
  static std::string profile(const std::string& description) {
    const std::string curve = "curv" + support::bigEndian32(0) + support::bigEndian32(1) + support::bigEndian16(0x0233);
    return support::IccMaker()
        .description(description)
        .tag("cprt", support::textElement("Public domain"))
        .tag("wtpt", support::xyzElement(0.9505, 1, 1.0891))
        .tag("rXYZ", support::xyzElement(0.4361, 0.2225, 0.0139))
        .tag("gXYZ", support::xyzElement(0.3851, 0.7169, 0.0971))
        .tag("bXYZ", support::xyzElement(0.1431, 0.0606, 0.7141))
        .tag("rTRC", curve)
        .tag("gTRC", curve)
        .tag("bTRC", curve)
        .bytes();
  }

  support::TemporaryFolder folder_;
  std::vector<std::string> files_;
};

const ProfileFolder& folderOf(long count) {
  static std::map<long, std::unique_ptr<ProfileFolder>> folders;
  std::unique_ptr<ProfileFolder>& folder = folders[count];
  if (!folder) {
    folder = std::make_unique<ProfileFolder>(count);
    // What was changed in the tick of the file system's clock in which it is read would be read again.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return *folder;
}

void makeCurrent(const ProfileFolder& folder) {
  platform::desktop::setCurrent(std::make_shared<support::FolderDesktop>(folder.path()));
}

void expectAll(std::size_t found, const ProfileFolder& folder) {
  if (found != folder.files().size()) {
    throw std::runtime_error("not every profile was found");
  }
}

/// Every call is measured; what comes before it is not.
template <typename Prepare, typename Call>
Timer preparedTimer(Prepare prepare, Call call) {
  return [=](int calls) {
    double sum = 0;
    for (int i = 0; i < calls; ++i) {
      const devhost::AutoreleasePool pool;
      prepare();
      sum += nanoseconds(call);
    }
    return sum / calls;
  };
}

Timer lcmsTimer(const ProfileFolder& folder) {
  return timerOf([&folder] {
    std::size_t found = 0;
    for (const std::string& file : folder.files()) {
      const cmsHPROFILE profile = cmsOpenProfileFromFile(file.c_str(), "r");
      std::array<char, 256> description;
      cmsGetProfileInfoASCII(profile, cmsInfoDescription, "en", "US", description.data(), description.size());
      keep(description);
      found += cmsGetDeviceClass(profile) == cmsSigDisplayClass ? 1 : 0;
      cmsCloseProfile(profile);
    }
    expectAll(found, folder);
  });
}

void list(const ProfileFolder& folder) { expectAll(ProfileServices::ListAllInstalledProfiles().size(), folder); }

Timer firstTimer(const ProfileFolder& folder) {
  return preparedTimer([&folder] { makeCurrent(folder); }, [&folder] { list(folder); });
}

/// A desktop of its own, used for nothing else, so that it remembers the folder whatever is measured in between.
Timer againTimer(const ProfileFolder& folder) {
  const auto desktop = std::make_shared<support::FolderDesktop>(folder.path());
  platform::desktop::setCurrent(desktop);
  list(folder);
  return preparedTimer([desktop] { platform::desktop::setCurrent(desktop); }, [&folder] { list(folder); });
}

/// The system's share of a listing again: what it takes to ask whether each file has changed.
Timer questionTimer(const ProfileFolder& folder) {
  return timerOf([&folder] {
    std::size_t found = 0;
    for (const std::string& file : folder.files()) {
      struct stat status {};
      found += stat(file.c_str(), &status) == 0 ? 1 : 0;
    }
    expectAll(found, folder);
  });
}

/// The time for one profile when lists of `count` are made until `in_all` profiles have been listed: so that lists of
/// any length are measured over the same stretch of time.
Timer perProfile(const Timer& timer, long count, long in_all) {
  return [=](int calls) { return timer(calls * static_cast<int>(in_all / count)) / static_cast<double>(count); };
}

constexpr const char* kLoop = "a loop of lcms2 over the same files";
constexpr double kFirstBar = 1.1;
constexpr double kAgainBar = 0.35;
constexpr double kFlatBar = 1.3;
constexpr long kFlatFrom = 100;

Batches batchesFor(long files) {
  constexpr long kFilesInAll = 200000;
  return {.rounds = static_cast<int>(std::clamp(kFilesInAll / files, 11L, 101L)), .calls = 1};
}

void measureFlatness(Suite& suite, long files) {
  const ProfileFolder& few = folderOf(kFlatFrom);
  const ProfileFolder& many = folderOf(files);
  const Batches batches = batchesFor(files);
  suite.compareTimers({"first, for one profile", "the same among 100", kFlatBar},
                      perProfile(firstTimer(many), files, files), perProfile(firstTimer(few), kFlatFrom, files),
                      batches);
  suite.compareTimers({"again, for one profile", "the same among 100", kFlatBar},
                      perProfile(againTimer(many), files, files), perProfile(againTimer(few), kFlatFrom, files),
                      batches);
  suite.compareTimers({"stat alone, for one file", "the same among 100", 0},
                      perProfile(questionTimer(many), files, files), perProfile(questionTimer(few), kFlatFrom, files),
                      batches);
}

}  // namespace

void measureProfileLists(Suite& suite) {
  for (const long files : suite.sizes({10, 100, 1000, 10000})) {
    const ProfileFolder& folder = folderOf(files);
    suite.begin(kProfileLists, files);
    suite.compareTimers({"first listing", kLoop, kFirstBar}, firstTimer(folder), lcmsTimer(folder), batchesFor(files));
    suite.compareTimers({"listing again", kLoop, kAgainBar}, againTimer(folder), lcmsTimer(folder), batchesFor(files));
    if (files > kFlatFrom) {
      measureFlatness(suite, files);
    }
  }
  platform::desktop::setCurrent(nullptr);
}

void measureDisplayProfiles(Suite& suite) {
  constexpr std::uint32_t kDisplay = 1;
  const platform::desktop::Uuid uuid{1};
  for (const long profiles : suite.sizes({10, 100, 1000, 10000})) {
    platform::desktop::Script script;
    script.arrangement.displays.push_back({.number = kDisplay, .bounds = {0, 0, 1, 1}, .uuid = uuid});
    for (long i = 0; i < profiles; ++i) {
      const std::string path = "/profiles/" + std::to_string(i) + ".icc";
      script.device_profiles.push_back({platform::desktop::kDisplayDeviceClass, uuid, "Monitor", i == 0, i == 0, path});
      script.installed_profiles.push_back({.profile_class = "mntr", .description = "Name", .path = path});
    }
    platform::desktop::setCurrent(std::make_shared<platform::desktop::ScriptedDesktop>(script));
    const auto count = static_cast<std::size_t>(profiles);
    suite.begin(kDisplayProfiles, profiles);
    suite.compare(
        {"ListProfilesForDisplay", "ColorSync's walk over the same entries"},
        [=] {
          if (ProfileServices::ListProfilesForDisplay(kDisplay).size() != count) {
            throw std::runtime_error("not every profile was listed");
          }
        },
        [] { ColorSyncIterateDeviceProfiles([](CFDictionaryRef, void*) { return true; }, nullptr); },
        {.rounds = batchesFor(profiles).rounds, .calls = 1});
  }
  platform::desktop::setCurrent(nullptr);
}

void measureTags(Suite& suite) {
  using TagExists = bool(const char*, const char*);
  TagExists* const exists = PluginRows::instance().method<TagExists>("ICCTagExists");
  for (const long tags : suite.sizes({10, 100})) {
    const support::TemporaryFolder folder;
    support::IccMaker maker;
    for (long i = 0; i + 1 < tags; ++i) {
      maker.tag("t" + std::to_string(100 + i), support::textElement("text"));
    }
    const std::string file = folder.write("tags.icc", maker.tag("last", support::textElement("text")).bytes());
    if (!exists(file.c_str(), "last")) {
      throw std::runtime_error("the tag was not found");
    }
    suite.begin("Tags of a file", tags);
    suite.compare(
        {"ICCTagExists", "lcms2: open, look for the tag, close", 0}, [=] { keep(exists(file.c_str(), "last")); },
        [=] {
          const cmsHPROFILE profile = cmsOpenProfileFromFile(file.c_str(), "r");
          keep(cmsIsTag(profile, static_cast<cmsTagSignature>(0x6C617374)));
          cmsCloseProfile(profile);
        },
        {.rounds = 101, .calls = 20});
  }
}

}  // namespace bench
