#include "desktop/icc/icc_gamut.h"

#include <lcms2.h>
#include <lcms2_plugin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace platform::desktop {
namespace {

constexpr double kLeastShareOfP3 = 0.9;

/// lcms2 gets no larger element, and may allocate no larger piece of memory.
constexpr std::uint32_t kMaxElement = 16 << 20;

// --- lcms2, with a bound on what it may allocate: a profile gives the size of its tables itself

void* boundedMalloc(cmsContext, cmsUInt32Number size) { return size <= kMaxElement ? std::malloc(size) : nullptr; }
void boundedFree(cmsContext, void* memory) { std::free(memory); }
void* boundedRealloc(cmsContext, void* memory, cmsUInt32Number size) {
  return size <= kMaxElement ? std::realloc(memory, size) : nullptr;
}

struct CloseContext {
  void operator()(cmsContext context) const { cmsDeleteContext(context); }
};
struct CloseProfile {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
struct CloseTransform {
  void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Context = std::unique_ptr<std::remove_pointer_t<cmsContext>, CloseContext>;
using LcmsProfile = std::unique_ptr<void, CloseProfile>;
using Transform = std::unique_ptr<void, CloseTransform>;

Context makeContext() {
  cmsPluginMemHandler memory{};
  memory.base = {cmsPluginMagicNumber, 2000, cmsPluginMemHandlerSig, nullptr};
  memory.MallocPtr = boundedMalloc;
  memory.FreePtr = boundedFree;
  memory.ReallocPtr = boundedRealloc;
  return Context(cmsCreateContext(&memory, nullptr));
}

// --- gamuts

struct Chromaticity {
  double x = 0;
  double y = 0;
};
using Primaries = std::array<cmsCIEXYZ, 3>;

/// Twice the area of the triangle in CIE 1931 xy.
double area(const Primaries& primaries) {
  std::array<Chromaticity, 3> corner;
  for (std::size_t i = 0; i < corner.size(); ++i) {
    const cmsCIEXYZ& color = primaries[i];
    const double sum = color.X + color.Y + color.Z;
    corner[i] = {color.X / sum, color.Y / sum};
  }
  return std::abs((corner[1].x - corner[0].x) * (corner[2].y - corner[0].y) -
                  (corner[2].x - corner[0].x) * (corner[1].y - corner[0].y));
}

std::optional<Primaries> colorants(cmsHPROFILE profile) {
  constexpr std::array<cmsTagSignature, 3> kColorants = {cmsSigRedColorantTag, cmsSigGreenColorantTag,
                                                         cmsSigBlueColorantTag};
  Primaries primaries;
  for (std::size_t i = 0; i < kColorants.size(); ++i) {
    const auto* const color = static_cast<const cmsCIEXYZ*>(cmsReadTag(profile, kColorants[i]));
    if (color == nullptr) {
      return std::nullopt;
    }
    primaries[i] = *color;
  }
  return primaries;
}

/// What the profile's table makes of full red, green and blue.
std::optional<Primaries> tablePrimaries(cmsContext context, cmsHPROFILE profile) {
  const LcmsProfile xyz(cmsCreateXYZProfileTHR(context));
  if (!xyz) {
    return std::nullopt;
  }
  const Transform transform(cmsCreateTransformTHR(context, profile, TYPE_RGB_DBL, xyz.get(), TYPE_XYZ_DBL,
                                                  INTENT_RELATIVE_COLORIMETRIC,
                                                  cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE));
  if (!transform) {
    return std::nullopt;
  }
  constexpr std::array<double, 9> kFullColors = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  Primaries primaries;
  cmsDoTransform(transform.get(), kFullColors.data(), primaries.data(), static_cast<cmsUInt32Number>(primaries.size()));
  return primaries;
}

double areaOfDisplayP3() {
  constexpr cmsCIExyY kD65 = {0.3127, 0.3290, 1};
  constexpr cmsCIExyYTRIPLE kP3 = {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}};
  const std::unique_ptr<cmsToneCurve, void (*)(cmsToneCurve*)> linear(cmsBuildGamma(nullptr, 1), cmsFreeToneCurve);
  std::array<cmsToneCurve*, 3> curves;
  curves.fill(linear.get());
  const LcmsProfile profile(cmsCreateRGBProfile(&kD65, &kP3, curves.data()));
  const auto primaries = profile ? colorants(profile.get()) : std::nullopt;
  return primaries ? area(*primaries) : INFINITY;
}

bool isWide(const Primaries& primaries) {
  static const double kLeastArea = kLeastShareOfP3 * areaOfDisplayP3();
  return area(primaries) >= kLeastArea;  // false, too, for NaN
}

// --- the part of a profile that lcms2 needs for this, in memory

void putBigEndian32(std::uint8_t* bytes, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) {
    bytes[i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
  }
}

/// A profile with the same header and only the tags that describe the device's colours, since the file may have more
/// tags than lcms2 accepts.
std::vector<std::uint8_t> colorPart(const IccProfile& profile) {
  constexpr std::array<std::uint32_t, 9> kTags = {iccSignature("rXYZ"), iccSignature("gXYZ"), iccSignature("bXYZ"),
                                                  iccSignature("wtpt"), iccSignature("rTRC"), iccSignature("gTRC"),
                                                  iccSignature("bTRC"), iccSignature("A2B0"), iccSignature("A2B1")};
  constexpr std::size_t kEntrySize = 12;
  const std::size_t table = IccProfile::kHeaderSize + 4;
  std::vector<std::uint8_t> part(table + kTags.size() * kEntrySize);
  std::copy(profile.header().begin(), profile.header().end(), part.begin());
  std::uint32_t count = 0;
  for (const std::uint32_t signature : kTags) {
    const auto tag = profile.find(signature);
    const std::size_t offset = (part.size() + 3) / 4 * 4;
    if (!tag || tag->size > kMaxElement - std::min<std::size_t>(offset, kMaxElement)) {
      continue;
    }
    part.resize(offset + tag->size);
    if (!profile.read(tag->offset, part.data() + offset, tag->size)) {
      return {};
    }
    std::uint8_t* const entry = &part[table + count++ * kEntrySize];
    putBigEndian32(entry, signature);
    putBigEndian32(entry + 4, static_cast<std::uint32_t>(offset));
    putBigEndian32(entry + 8, tag->size);
  }
  putBigEndian32(part.data(), static_cast<std::uint32_t>(part.size()));
  putBigEndian32(&part[IccProfile::kHeaderSize], count);
  return part;
}

bool describesColorSpace(cmsProfileClassSignature profile_class) {
  return profile_class == cmsSigDisplayClass || profile_class == cmsSigInputClass ||
         profile_class == cmsSigOutputClass || profile_class == cmsSigColorSpaceClass;
}

}  // namespace

std::optional<ColorSpace> colorSpaceOf(const IccProfile& file) {
  const std::vector<std::uint8_t> part = colorPart(file);
  const Context context = makeContext();
  if (part.empty() || !context) {
    return std::nullopt;
  }
  const LcmsProfile profile(
      cmsOpenProfileFromMemTHR(context.get(), part.data(), static_cast<cmsUInt32Number>(part.size())));
  if (!profile || !describesColorSpace(cmsGetDeviceClass(profile.get()))) {
    return std::nullopt;
  }
  ColorSpace space;
  space.is_rgb = cmsGetColorSpace(profile.get()) == cmsSigRgbData;
  if (space.is_rgb) {
    auto primaries = colorants(profile.get());
    if (!primaries) {
      primaries = tablePrimaries(context.get(), profile.get());
    }
    space.is_wide = primaries && isWide(*primaries);
  }
  return space;
}

}  // namespace platform::desktop
