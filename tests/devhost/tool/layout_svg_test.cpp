// ostrevin-host layout -o: the arrangement of the displays as an SVG picture, read back with an XML parser.
#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <fstream>
#include <sstream>

#include "devhost/tool/layout_desktops.h"
#include "devhost/tool/tool_runner.h"

namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using tool_test::contentOf;
using tool_test::kOneDisplay;
using tool_test::kOverlappingDisplays;
using tool_test::kThreeDisplays;
using tool_test::runTool;
using tool_test::ToolRun;

/// Lengths are written to a thousandth.
constexpr double kPrecision = 0.0011;

struct Box {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

class LayoutSvg : public tool_test::ToolTest {
 protected:
  /// Draws a picture, which must be well-formed; later questions are about it.
  void draw(const std::string& desktop) {
    path_ = (folder_.path() / "picture.svg").string();
    const ToolRun run = runTool({"--desktop", write("desktop.json", desktop), "layout", "-o", path_});
    ASSERT_EQ(run.exit_status, 0) << run.errors;
    EXPECT_THAT(run.output, IsEmpty());
    test_support::runSuccessfully({"xmllint", "--noout", path_});
  }

  /// What an XPath expression gives as a text.
  std::string ask(const std::string& expression) const {
    std::string answer = test_support::runSuccessfully({"xmllint", "--xpath", expression, path_});
    answer.erase(answer.find_last_not_of('\n') + 1);
    return answer;
  }
  double number(const std::string& expression) const { return std::stod(ask("number(" + expression + ")")); }
  Box box(const std::string& numbers) const {
    const std::string rect = "//*[@data-numbers='" + numbers + "']/*[local-name()='rect']";
    return {number(rect + "/@x"), number(rect + "/@y"), number(rect + "/@width"), number(rect + "/@height")};
  }
  int count(const std::string& nodes) const { return static_cast<int>(number("count(" + nodes + ")")); }

  /// The rectangle of every display of the desktop lies where its bounds say, to one scale and from one origin.
  void expectTrueToScale(const std::string& desktop) {
    const json displays = json::parse(desktop)["displays"];
    draw(desktop);
    const Box first = box(std::to_string(displays[0]["number"].get<int>()));
    const json origin = displays[0]["bounds"];
    const double scale = first.width / origin[2].get<double>();
    ASSERT_EQ(count("//*[@data-numbers]"), static_cast<int>(displays.size()));
    for (const json& display : displays) {
      const json& bounds = display["bounds"];
      const Box drawn = box(std::to_string(display["number"].get<int>()));
      const double tolerance = kPrecision * (1 + std::abs(bounds[0].get<double>() / origin[2].get<double>()));
      EXPECT_NEAR(drawn.x, first.x + (bounds[0].get<double>() - origin[0].get<double>()) * scale, tolerance);
      EXPECT_NEAR(drawn.y, first.y + (bounds[1].get<double>() - origin[1].get<double>()) * scale, tolerance);
      EXPECT_NEAR(drawn.width, bounds[2].get<double>() * scale, tolerance);
      EXPECT_NEAR(drawn.height, bounds[3].get<double>() * scale, tolerance);
    }
    expectEverythingInside();
  }

  /// Every box is inside the picture, and every line of a label inside its box: a character of a monospaced font is
  /// 0.6 of its size wide.
  void expectEverythingInside() {
    const double width = number("/*/@width");
    const double height = number("/*/@height");
    EXPECT_EQ(ask("string(/*/@viewBox)"), "0 0 " + ask("string(/*/@width)") + " " + ask("string(/*/@height)"));
    const int boxes = count("//*[@data-numbers]");
    for (int i = 1; i <= boxes; ++i) {
      const std::string group = "(//*[@data-numbers])[" + std::to_string(i) + "]";
      const Box area = box(ask("string(" + group + "/@data-numbers)"));
      EXPECT_GE(area.x, 0);
      EXPECT_GE(area.y, 0);
      EXPECT_LE(area.x + area.width, width);
      EXPECT_LE(area.y + area.height, height);
      const int lines = count(group + "//*[local-name()='text']");
      for (int line = 1; line <= lines; ++line) {
        const std::string text = "(" + group + "//*[local-name()='text'])[" + std::to_string(line) + "]";
        const double size = number(text + "/../@font-size");
        const double half = number("string-length(" + text + ")") * 0.6 * size / 2;
        EXPECT_GE(number(text + "/@x") - half, area.x);
        EXPECT_LE(number(text + "/@x") + half, area.x + area.width);
        EXPECT_GE(number(text + "/@y") - 0.8 * size, area.y);
        EXPECT_LE(number(text + "/@y") + 0.2 * size, area.y + area.height);
      }
    }
  }

