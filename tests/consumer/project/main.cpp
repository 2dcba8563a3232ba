// Uses the library as a C++ library: through the facade's and the services' headers and the installed CMake package.
// Elsewhere than on a Mac the displays are those of desktop.json.
#include <display/display_services.h>
#include <plugin/display.h>
#include <profile/profile_iterator.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

namespace {

int problems = 0;

template <typename Value>
void expect(const char* what, const Value& found, const Value& expected) {
  if (found != expected) {
    std::cerr << what << ": found " << found << ", expected " << expected << '\n';
    ++problems;
  }
}

/// The services' shared state, which their headers declare.
void expectEmptyState() {
  using DisplayServices::device_iterator;
  using ProfileServices::profile_iterator;
  expect("the UUID that was sought", device_iterator::inUUIDstr == nullptr, true);
  expect("the profile that was found", device_iterator::profile_path == nullptr, true);
  expect("the device that was found", device_iterator::device_name == nullptr, true);
  expect("the list of devices", device_iterator::devices_info == nullptr, true);
  expect("the display that was listed", profile_iterator::inUUIDstr == nullptr, true);
  expect<std::size_t>("the number of installed profiles", profile_iterator::installed_profiles.size(), 0);
  expect<std::size_t>("the number of a display's profiles", profile_iterator::associated_profiles.size(), 0);
  expect<std::size_t>("the number of monitors", DisplayServices::monitors_set::initialSet.size(), 0);
}

}  // namespace

int main() {
  expectEmptyState();
#ifndef __APPLE__
  expect<std::uint32_t>("the index of display 71", Display::GetIndex(71), 1);
  expect<std::uint32_t>("the index of display 72", Display::GetIndex(72), 0);
  expect("the scale of display 71", Display::GetScale(71), 1.0);
  expect("the scale of display 72", Display::GetScale(72), 1.5);
  expect<std::string>("the name of display 71", Display::GetName(71), "Left");
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;
  Display::GetMonitorRect(71, &left, &top, &right, &bottom);
  expect<std::int32_t>("the left edge of display 71", left, -1920);
  expect<std::int32_t>("the right edge of display 71", right, 0);
  expect<std::int32_t>("the bottom edge of display 71", bottom, 1440);
  DisplayServices::BuildInitialMonitorsSet();
  expect<std::size_t>("the number of monitors", DisplayServices::monitors_set::initialSet.size(), 2);
#endif
  expect<std::uint32_t>("the index of a display that is not there", Display::GetIndex(0), 4099018739U);
  return problems == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
