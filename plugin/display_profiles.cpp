#include "plugin/display.h"
#include "profile/profile_services.h"
#include "strings/string_services.h"

namespace Display {

std::map<std::string, std::string> ListAllInstalledProfiles() { return ProfileServices::ListAllInstalledProfiles(); }

std::map<std::string, std::tuple<std::string, bool, bool>> ListProfilesForDisplay(std::uint32_t displayID) {
  return ProfileServices::ListProfilesForDisplay(displayID);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value is this function's exported signature
bool ICCTagExists(std::string path, std::string tag) {
  const CFURLRef url = StringServices::POSIXPathToCFURLRef(path.c_str());
  return ProfileServices::ICCTagExists(url, StringServices::UTF8StringToCFString(tag.c_str()));
}

std::int32_t QV02Read(const char* path, std::optional<std::string>& xml) {
  return ProfileServices::QV02Read(StringServices::POSIXPathToCFURLRef(path), xml);
}

}  // namespace Display
