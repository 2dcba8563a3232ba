// Lists of profiles and the QV02 document, each beside a twin without this project's code: a plain loop of lcms2 over
// the same files (open, class, description, close), and memcpy of the same size.
//
// Files are made anew in a temporary folder, and every listing is of that folder alone. "first" is a listing by a
// desktop that has seen none of the files before, "again" one with nothing changed since the last. per_profile is the
// time of one listing divided by the number of files.
#include <CoreFoundation/CoreFoundation.h>
#include <benchmark/benchmark.h>
#include <lcms2.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/current.h"
#include "desktop/desktop.h"
#include "desktop/icc_folders.h"
#include "profile/profile_services.h"
#include "support/icc_maker.h"
#include "support/temporary_folder.h"

namespace {

/// A folder with `count` display profiles of the kind that a monitor's maker delivers, each with its own description.
class ProfileFolder {
 public:
  explicit ProfileFolder(int count) {
    for (int i = 0; i < count; ++i) {
      std::array<char, 64> name;
      std::snprintf(name.data(), name.size(), "profile-%06d.icc", i);
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

const ProfileFolder& folderOf(int count) {
  static std::map<int, std::unique_ptr<ProfileFolder>> folders;
  std::unique_ptr<ProfileFolder>& folder = folders[count];
  if (!folder) {
    folder = std::make_unique<ProfileFolder>(count);
  }
  return *folder;
}

/// A desktop whose installed profiles are those in one folder.
class FolderDesktop final : public platform::desktop::Desktop {
 public:
  explicit FolderDesktop(const std::string& folder) : folders_({folder}) {}
  std::shared_ptr<const platform::desktop::Arrangement> arrangement() override {
    return std::make_shared<const platform::desktop::Arrangement>();
  }
  void visitDeviceProfiles(const platform::desktop::DeviceProfileVisitor&) override {}
  void visitInstalledProfiles(const platform::desktop::InstalledProfileVisitor& visit) override {
    folders_.visit(visit);
  }
  bool setDeviceProfile(const platform::desktop::Uuid&, const std::string&) override { return false; }

 private:
  platform::desktop::IccFolders folders_;
};

void makeCurrent(const ProfileFolder& folder) {
  platform::desktop::setCurrent(std::make_shared<FolderDesktop>(folder.path()));
}

void reportPerProfile(benchmark::State& state) {
  state.counters["per_profile"] = benchmark::Counter(
      static_cast<double>(state.range(0)), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void checkCount(benchmark::State& state, std::size_t found) {
  if (found != static_cast<std::size_t>(state.range(0))) {
    state.SkipWithError("not every profile was found");
  }
}

void Profiles_lcms2(benchmark::State& state) {
  const ProfileFolder& folder = folderOf(static_cast<int>(state.range(0)));
  std::size_t found = 0;
  for (auto _ : state) {
    found = 0;
    for (const std::string& file : folder.files()) {
      const cmsHPROFILE profile = cmsOpenProfileFromFile(file.c_str(), "r");
      std::array<char, 256> description;
      cmsGetProfileInfoASCII(profile, cmsInfoDescription, "en", "US", description.data(), description.size());
      benchmark::DoNotOptimize(description);
      found += cmsGetDeviceClass(profile) == cmsSigDisplayClass ? 1 : 0;
      cmsCloseProfile(profile);
    }
  }
  checkCount(state, found);
  reportPerProfile(state);
}

void Profiles_first(benchmark::State& state) {
  const ProfileFolder& folder = folderOf(static_cast<int>(state.range(0)));
  std::size_t found = 0;
  for (auto _ : state) {
    state.PauseTiming();
    makeCurrent(folder);
    state.ResumeTiming();
    found = ProfileServices::ListAllInstalledProfiles().size();
  }
  checkCount(state, found);
  reportPerProfile(state);
}

void Profiles_again(benchmark::State& state) {
  makeCurrent(folderOf(static_cast<int>(state.range(0))));
  std::size_t found = ProfileServices::ListAllInstalledProfiles().size();
  for (auto _ : state) {
    found = ProfileServices::ListAllInstalledProfiles().size();
  }
  checkCount(state, found);
  reportPerProfile(state);
}

constexpr std::size_t kDocumentSize = 64 << 20;

void Qv02_memcpy(benchmark::State& state) {
  const std::string source(kDocumentSize, 'x');
  std::string target(kDocumentSize, 'y');
  for (auto _ : state) {
    std::memcpy(target.data(), source.data(), kDocumentSize);
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(kDocumentSize) * state.iterations());
}

void Qv02_read(benchmark::State& state) {
  const support::TemporaryFolder folder;
  const std::string path =
      folder.write("a.icc", support::IccMaker().tag("QV02", std::string(8 + kDocumentSize, 'x')).bytes());
  const CFStringRef text = CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(path.data()),
                                                   static_cast<CFIndex>(path.size()), kCFStringEncodingUTF8, false);
  const CFURLRef url = CFURLCreateWithFileSystemPath(nullptr, text, kCFURLPOSIXPathStyle, false);
  for (auto _ : state) {
    std::optional<std::string> xml;
    if (ProfileServices::QV02Read(url, xml) != kQVINoError || xml->size() != kDocumentSize) {
      state.SkipWithError("the document was not read");
    }
  }
  CFRelease(url);
  CFRelease(text);
  state.SetBytesProcessed(static_cast<std::int64_t>(kDocumentSize) * state.iterations());
}

BENCHMARK(Profiles_lcms2)->RangeMultiplier(10)->Range(10, 10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(Profiles_first)->RangeMultiplier(10)->Range(10, 10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(Profiles_again)->RangeMultiplier(10)->Range(10, 10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(Qv02_memcpy)->Unit(benchmark::kMillisecond);
BENCHMARK(Qv02_read)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
