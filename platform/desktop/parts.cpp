#include "desktop/parts.h"

#include <dlfcn.h>

#include <cstdio>

namespace platform::desktop {
namespace {

/// The part's table, exported under this name by the library in the folder of this one.
const void* load(const char* library, const char* table) {
  Dl_info self{};
  dladdr(reinterpret_cast<const void*>(&load), &self);
  const std::string path = self.dli_fname;
  void* const loaded = dlopen((path.substr(0, path.rfind('/') + 1) + library).c_str(), RTLD_LAZY | RTLD_LOCAL);
  const void* const found = loaded == nullptr ? nullptr : dlsym(loaded, table);
  if (found == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
  }
  return found;
}

}  // namespace

const X11Part* x11Part() {
  static const auto* const part = static_cast<const X11Part*>(load("libOstrevinX11.so", "ostrevin_x11_part"));
  return part;
}

const ColordPart* colordPart() {
  static const auto* const part = static_cast<const ColordPart*>(load("libOstrevinColord.so", "ostrevin_colord_part"));
  return part;
}

const GamutPart* gamutPart() {
  static const auto* const part = static_cast<const GamutPart*>(load("libOstrevinGamut.so", "ostrevin_gamut_part"));
  return part;
}

XServerReport askXServer() {
  const X11Part* const part = x11Part();
  return part == nullptr ? XServerReport{} : part->ask();
}

ColordReport askColord(const std::vector<Display>& displays) {
  const ColordPart* const part = colordPart();
  return part == nullptr ? ColordReport{} : part->ask(displays);
}

std::optional<ColorSpace> colorSpaceOf(const IccProfile& file) {
  const GamutPart* const part = gamutPart();
  return part == nullptr ? std::nullopt : part->color_space(file);
}

}  // namespace platform::desktop
