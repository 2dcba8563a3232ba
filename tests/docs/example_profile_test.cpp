// The profile that comes with the project for people to try things on: made here, byte by byte.
#include <gtest/gtest.h>

#include "docs/markdown.h"
#include "docs/session.h"
#include "support/icc_maker.h"

namespace docs_test {
namespace {

using support::bigEndian16;
using support::bigEndian32;
using support::xyzElement;

/// A curve that is one power, as 8.8 fixed-point number.
std::string gammaElement(std::uint16_t gamma) { return "curv" + bigEndian32(0) + bigEndian32(1) + bigEndian16(gamma); }

/// The sRGB primaries (adapted to D50, as ICC's own sRGB profiles have them) with a gamma of 2.2, and a QV02 document.
std::string exampleProfile() {
  constexpr std::uint16_t kGamma = 0x0233;
  return support::IccMaker()
      .description("Example")
      .tag("cprt", support::textElement("No copyright, use freely"))
      .tag("wtpt", xyzElement(0.9642, 1.0, 0.8249))
      .tag("rXYZ", xyzElement(0.4361, 0.2225, 0.0139))
      .tag("gXYZ", xyzElement(0.3851, 0.7169, 0.0971))
      .tag("bXYZ", xyzElement(0.1431, 0.0606, 0.7141))
      .tag("rTRC", gammaElement(kGamma))
      .tag("gTRC", gammaElement(kGamma))
      .tag("bTRC", gammaElement(kGamma))
      .tag("QV02", "QV02" + bigEndian32(0) +
                       R"(<?xml version="1.0" encoding="UTF-8"?><measurement device="example" white="D65"/>)")
      .bytes();
}

TEST(ExampleProfile, IsWhatItIsMadeOf) {
  const Session session;
  const std::string made = exampleProfile();
  EXPECT_TRUE(readFile(PROJECT_FOLDER "/devhost/example-profile.icc") == made)
      << "made: " << session.write("made.icc", made);
}

TEST(ExampleProfile, IsAProfileToOtherProgramsToo) {
  const std::string shown = support::runSuccessfully({"iccdump", "-v2", PROJECT_FOLDER "/devhost/example-profile.icc"});
  EXPECT_NE(shown.find("Example"), std::string::npos) << shown;
  EXPECT_NE(shown.find("QV02"), std::string::npos) << shown;
}

}  // namespace
}  // namespace docs_test
