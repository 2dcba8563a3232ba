// ICC profile files: listing, description, tags and gamut. The tag table and the elements are compared with those that
// a second, plain reader finds in memory.
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "desktop/current.h"
#include "desktop/icc/icc_gamut.h"
#include "desktop/icc/icc_profile.h"
#include "desktop/icc/icc_text.h"
#include "desktop/model/language.h"
#include "fuzz/support/fuzzing.h"
#include "fuzz/support/icc_reference.h"
#include "profile/profile_services.h"
#include "support/icu_text.h"
#include "support/scripted.h"
#include "support/temporary_folder.h"

namespace {

using fuzz::ReferenceProfile;
using fuzz::require;
using platform::desktop::IccProfile;
using platform::desktop::IccTag;
using platform::desktop::InstalledProfile;
using platform::desktop::Language;
using OptionalText = std::optional<std::string>;

/// The file, and a folder in which there is nothing else.
class Installed {
 public:
  Installed() : desktop_(std::make_shared<support::FolderDesktop>(folder_.path())) {
    require(symlink(file_.path().c_str(), path().c_str()) == 0, "a link can be made");
    platform::desktop::setCurrent(desktop_);
  }

  std::string path() const { return folder_.path("a.icc"); }
  const fuzz::MemoryFile& file() const { return file_; }
  support::FolderDesktop& desktop() const { return *desktop_; }

 private:
  fuzz::MemoryFile file_;
  support::TemporaryFolder folder_;
  std::shared_ptr<support::FolderDesktop> desktop_;
};

std::uint32_t numberOf(std::string_view signature) {
  std::uint32_t number = 0;
  for (const char byte : signature) {
    number = number * 256 + static_cast<unsigned char>(byte);
  }
  return number;
}

void checkElement(const IccProfile& profile, const ReferenceProfile& reference, std::string_view signature) {
  const std::optional<IccTag> tag = profile.find(numberOf(signature));
  const std::optional<std::string_view> expected = reference.element(signature);
  require(tag.has_value() == expected.has_value(), "a tag is found when the plain reader finds it");
  if (!tag) {
    return;
  }
  std::string element(tag->size, '\0');
  require(profile.read(tag->offset, element.data(), element.size()) && element == *expected,
          "an element is what the file has in its place");
}

OptionalText checkedText(const IccProfile& profile, const IccTag& tag, const Language& language) {
  OptionalText text = platform::desktop::readIccText(profile, tag, language);
  if (text) {
    require(text->find('\0') == std::string::npos, "a text ends at its first NUL");
    require(support::utf16ByIcu(*text).has_value(), "a text is UTF-8");
    require(text->size() <= 3 * std::size_t{tag.size}, "a byte of an element gives at most one character of three");
  }
  return text;
}

/// The description in the user's language.
OptionalText checkTexts(const IccProfile& profile) {
  const auto tag = profile.find(platform::desktop::iccSignature("desc"));
  if (!tag) {
    return std::nullopt;
  }
  checkedText(profile, *tag, {"de", "AT"});
  checkedText(profile, *tag, {"", ""});
  return checkedText(profile, *tag, platform::desktop::userLanguage());
}

void checkGamut(const IccProfile& profile) {
  const auto space = platform::desktop::colorSpaceOf(profile);
  require(!space || space->is_rgb || !space->is_wide, "only RGB is wide");
}

void checkListing(const Installed& installed, const std::optional<ReferenceProfile>& reference,
                  const OptionalText& description) {
  std::size_t visited = 0;
  installed.desktop().visitInstalledProfiles([&](const InstalledProfile& profile) {
    ++visited;
    require(profile.path == installed.path(), "a profile is listed by its own path");
    require(reference && profile.profile_class.value_or("") == reference->profile_class, "its class is the header's");
    require(profile.description == description, "its description is that of its 'desc' tag");
    return true;
  });
  require(visited == (reference ? 1 : 0), "only a profile is listed, and once");

  const ProfileServices::InstalledProfiles listed = ProfileServices::ListAllInstalledProfiles();
  const bool is_expected = reference && reference->profile_class == "mntr" && description;
  require(listed.size() == (is_expected ? 1 : 0), "the plugin lists display profiles that have a description");
  if (is_expected) {
    const std::string name = description->substr(std::min(description->find_first_not_of(' '), description->size()));
    const auto& [listed_path, listed_name] = *listed.begin();
    require(listed_path == installed.path() && listed_name == name, "the plugin gives the path and the description");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Installed installed;
  const std::string_view content(reinterpret_cast<const char*>(data), size);
  installed.file().write(content);

  const auto profile = IccProfile::open(installed.file().path());
  const auto reference = fuzz::readReference(content);
  require(profile.has_value() == reference.has_value(), "the plain reader takes the same files for profiles");
  OptionalText description;
  if (profile) {
    require(profile->deviceClass().value_or("") == reference->profile_class, "the class is the header's");
    constexpr std::size_t kLinesLookedAt = 16;
    for (std::size_t i = 0; i < std::min(reference->lines.size(), kLinesLookedAt); ++i) {
      checkElement(*profile, *reference, reference->lines[i].signature);
    }
    checkElement(*profile, *reference, "QV02");
    description = checkTexts(*profile);
    checkGamut(*profile);
  }
  checkListing(installed, reference, description);
  return 0;
}
