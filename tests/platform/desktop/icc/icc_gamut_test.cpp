#include "desktop/icc/icc_gamut.h"

#include <gtest/gtest.h>
#include <lcms2.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "desktop/parts.h"
#include "support/icc_maker.h"
#include "support/temporary_folder.h"

namespace {

using platform::desktop::ColorSpace;
using platform::desktop::gamutPart;
using platform::desktop::IccProfile;
using support::IccMaker;
using support::TemporaryFolder;
using support::xyzElement;

constexpr cmsCIExyY kD65 = {0.3127, 0.3290, 1};
constexpr cmsCIExyY kD50 = {0.3457, 0.3585, 1};

std::string saved(cmsHPROFILE profile, double version) {
  cmsSetProfileVersion(profile, version);
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile, nullptr, &size);
  std::string bytes(size, '\0');
  cmsSaveProfileToMem(profile, bytes.data(), &size);
  cmsCloseProfile(profile);
  return bytes;
}

/// A profile with these primaries, by lcms2.
std::string rgbProfile(const cmsCIExyY& white, const cmsCIExyYTRIPLE& primaries, double gamma = 2.2,
                       double version = 4.3) {
  cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
  std::array<cmsToneCurve*, 3> curves = {curve, curve, curve};
  const cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves.data());
  cmsFreeToneCurve(curve);
  return saved(profile, version);
}

std::optional<ColorSpace> tryToMakeSpace(const std::string& bytes) {
  const TemporaryFolder folder;
  return gamutPart().color_space(IccProfile::open(folder.write("a.icc", bytes)).value());
}

ColorSpace spaceOf(const std::string& bytes) {
  const auto space = tryToMakeSpace(bytes);
  EXPECT_TRUE(space);
  return space.value_or(ColorSpace{});
}

TEST(WideGamut, IsFalseForSrgb) {
  const ColorSpace space = spaceOf(saved(cmsCreate_sRGBProfile(), 4.3));
  EXPECT_TRUE(space.is_rgb);
  EXPECT_FALSE(space.is_wide);
}

TEST(WideGamut, IsTrueForDisplayP3) {
  EXPECT_TRUE(spaceOf(rgbProfile(kD65, {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}})).is_wide);
}

TEST(WideGamut, IsTrueForDciP3) {
  EXPECT_TRUE(
      spaceOf(rgbProfile({0.314, 0.351, 1}, {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}}, 2.6)).is_wide);
}

TEST(WideGamut, IsTrueForAdobeRgb) {
  EXPECT_TRUE(spaceOf(rgbProfile(kD65, {{0.640, 0.330, 1}, {0.210, 0.710, 1}, {0.150, 0.060, 1}})).is_wide);
}

TEST(WideGamut, IsTrueForRec2020InBothVersionsOfProfiles) {
  const cmsCIExyYTRIPLE primaries = {{0.708, 0.292, 1}, {0.170, 0.797, 1}, {0.131, 0.046, 1}};
  EXPECT_TRUE(spaceOf(rgbProfile(kD65, primaries, 2.4, 4.3)).is_wide);
  EXPECT_TRUE(spaceOf(rgbProfile(kD65, primaries, 2.4, 2.1)).is_wide);
}

TEST(WideGamut, IsTrueForProPhoto) {
  EXPECT_TRUE(spaceOf(rgbProfile(kD50, {{0.7347, 0.2653, 1}, {0.1596, 0.8404, 1}, {0.0366, 0.0001, 1}}, 1.8)).is_wide);
}

TEST(WideGamut, IsFalseForAnOfficeMonitor) {
  EXPECT_FALSE(spaceOf(rgbProfile(kD65, {{0.652, 0.335, 1}, {0.321, 0.614, 1}, {0.154, 0.063, 1}})).is_wide);
}

TEST(WideGamut, IsTrueForNearlyAllOfP3) {
  EXPECT_TRUE(spaceOf(rgbProfile(kD65, {{0.675, 0.322, 1}, {0.268, 0.680, 1}, {0.151, 0.062, 1}})).is_wide);
}

TEST(WideGamut, DoesNotDependOnTheOrderOfThePrimaries) {
  EXPECT_TRUE(spaceOf(rgbProfile(kD65, {{0.170, 0.797, 1}, {0.708, 0.292, 1}, {0.131, 0.046, 1}})).is_wide);
}

