// Lists of installed profiles beside a plain loop of lcms2 over the same files: open, class, description, close. Each
// list is of a temporary folder's files alone. A "first listing" is by a desktop that has seen none of the files
// before, "listing again" by one that has, with nothing changed.
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
#include "groups.h"
#include "profile/profile_services.h"
#include "support/icc_maker.h"
#include "support/scripted.h"
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

/// Made once for all rows. The modification times lie in a past tick of the file system's clock: a file that is read in
/// the tick of its change is read again the next time.
const ProfileFolder& folderOf(long count) {
  static std::map<long, std::unique_ptr<ProfileFolder>> folders;
  std::unique_ptr<ProfileFolder>& folder = folders[count];
  if (!folder) {
    folder = std::make_unique<ProfileFolder>(count);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return *folder;
}

void expectAll(std::size_t found, const ProfileFolder& folder) {
  if (found != folder.files().size()) {
    throw std::runtime_error("not every profile was found");
  }
}

/// Times the listing alone, by the desktop that `desktop_of` returns for each call.
template <typename DesktopOf>
Timer listTimer(const ProfileFolder& folder, DesktopOf desktop_of) {
  return [&folder, desktop_of](int calls) {
    double sum = 0;
    for (int i = 0; i < calls; ++i) {
      const devhost::AutoreleasePool pool;
      platform::desktop::setCurrent(desktop_of());
      sum += nanoseconds([&] { expectAll(ProfileServices::ListAllInstalledProfiles().size(), folder); });
    }
    return sum / calls;
  };
}

Timer firstTimer(const ProfileFolder& folder) {
  return listTimer(folder, [&folder] { return std::make_shared<support::FolderDesktop>(folder.path()); });
}

/// The first listing is made here, uncounted.
Timer againTimer(const ProfileFolder& folder) {
  const auto desktop = std::make_shared<support::FolderDesktop>(folder.path());
  Timer timer = listTimer(folder, [desktop] { return desktop; });
  timer(1);
  return timer;
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

/// The system's share of a listing again: whether each file has changed.
Timer statTimer(const ProfileFolder& folder) {
  return timerOf([&folder] {
    std::size_t found = 0;
    for (const std::string& file : folder.files()) {
      struct stat status {};
      found += stat(file.c_str(), &status) == 0 ? 1 : 0;
    }
    expectAll(found, folder);
  });
}

using MakeTimer = Timer (*)(const ProfileFolder&);

/// The time for one file when lists of `count` files are made until `in_all` files have been listed: lists of any
/// length are measured over the same stretch of time.
Timer perFile(MakeTimer make_timer, long count, long in_all) {
  return [timer = make_timer(folderOf(count)), count, in_all](int calls) {
    return timer(calls * static_cast<int>(in_all / count)) / static_cast<double>(count);
  };
}

}  // namespace

void addProfileLists(const Suite& suite) {
  constexpr double kFirstBar = 1.1;
  constexpr double kAgainBar = 0.35;
  constexpr double kFlatBar = 1.3;
  constexpr long kFlatFrom = 100;
  constexpr long kFilesInAll = 200000;
  for (const long files : suite.sizes({10, 100, 1000, 10000})) {
    const Batches batches{.rounds = static_cast<int>(std::clamp(kFilesInAll / files, 11L, 101L)), .calls = 1};
    const auto add = [&](const char* method, MakeTimer make_timer, double bar) {
      suite.add({method, files, "files", "a loop of lcms2 over the same files", bar}, [=]() -> Pair {
        return {make_timer(folderOf(files)), lcmsTimer(folderOf(files)), batches};
      });
    };
    const auto add_flatness = [&](const char* method, MakeTimer make_timer, double bar) {
      suite.add({method, files, "files", "the same among 100 files", bar}, [=]() -> Pair {
        return {perFile(make_timer, files, files), perFile(make_timer, kFlatFrom, files), batches};
      });
    };
    add("first listing", firstTimer, kFirstBar);
    add("listing again", againTimer, kAgainBar);
    if (files > kFlatFrom) {
      add_flatness("first listing, for one file", firstTimer, kFlatBar);
      add_flatness("listing again, for one file", againTimer, kFlatBar);
      add_flatness("stat alone, for one file", statTimer, 0);
    }
  }
}

}  // namespace bench
