// The facade: converts between UTF-8 text and the platform's objects, and calls the services.
#include "plugin/display.h"

#include "display/display_services.h"
#include "display/internal.h"
#include "profile/profile_services.h"
#include "strings/string_services.h"

namespace Display {
namespace {

const char* textOrEmpty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace

// --- geometry

void GetMonitorRect(std::uint32_t displayID, std::int32_t* left, std::int32_t* top, std::int32_t* right,
                    std::int32_t* bottom) {
  const auto edges = DisplayServices::internal::edgesOf(displayID);
  *top = edges.top;
  *bottom = edges.bottom;
  *left = edges.left;
  *right = edges.right;
}

void GetMonitorRect(std::uint32_t displayID, double* x, double* y, double* width, double* height) {
  const CGRect bounds = DisplayServices::internal::boundsOf(displayID);
  *x = bounds.origin.x;
  *y = bounds.origin.y;
  *width = bounds.size.width;
  *height = bounds.size.height;
}

std::uint32_t GetIndex(std::uint32_t displayID) { return DisplayServices::internal::indexOf(displayID); }

double GetScale(std::uint32_t displayID) { return DisplayServices::ScaleFactorForDisplay(displayID); }

std::uint32_t DisplayIDForWindow(double left, double top, double width, double height) {
  return DisplayServices::internal::displayUnderWindow(left, top, width, height);
}

// --- name and profile of a display

const char* GetName(std::uint32_t displayID) {
  const CFStringRef name = DisplayServices::KnownDisplayForID(displayID);
  return textOrEmpty(StringServices::CFStringRefToUTF8String(name));
}

const char* GetProfilePath(std::uint32_t displayID) {
  // The URL's reference is deliberately not released.
  const CFURLRef url = DisplayServices::ProfilePathForDisplay(displayID);
  return textOrEmpty(StringServices::CFURLRefToPOSIXPath(url));
}

bool SetProfile(std::uint32_t displayID, const char* path) {
  return DisplayServices::SetProfileForDisplay(StringServices::POSIXPathToCFURLRef(path), displayID);
}

bool IsWideGamut(std::uint32_t displayID) { return DisplayServices::internal::isWideGamut(displayID); }

// --- lists of profiles

std::map<std::string, std::string> ListAllInstalledProfiles() { return ProfileServices::ListAllInstalledProfiles(); }

std::map<std::string, std::tuple<std::string, bool, bool>> ListProfilesForDisplay(std::uint32_t displayID) {
  return ProfileServices::ListProfilesForDisplay(displayID);
}

// --- inside a profile file

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value is this function's exported signature
bool ICCTagExists(std::string path, std::string tag) {
  const CFURLRef url = StringServices::POSIXPathToCFURLRef(path.c_str());
  return ProfileServices::ICCTagExists(url, StringServices::UTF8StringToCFString(tag.c_str()));
}

std::int32_t QV02Read(const char* path, std::optional<std::string>& xml) {
  return ProfileServices::QV02Read(StringServices::POSIXPathToCFURLRef(path), xml);
}

}  // namespace Display