  std::string path_;
};

/// Four in a row, three rows, of different sizes, the main one in the middle.
std::string twelveDisplays() {
  json displays = json::array();
  for (const int i : {5, 0, 1, 2, 3, 4, 6, 7, 8, 9, 10, 11}) {
    displays.push_back(
        {{"number", 60 + i},
         {"name", "Monitor " + std::to_string(i)},
         {"model", i + 1},
         {"bounds", {i % 4 * 1920 - 1920, i / 4 * 1200 - 1200, i % 3 == 0 ? 1600 : 1920, i % 2 == 0 ? 1080 : 1200}}});
  }
  return json{{"displays", displays}}.dump();
}

TEST_F(LayoutSvg, OfOneDisplayIsTrueToScale) { expectTrueToScale(kOneDisplay); }

TEST_F(LayoutSvg, OfThreeDisplaysWithNegativeOriginsIsTrueToScale) { expectTrueToScale(kThreeDisplays); }

TEST_F(LayoutSvg, OfTwelveDisplaysIsTrueToScale) { expectTrueToScale(twelveDisplays()); }

TEST_F(LayoutSvg, OfAWideRowIsTrueToScale) {
  json displays = json::array();
  for (int i = 0; i < 40; ++i) {
    displays.push_back({{"number", i + 1}, {"bounds", {i * 1920, 0, 1920, 1200}}, {"model", i + 1}});
  }
  expectTrueToScale(json{{"displays", displays}}.dump());
}

TEST_F(LayoutSvg, LabelsTellNumberNameBoundsAndScale) {
  draw(kThreeDisplays);
  const std::string lines = "//*[@data-numbers='2']//*[local-name()='text']";
  EXPECT_EQ(ask("string((" + lines + ")[1])"), "2");
  EXPECT_EQ(ask("string((" + lines + ")[2])"), "Wide");
  EXPECT_EQ(ask("string((" + lines + ")[3])"), "2560 x 1440 at -2560, -540");
  EXPECT_EQ(ask("string((" + lines + ")[4])"), "scale 1");
  EXPECT_EQ(ask("string(//*[@data-numbers='3']/@data-scales)"), "1.5");
  EXPECT_EQ(count("//*[@class='legend']"), 0);
}

TEST_F(LayoutSvg, MarksTheMainDisplayAndNoOther) {
  draw(kThreeDisplays);
  EXPECT_EQ(ask("string(//*[@class='display main']/@data-numbers)"), "1");
  EXPECT_EQ(count("//*[@class='display main']"), 1);
  EXPECT_EQ(ask("string(//*[@data-numbers='1']//*[local-name()='text'])"), "1 main");
}

TEST_F(LayoutSvg, TheMainDisplayIsDrawnLastSoThatItsOutlineIsWhole) {
  draw(twelveDisplays());
  EXPECT_EQ(ask("string((//*[@data-numbers])[last()]/@data-numbers)"), "65");
}

TEST_F(LayoutSvg, AMirrorSharesABoxAndWhatLiesOverItIsDrawnLater) {
  draw(kOverlappingDisplays);
  EXPECT_EQ(count("//*[@data-numbers]"), 3);
  EXPECT_EQ(ask("string((//*[@data-numbers])[1]/@data-numbers)"), "1 2");
  EXPECT_EQ(ask("string(//*[@data-numbers='1 2']//*[local-name()='text'])"), "1 main + 2");
  EXPECT_EQ(ask("string(//*[@class='legend']/*[1])"), "overlap: 3 and 1+2");
  expectEverythingInside();

  // The label of the box below keeps out of the way of those above.
  const std::string label = "(//*[@data-numbers='1 2']//*[local-name()='text'])[1]";
  const Box within = box("4");
  const Box half_over = box("3");
  const double half = number("string-length(" + label + ")") * 0.6 * number(label + "/../@font-size") / 2;
  EXPECT_GE(number(label + "/@x") - half, within.x + within.width);
  EXPECT_LE(number(label + "/@y"), half_over.y);
}

TEST_F(LayoutSvg, HostileNamesAreTextAndNothingElse) {
  draw(R"({"displays": [{"number": 1, "bounds": [0, 0, 1440, 900], "name": ")" +
       std::string(R"(</text><script>\"&]]>\u0007\u202e\ufffe\uffff 日本)") + R"("}]})");
  EXPECT_EQ(count("//*[local-name()='script']"), 0);
  EXPECT_EQ(ask("string((//*[@data-numbers='1']//*[local-name()='text'])[2])"),
            R"(</text><script>"&]]>\x07\u202e\ufffe\uffff 日本)");
  expectEverythingInside();
}

TEST_F(LayoutSvg, ALongNameIsCutInTheBoxAndWholeInItsTitle) {
  const std::string name(200, 'n');
  draw(R"({"displays": [{"number": 1, "bounds": [0, 0, 1440, 900], "name": ")" + name + R"("}]})");
  EXPECT_THAT(ask("string(//*[@data-numbers]/*[local-name()='title'])"), HasSubstr(name));
  EXPECT_THAT(ask("string((//*[@data-numbers]//*[local-name()='text'])[2])"), HasSubstr("nnn…"));
  EXPECT_EQ(count("//*[@class='legend']/*"), 1);
  EXPECT_LE(16 + number("string-length(//*[@class='legend']/*[1])") * 0.6 * 12, number("/*/@width"));
  expectEverythingInside();
}

TEST_F(LayoutSvg, HasColoursForLightAndDarkPagesAndForReadersThatDoNotSay) {
  draw(kOneDisplay);
  const std::string style = ask("string(//*[local-name()='style'])");
  EXPECT_THAT(style, HasSubstr("@media (prefers-color-scheme: light)"));
  EXPECT_THAT(style, HasSubstr("@media (prefers-color-scheme: dark)"));
  EXPECT_EQ(style.substr(0, style.find_first_not_of(" \n") + 6), "\n    @media");
  EXPECT_EQ(count("//*[@data-numbers]/*[local-name()='rect'][@fill and @stroke]"), 1);
  EXPECT_EQ(count("//*[@data-numbers]/*[local-name()='g'][@fill]"), 1);
}

TEST_F(LayoutSvg, WithoutDisplaysSaysSo) {
  draw("{}");
  EXPECT_EQ(ask("string(//*[@class='legend']/*[1])"), "no displays");
}

TEST_F(LayoutSvg, GoesToTheStandardOutputForADash) {
  draw(kThreeDisplays);
  const ToolRun run = runTool({"--desktop", (folder_.path() / "desktop.json").string(), "layout", "--output", "-"});
  EXPECT_EQ(run.exit_status, 0);
  EXPECT_EQ(run.output, contentOf(path_));
  EXPECT_THAT(run.errors, IsEmpty());
}

}  // namespace
