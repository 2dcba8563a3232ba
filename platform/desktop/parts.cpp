#include "desktop/parts.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace platform::desktop {
namespace {

/// The part's table, exported under this name by the library in the folder of this one; else `none`.
template <typename Part>
const Part& load(const char* library, const char* table, const Part& none) {
  Dl_info self{};
  dladdr(&none, &self);
  const std::string path = self.dli_fname;
  // Lazy, since the libraries of these libraries have thousands of functions and few are called.
  void* const loaded = dlopen((path.substr(0, path.rfind('/') + 1) + library).c_str(), RTLD_LAZY | RTLD_LOCAL);
  const void* const found = loaded == nullptr ? nullptr : dlsym(loaded, table);
  if (found == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return none;
  }
  return *static_cast<const Part*>(found);
}

WaylandReport reportNoLibrary() {
  const char* const name = std::getenv("WAYLAND_DISPLAY");
  return {.state = WaylandState::kNoLibrary, .socket = name == nullptr ? "" : name};
}

constexpr WaylandPart kNoWayland{.displays = [] { return WaylandSource([](bool) { return nullptr; }); },
                                 .ask = reportNoLibrary};
constexpr X11Part kNoX11{.displays = [] { return ArrangementSource([] { return nullptr; }); },
                         .ask = [] { return XServerReport{}; }};
constexpr ColordPart kNoColord{
    .visit = [](const ArrangementSource&, const DeviceProfileVisitor&) {},
    .assign = [](const ArrangementSource&, const Uuid&, const std::string&) { return false; },
    .prepare = [] {},
    .ask = [](const std::vector<Display>&) { return ColordReport{}; }};
constexpr GamutPart kNoGamut{.color_space = [](const IccProfile&) { return std::optional<ColorSpace>(); }};

}  // namespace

const WaylandPart& waylandPart() {
  static const WaylandPart& part = load("libOstrevinWayland.so", "ostrevin_wayland_part", kNoWayland);
  return part;
}

const X11Part& x11Part() {
  static const X11Part& part = load("libOstrevinX11.so", "ostrevin_x11_part", kNoX11);
  return part;
}

const ColordPart& colordPart() {
  static const ColordPart& part = load("libOstrevinColord.so", "ostrevin_colord_part", kNoColord);
  return part;
}

const GamutPart& gamutPart() {
  static const GamutPart& part = load("libOstrevinGamut.so", "ostrevin_gamut_part", kNoGamut);
  return part;
}

}  // namespace platform::desktop
