// The profiles that are installed on this computer, beside what lcms2 and ArgyllCMS read.
#include <gmock/gmock.h>
#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "desktop/icc/icc_folders.h"
#include "desktop/icc/icc_profile.h"
#include "support/environment_variables.h"
#include "support/icu_text.h"
#include "support/process.h"

namespace {

using platform::desktop::IccFolders;
using platform::desktop::IccProfile;
using platform::desktop::IccTag;
using platform::desktop::InstalledProfile;
using testing::Ge;
using testing::SizeIs;

constexpr const char* kInstalled = "/usr/share/color";

bool isNamedLikeAProfile(const std::filesystem::path& path) {
  std::string extension = path.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return std::tolower(c); });
  return extension == ".icc" || extension == ".icm";
}

std::vector<std::string> profileFiles() {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(kInstalled)) {
    if (entry.is_regular_file() && isNamedLikeAProfile(entry.path())) {
      files.push_back(entry.path().string());
    }
  }
  return files;
}

std::string fourCharacters(std::uint32_t signature) {
  return {static_cast<char>(signature >> 24), static_cast<char>(signature >> 16), static_cast<char>(signature >> 8),
          static_cast<char>(signature)};
}

std::uint32_t signatureOf(const std::string& four_characters) {
  std::uint32_t signature = 0;
  for (const char character : four_characters) {
    signature = signature << 8 | static_cast<unsigned char>(character);
  }
  return signature;
}

struct ClassAndName {
  std::string profile_class;
  std::string name;
  friend bool operator==(const ClassAndName&, const ClassAndName&) = default;
};

void PrintTo(const ClassAndName& value, std::ostream* out) {
  *out << value.profile_class << " \"" << value.name << '"';
}

using Profile = std::unique_ptr<void, decltype([](void* profile) { cmsCloseProfile(profile); })>;

std::map<std::string, ClassAndName> listOfLcms(const char* language, const char* country) {
  std::map<std::string, ClassAndName> list;
  for (const std::string& file : profileFiles()) {
    const Profile profile(cmsOpenProfileFromFile(file.c_str(), "r"));
    if (!profile) {
      continue;
    }
    const cmsUInt32Number size = cmsGetProfileInfo(profile.get(), cmsInfoDescription, language, country, nullptr, 0);
    std::wstring name(size / sizeof(wchar_t), L'\0');
    cmsGetProfileInfo(profile.get(), cmsInfoDescription, language, country, name.data(), size);
    name.resize(std::min(name.find(L'\0'), name.size()));
    list[file] = {fourCharacters(cmsGetDeviceClass(profile.get())),
                  support::utf8ByIcu(std::u16string(name.begin(), name.end())).value_or("no text")};
  }
  return list;
}

std::map<std::string, ClassAndName> ownList(const char* locale) {
  const auto language = support::userLanguage({{"LC_ALL", locale}});
  IccFolders folders({kInstalled});
  std::map<std::string, ClassAndName> list;
  folders.visit([&](const InstalledProfile& entry) {
    list[entry.path.value()] = {entry.profile_class.value_or("(none)"), entry.description.value_or("(none)")};
    return true;
  });
  return list;
}

TEST(InstalledProfiles, AreThoseThatLcmsReads) {
  const auto expected = listOfLcms("en", "US");
  ASSERT_THAT(expected, SizeIs(Ge(30U))) << "packages colord-data and icc-profiles-free are needed";
  EXPECT_EQ(ownList("en_US.UTF-8"), expected);
}

TEST(InstalledProfiles, AreNamedInTheUsersLanguageAsByLcms) {
  EXPECT_EQ(ownList("de_DE.UTF-8"), listOfLcms("de", "DE"));
  EXPECT_EQ(ownList("pt_BR.UTF-8"), listOfLcms("pt", "BR"));
  EXPECT_EQ(ownList("uk"), listOfLcms("uk", "UA"));
}

TEST(InstalledProfiles, HaveTheTagsThatLcmsSees) {
  std::size_t tags = 0;
  for (const std::string& file : profileFiles()) {
    const Profile lcms(cmsOpenProfileFromFile(file.c_str(), "r"));
    const auto profile = IccProfile::open(file);
    ASSERT_EQ(profile.has_value(), lcms != nullptr) << file;
    if (!lcms) {
      continue;
    }
    for (int i = 0; i < cmsGetTagCount(lcms.get()); ++i) {
      const cmsTagSignature signature = cmsGetTagSignature(lcms.get(), static_cast<cmsUInt32Number>(i));
      const auto tag = profile->find(signature);
      ASSERT_TRUE(tag) << file << ' ' << fourCharacters(signature);
      std::string expected(cmsReadRawTag(lcms.get(), signature, nullptr, 0), '\0');
      cmsReadRawTag(lcms.get(), signature, expected.data(), static_cast<cmsUInt32Number>(expected.size()));
      std::string element(tag->size, '\0');
      ASSERT_TRUE(profile->read(tag->offset, element.data(), element.size()));
      EXPECT_TRUE(element == expected) << file << ' ' << fourCharacters(signature);
      ++tags;
    }
    for (const char* const absent : {"QV02", "DESC", "desC", "Desc", "zzzz", "    "}) {
      const std::uint32_t signature = signatureOf(absent);
      EXPECT_EQ(profile->find(signature).has_value(),
                cmsIsTag(lcms.get(), static_cast<cmsTagSignature>(signature)) != 0)
          << file << ' ' << absent;
    }
  }
  EXPECT_GT(tags, 300U);
}

/// The tag table that iccdump prints for a file; nothing for a profile of version 4, which it does not read.
std::vector<IccTag> tagsOfIccdump(const std::string& file) {
  std::istringstream lines(support::run({"iccdump", "-v1", file}).output);
  std::vector<IccTag> tags;
  for (std::string line; std::getline(lines, line);) {
    IccTag* const last = tags.empty() ? nullptr : &tags.back();
    std::array<char, 5> signature{};
    if (std::sscanf(line.c_str(), "  sig      '%4c'", signature.data()) == 1) {
      tags.push_back({signatureOf(signature.data()), 0, 0});
    } else if (last != nullptr && last->offset == 0) {
      std::sscanf(line.c_str(), "  offset   %u", &last->offset);
    } else if (last != nullptr && last->size == 0) {
      std::sscanf(line.c_str(), "  size     %u", &last->size);
    }
  }
  return tags;
}

TEST(InstalledProfiles, HaveTheTagsThatIccdumpPrints) {
  std::size_t tags = 0;
  for (const std::string& file : profileFiles()) {
    const auto profile = IccProfile::open(file);
    ASSERT_TRUE(profile) << file;
    for (const IccTag& tag : tagsOfIccdump(file)) {
      EXPECT_EQ(profile->find(tag.signature), tag) << file << ' ' << fourCharacters(tag.signature);
      ++tags;
    }
  }
  EXPECT_GT(tags, 200U);
}

}  // namespace