/// A profile with a table from RGB to Lab in place of primaries: what `matrix_profile` makes of each grid point.
std::string tableProfile(const std::string& matrix_profile) {
  const cmsHPROFILE source =
      cmsOpenProfileFromMem(matrix_profile.data(), static_cast<cmsUInt32Number>(matrix_profile.size()));
  const cmsHPROFILE lab = cmsCreateLab4Profile(nullptr);
  const cmsHTRANSFORM transform =
      cmsCreateTransform(source, TYPE_RGB_16, lab, TYPE_Lab_16, INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOOPTIMIZE);
  cmsStage* const table = cmsStageAllocCLut16bit(nullptr, 9, 3, 3, nullptr);
  cmsStageSampleCLut16bit(
      table,
      [](const cmsUInt16Number in[], cmsUInt16Number out[], void* cargo) {
        cmsDoTransform(cargo, in, out, 1);
        return 1;
      },
      transform, 0);
  cmsPipeline* const pipeline = cmsPipelineAlloc(nullptr, 3, 3);
  cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, 3, nullptr));
  cmsPipelineInsertStage(pipeline, cmsAT_END, table);
  cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, 3, nullptr));
  const cmsHPROFILE made = cmsCreateProfilePlaceholder(nullptr);
  cmsSetDeviceClass(made, cmsSigDisplayClass);
  cmsSetColorSpace(made, cmsSigRgbData);
  cmsSetPCS(made, cmsSigLabData);
  cmsWriteTag(made, cmsSigMediaWhitePointTag, cmsD50_XYZ());
  cmsSetProfileVersion(made, 4.3);
  cmsWriteTag(made, cmsSigAToB0Tag, pipeline);
  const std::string bytes = saved(made, 4.3);
  cmsPipelineFree(pipeline);
  cmsDeleteTransform(transform);
  cmsCloseProfile(lab);
  cmsCloseProfile(source);
  return bytes;
}

TEST(WideGamut, IsFoundInAProfileOfTables) {
  const cmsCIExyYTRIPLE rec2020 = {{0.708, 0.292, 1}, {0.170, 0.797, 1}, {0.131, 0.046, 1}};
  EXPECT_TRUE(spaceOf(tableProfile(rgbProfile(kD65, rec2020))).is_wide);
  EXPECT_FALSE(spaceOf(tableProfile(saved(cmsCreate_sRGBProfile(), 4.3))).is_wide);
}

TEST(WideGamut, IsFoundInAProfileWithMoreTagsThanLcmsAccepts) {
  IccMaker maker;
  for (int i = 100; i < 400; ++i) {
    maker.tag("x" + std::to_string(i), "1234");
  }
  maker.tag("wtpt", xyzElement(0.9642, 1, 0.8249));
  maker.tag("rXYZ", xyzElement(0.7977, 0.2880, 0.0000));
  maker.tag("gXYZ", xyzElement(0.1352, 0.7119, 0.0000));
  maker.tag("bXYZ", xyzElement(0.0313, 0.0001, 0.8249));
  EXPECT_TRUE(spaceOf(maker.bytes()).is_wide);
}

TEST(WideGamut, IsFalseWithoutPrimaries) {
  const ColorSpace space = spaceOf(IccMaker().bytes());
  EXPECT_TRUE(space.is_rgb);
  EXPECT_FALSE(space.is_wide);
}

TEST(WideGamut, IsFalseForBlackPrimaries) {
  IccMaker maker;
  for (const char* const signature : {"rXYZ", "gXYZ", "bXYZ"}) {
    maker.tag(signature, xyzElement(0, 0, 0));
  }
  EXPECT_FALSE(spaceOf(maker.bytes()).is_wide);
}

TEST(WideGamut, IsFalseForASpaceThatIsNotRgb) {
  IccMaker maker;
  maker.colorSpace("GRAY").tag("rXYZ", xyzElement(0.7977, 0.2880, 0)).tag("gXYZ", xyzElement(0.1352, 0.7119, 0));
  maker.tag("bXYZ", xyzElement(0.0313, 0.0001, 0.8249));
  const ColorSpace space = spaceOf(maker.bytes());
  EXPECT_FALSE(space.is_rgb);
  EXPECT_FALSE(space.is_wide);
}

TEST(ColorSpace, IsMadeFromTheClassesThatDescribeOne) {
  for (const char* const profile_class : {"mntr", "scnr", "prtr", "spac"}) {
    EXPECT_TRUE(tryToMakeSpace(IccMaker().deviceClass(profile_class).bytes())) << profile_class;
  }
  for (const char* const profile_class : {"link", "abst", "nmcl"}) {
    EXPECT_FALSE(tryToMakeSpace(IccMaker().deviceClass(profile_class).bytes())) << profile_class;
  }
}

TEST(ColorSpace, IsMadeWithoutATableThatIsLargerThanTheFile) {
  // lut16: 3 inputs, 3 outputs, 255 grid points in each direction, and nothing behind the head.
  std::string table = "mft2" + support::bigEndian32(0) + std::string("\x03\x03\xFF\x00", 4) + std::string(36, '\0');
  table += support::bigEndian16(2) + support::bigEndian16(2) + std::string(24, '\0');
  EXPECT_FALSE(spaceOf(IccMaker().tag("A2B0", table).bytes()).is_wide);
}

TEST(ColorSpace, IgnoresAnElementAboveTheBound) {
  IccMaker maker;
  maker.tag("A2B0", std::string((16 << 20) + 1, 'x')).tag("rXYZ", xyzElement(0.7977, 0.2880, 0));
  maker.tag("gXYZ", xyzElement(0.1352, 0.7119, 0)).tag("bXYZ", xyzElement(0.0313, 0.0001, 0.8249));
  EXPECT_TRUE(spaceOf(maker.bytes()).is_wide);
}

}  // namespace
