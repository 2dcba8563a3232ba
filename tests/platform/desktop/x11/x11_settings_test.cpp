#include "desktop/x11/x11_settings.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/temporary_folder.h"

namespace {

using platform::desktop::backingScale;
using platform::desktop::windowScalingFactor;
using platform::desktop::xftDpi;

using Bytes = std::vector<std::uint8_t>;

/// Writes the contents of a settings property.
class SettingsWriter {
 public:
  explicit SettingsWriter(std::uint32_t count, bool big_endian = false) : big_endian_(big_endian) {
    bytes_.push_back(big_endian ? 1 : 0);
    bytes_.resize(4);
    number(42, 4);
    number(count, 4);
  }

  SettingsWriter& integer(const std::string& name, std::int32_t value) {
    begin(0, name);
    number(static_cast<std::uint32_t>(value), 4);
    return *this;
  }
  SettingsWriter& string(const std::string& name, const std::string& value) {
    begin(1, name);
    number(static_cast<std::uint32_t>(value.size()), 4);
    text(value);
    return *this;
  }
  SettingsWriter& color(const std::string& name) {
    begin(2, name);
    bytes_.resize(bytes_.size() + 8);
    return *this;
  }
  const Bytes& bytes() const { return bytes_; }

 private:
  void begin(std::uint8_t type, const std::string& name) {
    bytes_.insert(bytes_.end(), {type, 0});
    number(static_cast<std::uint32_t>(name.size()), 2);
    text(name);
    number(7, 4);
  }
  void number(std::uint32_t value, unsigned size) {
    for (unsigned i = 0; i < size; ++i) {
      bytes_.push_back(static_cast<std::uint8_t>(value >> 8 * (big_endian_ ? size - 1 - i : i)));
    }
  }
  void text(const std::string& value) {
    bytes_.insert(bytes_.end(), value.begin(), value.end());
    bytes_.resize((bytes_.size() + 3) / 4 * 4);
  }

