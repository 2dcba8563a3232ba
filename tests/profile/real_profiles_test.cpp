// The list of this computer's own profiles, and their tags, compared with lcms2's reading of the same files.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <lcms2.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/owned_ref.h"
#include "desktop/current.h"
#include "profile/profile_services.h"
#include "support/temporary_folder.h"

namespace {

using Profile = std::unique_ptr<void, decltype([](void* profile) { cmsCloseProfile(profile); })>;

std::vector<std::string> profileFiles() {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator("/usr/share/color/icc")) {
    std::string extension = entry.path().extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char letter) { return std::tolower(letter); });
    if (entry.is_regular_file() && (extension == ".icc" || extension == ".icm")) {
      files.push_back(entry.path().string());
    }
  }
  return files;
}

OwnedRef<CFStringRef> string(const std::string& text) {
  return OwnedRef<CFStringRef>::adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                                              static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8,
                                                              false));
}

bool tagExists(const std::string& path, const std::string& signature) {
  const auto url = OwnedRef<CFURLRef>::adopt(
      CFURLCreateWithFileSystemPath(nullptr, string(path).get(), kCFURLPOSIXPathStyle, false));
  return ProfileServices::ICCTagExists(url.get(), string(signature).get());
}

/// The live desktop of a user without profiles of their own, in English.
class RealProfiles : public testing::Test {
 protected:
  RealProfiles() {
    setenv("HOME", home_.path().c_str(), 1);
    unsetenv("XDG_DATA_HOME");
    unsetenv("XDG_DATA_DIRS");
    setenv("LC_ALL", "C", 1);
    platform::desktop::setCurrent(platform::desktop::makeLiveDesktop());
  }
  ~RealProfiles() override { platform::desktop::setCurrent(nullptr); }

  support::TemporaryFolder home_;
};

TEST_F(RealProfiles, AreListedAsLcmsReadsThem) {
  std::map<std::string, std::string> expected;
  for (const std::string& file : profileFiles()) {
    const Profile profile(cmsOpenProfileFromFile(file.c_str(), "r"));
    if (!profile || cmsGetDeviceClass(profile.get()) != cmsSigDisplayClass) {
      continue;
    }
    std::string name(cmsGetProfileInfoASCII(profile.get(), cmsInfoDescription, "en", "US", nullptr, 0), '\0');
    cmsGetProfileInfoASCII(profile.get(), cmsInfoDescription, "en", "US", name.data(),
                           static_cast<cmsUInt32Number>(name.size()));
    name = name.c_str();
    expected[file] = name.substr(std::min(name.find_first_not_of(' '), name.size()));
  }
  ASSERT_GE(expected.size(), 30U) << "packages colord-data and icc-profiles-free are needed";
  EXPECT_EQ(ProfileServices::ListAllInstalledProfiles(), expected);
}

TEST_F(RealProfiles, HaveTheTagsThatLcmsReads) {
  std::size_t tags = 0;
  for (const std::string& file : profileFiles()) {
    const Profile profile(cmsOpenProfileFromFile(file.c_str(), "r"));
    ASSERT_TRUE(profile) << file;
    for (int i = 0; i < cmsGetTagCount(profile.get()); ++i) {
      const std::uint32_t number = cmsGetTagSignature(profile.get(), static_cast<cmsUInt32Number>(i));
      const std::string signature = {static_cast<char>(number >> 24), static_cast<char>(number >> 16),
                                     static_cast<char>(number >> 8), static_cast<char>(number)};
      EXPECT_TRUE(tagExists(file, signature)) << file << ' ' << signature;
      EXPECT_FALSE(tagExists(file, signature.substr(0, 3))) << file << ' ' << signature;
      EXPECT_FALSE(tagExists(file, signature + ' ')) << file << ' ' << signature;
      EXPECT_FALSE(tagExists(file, "é" + signature.substr(1))) << file << ' ' << signature;
      ++tags;
    }
    for (const char* const signature : {"QV02", "DESC", "Desc", "wTPT"}) {
      EXPECT_FALSE(tagExists(file, signature)) << file << ' ' << signature;
    }
  }
  EXPECT_GT(tags, 300U);
}

TEST_F(RealProfiles, IncludeTheUsers) {
  const std::string source = "/usr/share/color/icc/colord/AdobeRGB1998.icc";
  const std::string own = home_.path(".local/share/icc/mine.ICM");
  std::filesystem::create_directories(home_.path(".local/share/icc"));
  std::filesystem::copy_file(source, own);
  const auto profiles = ProfileServices::ListAllInstalledProfiles();
  ASSERT_TRUE(profiles.contains(own));
  EXPECT_EQ(profiles.at(own), profiles.at(source));
}

}  // namespace