  bool big_endian_;
  Bytes bytes_;
};

constexpr const char* kName = "Gdk/WindowScalingFactor";

TEST(WindowScalingFactor, IsFoundAmongOthersInEitherByteOrder) {
  for (const bool big_endian : {false, true}) {
    SettingsWriter settings(4, big_endian);
    settings.string("Net/ThemeName", "Any").color("Some/Color").integer("Xft/DPI", 98304).integer(kName, 2);
    EXPECT_EQ(windowScalingFactor(settings.bytes()), 2);
  }
}

TEST(WindowScalingFactor, IsAbsentWhenNotAmongTheSettings) {
  EXPECT_EQ(windowScalingFactor(SettingsWriter(0).bytes()), std::nullopt);
  EXPECT_EQ(windowScalingFactor(SettingsWriter(1).integer("Gdk/WindowScalingFactors", 2).bytes()), std::nullopt);
  EXPECT_EQ(windowScalingFactor(SettingsWriter(1).string(kName, "2").bytes()), std::nullopt);
}

TEST(WindowScalingFactor, IsAcceptedFrom1To16) {
  for (const int factor : {1, 2, 3, 16}) {
    EXPECT_EQ(windowScalingFactor(SettingsWriter(1).integer(kName, factor).bytes()), factor);
  }
  for (const int factor : {0, -1, 17, 0x7FFFFFFF}) {
    EXPECT_EQ(windowScalingFactor(SettingsWriter(1).integer(kName, factor).bytes()), std::nullopt);
  }
}

TEST(WindowScalingFactor, IsAbsentWhenTheSettingsAreTruncated) {
  SettingsWriter settings(3);
  settings.string("Net/ThemeName", "Any").color("Some/Color").integer(kName, 2);
  for (std::size_t size = 0; size < settings.bytes().size(); ++size) {
    const Bytes part(settings.bytes().begin(), settings.bytes().begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_EQ(windowScalingFactor(part), std::nullopt) << size;
  }
  EXPECT_EQ(windowScalingFactor(settings.bytes()), 2);
}

TEST(WindowScalingFactor, IsAbsentBehindInvalidFields) {
  Bytes unknown_order = SettingsWriter(1).integer(kName, 2).bytes();
  unknown_order[0] = 'l';
  EXPECT_EQ(windowScalingFactor(unknown_order), std::nullopt);
  Bytes unknown_type = SettingsWriter(2).integer("Any", 1).integer(kName, 2).bytes();
  unknown_type[12] = 3;
  EXPECT_EQ(windowScalingFactor(unknown_type), std::nullopt);
  Bytes huge_string = SettingsWriter(2).string("Any", "text").integer(kName, 2).bytes();
  huge_string[27] = 0xFF;
  EXPECT_EQ(windowScalingFactor(huge_string), std::nullopt);
}

TEST(WindowScalingFactor, IsAbsentOrInRangeForDamagedBytes) {
  SettingsWriter settings(3);
  settings.string("Net/ThemeName", "Any").color("Some/Color").integer(kName, 2);
  std::minstd_rand random(3);
  for (int i = 0; i < 50000; ++i) {
    Bytes damaged = settings.bytes();
    for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
      damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
    }
    const auto factor = windowScalingFactor(damaged);
    ASSERT_TRUE(!factor || (*factor >= 1 && *factor <= 16));
  }
}

TEST(XftDpi, FollowsTheRulesOfXResources) {
  EXPECT_EQ(xftDpi("Xft.dpi: 192\n"), 192);
  EXPECT_EQ(xftDpi("Xft.dpi:\t144.5"), 144.5);
  EXPECT_EQ(xftDpi("! Xft.dpi: 96\nXft.antialias: 1\nXft.dpi : 120 \nXft.hinting: 1\n"), 120);
  EXPECT_EQ(xftDpi("*dpi: 110\n"), 110);
  EXPECT_EQ(xftDpi("*dpi: 110\nXft.dpi: 130\n"), 130);
  EXPECT_EQ(xftDpi("Xft.dpi: 96\nXft.dpi: 192\n"), 192);
}

TEST(XftDpi, IsAbsentWithoutAPositiveNumber) {
  for (const char* const resources :
       {"", "\n\n", "Xft.dpi:", "Xft.dpi: \n", "Xft.dpi: high\n", "Xft.dpi: 96dpi\n", "Xft.dpi: 0\n", "Xft.dpi: -96\n",
        "Xft.dpi: nan\n", "Xft.dpi: inf\n", "Xft.dpi: 1e999\n", "Xft.dpis: 96\n", "dpi: 96\n", "Xft.dpi 96\n"}) {
    EXPECT_EQ(xftDpi(resources), std::nullopt) << resources;
  }
}

TEST(XftDpi, IgnoresTextBehindAZeroByte) {
  EXPECT_EQ(xftDpi(std::string_view("a: b\n\0Xft.dpi: 192\n", 19)), std::nullopt);
}

TEST(XftDpi, IgnoresIncludeDirectives) {
  const support::TemporaryFolder directory;
  const std::string file = directory.path("resources");
  support::runSuccessfully({"tee", file}, {}, "Xft.dpi: 192\n");
  for (const std::string& directive : {"#include \"", "  #include \"", "#  include \"", "\\\n#include \""}) {
    EXPECT_EQ(xftDpi(directive + file + "\"\n"), std::nullopt) << directive;
  }
}

TEST(XftDpi, IsAbsentOrPositiveForRandomText) {
  constexpr std::string_view kPieces[] = {"Xft", ".",  "*",  "dpi", ":", " ", "\t",
                                          "192", "\n", "\\", "#",   "!", "?", "\xFF"};
  std::minstd_rand random(5);
  for (int i = 0; i < 20000; ++i) {
    std::string resources;
    for (unsigned pieces = random() % 24; pieces > 0; --pieces) {
      resources += kPieces[random() % std::size(kPieces)];
    }
    const auto dpi = xftDpi(resources);
    ASSERT_TRUE(!dpi || *dpi > 0) << resources;
  }
}

TEST(BackingScale, IsTheWindowScalingFactorIfSet) {
  EXPECT_EQ(backingScale(2, std::nullopt), 2);
  EXPECT_EQ(backingScale(1, 192), 1);
}

TEST(BackingScale, IsTheResolutionOver96RoundedToAHalf) {
  const std::vector<std::pair<double, double>> scales{{96, 1},    {107, 1},   {108, 1},  {119.9, 1}, {120, 1.5},
                                                      {144, 1.5}, {167, 1.5}, {168, 2},  {192, 2},   {240, 2.5},
                                                      {288, 3},   {1536, 16}, {72.5, 1}, {1, 1},     {1e-300, 1}};
  for (const auto& [dpi, scale] : scales) {
    EXPECT_EQ(backingScale(std::nullopt, dpi), scale) << dpi;
  }
}

TEST(BackingScale, IsOneWithoutAValidSetting) {
  EXPECT_EQ(backingScale(std::nullopt, std::nullopt), 1);
  EXPECT_EQ(backingScale(std::nullopt, 1537), 1);
  EXPECT_EQ(backingScale(std::nullopt, 1e300), 1);
}

}  // namespace
