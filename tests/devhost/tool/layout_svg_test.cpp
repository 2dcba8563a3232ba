// ostrevin-host layout -o: the arrangement of the displays as an SVG picture, read back with an XML parser.
#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <fstream>
#include <sstream>

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
  /// Draws the picture that the other members read, and expects it to be well-formed.
  void draw(const std::string& desktop) {
    path_ = path("picture.svg");
    const ToolRun run = runTool({"--desktop", write("desktop.json", desktop), "layout", "-o", path_});
    ASSERT_EQ(run.exit_status, 0) << run.errors;
    EXPECT_THAT(run.output, IsEmpty());
    support::runSuccessfully({"xmllint", "--noout", path_});
  }

  /// The result of an XPath expression as a text.
  std::string query(const std::string& expression) const {
    std::string text = support::runSuccessfully({"xmllint", "--xpath", expression, path_});
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
  }
  double number(const std::string& expression) const { return std::stod(query("number(" + expression + ")")); }
  Box box(const std::string& numbers) const {
    const std::string rect = "//*[@data-numbers='" + numbers + "']/*[local-name()='rect']";
    return {number(rect + "/@x"), number(rect + "/@y"), number(rect + "/@width"), number(rect + "/@height")};
  }
  int count(const std::string& nodes) const { return static_cast<int>(number("count(" + nodes + ")")); }

  /// Expects the rectangles of all displays at their bounds, to one scale and from one origin.
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

  /// Expects every box inside the picture, and every line of a label inside its box, with characters of 0.6 of their
  /// size.
  void expectEverythingInside() {
    const double width = number("/*/@width");
    const double height = number("/*/@height");
    EXPECT_EQ(query("string(/*/@viewBox)"), "0 0 " + query("string(/*/@width)") + " " + query("string(/*/@height)"));
    const int boxes = count("//*[@data-numbers]");
    for (int i = 1; i <= boxes; ++i) {
      const std::string group = "(//*[@data-numbers])[" + std::to_string(i) + "]";
      const Box area = box(query("string(" + group + "/@data-numbers)"));
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

TEST_F(LayoutSvg, DrawsThreeDisplaysToScale) { expectTrueToScale(kThreeDisplays); }

TEST_F(LayoutSvg, DrawsTwelveDisplaysToScale) { expectTrueToScale(twelveDisplays()); }

TEST_F(LayoutSvg, LabelsBoxesWithNumberNameBoundsAndScale) {
  draw(kThreeDisplays);
  const std::string lines = "//*[@data-numbers='2']//*[local-name()='text']";
  EXPECT_EQ(query("string((" + lines + ")[1])"), "2");
  EXPECT_EQ(query("string((" + lines + ")[2])"), "Wide");
  EXPECT_EQ(query("string((" + lines + ")[3])"), "2560 x 1440 at -2560, -540");
  EXPECT_EQ(query("string((" + lines + ")[4])"), "scale 1");
  EXPECT_EQ(query("string(//*[@data-numbers='3']/@data-scales)"), "1.5");
  EXPECT_EQ(count("//*[@class='legend']"), 0);
}

TEST_F(LayoutSvg, MarksMainDisplayOnly) {
  draw(kThreeDisplays);
  EXPECT_EQ(query("string(//*[@class='display main']/@data-numbers)"), "1");
  EXPECT_EQ(count("//*[@class='display main']"), 1);
  EXPECT_EQ(query("string(//*[@data-numbers='1']//*[local-name()='text'])"), "1 main");
}

TEST_F(LayoutSvg, DrawsMainDisplayLast) {
  draw(twelveDisplays());
  EXPECT_EQ(query("string((//*[@data-numbers])[last()]/@data-numbers)"), "65");
}

TEST_F(LayoutSvg, DrawsMirrorsAsOneBoxBelowOverlappingOnes) {
  draw(kOverlappingDisplays);
  EXPECT_EQ(count("//*[@data-numbers]"), 3);
  EXPECT_EQ(query("string((//*[@data-numbers])[1]/@data-numbers)"), "1 2");
  EXPECT_EQ(query("string(//*[@data-numbers='1 2']//*[local-name()='text'])"), "1 main + 2");
  EXPECT_EQ(query("string(//*[@class='legend']/*[1])"), "overlap: 3 and 1+2");
  expectEverythingInside();

  // The lower box's label avoids the boxes above it.
  const std::string label = "(//*[@data-numbers='1 2']//*[local-name()='text'])[1]";
  const Box within = box("4");
  const Box half_over = box("3");
  const double half = number("string-length(" + label + ")") * 0.6 * number(label + "/../@font-size") / 2;
  EXPECT_GE(number(label + "/@x") - half, within.x + within.width);
  EXPECT_LE(number(label + "/@y"), half_over.y);
}

TEST_F(LayoutSvg, EscapesHostileNames) {
  draw(R"({"displays": [{"number": 1, "bounds": [0, 0, 1440, 900], "name": ")" +
       std::string(R"(</text><script>\"&]]>\u0007\u202e\ufffe\uffff 日本)") + R"("}]})");
  EXPECT_EQ(count("//*[local-name()='script']"), 0);
  EXPECT_EQ(query("string((//*[@data-numbers='1']//*[local-name()='text'])[2])"),
            R"(</text><script>"&]]>\x07\u202e\ufffe\uffff 日本)");
  expectEverythingInside();
}

TEST_F(LayoutSvg, CutsLongNameInBoxButNotInTitle) {
  const std::string name(200, 'n');
  draw(R"({"displays": [{"number": 1, "bounds": [0, 0, 1440, 900], "name": ")" + name + R"("}]})");
  EXPECT_THAT(query("string(//*[@data-numbers]/*[local-name()='title'])"), HasSubstr(name));
  EXPECT_THAT(query("string((//*[@data-numbers]//*[local-name()='text'])[2])"), HasSubstr("nnn…"));
  EXPECT_EQ(count("//*[@class='legend']/*"), 1);
  EXPECT_LE(16 + number("string-length(//*[@class='legend']/*[1])") * 0.6 * 12, number("/*/@width"));
  expectEverythingInside();
}

TEST_F(LayoutSvg, HasColoursForLightAndDarkPages) {
  draw(kOneDisplay);
  const std::string style = query("string(//*[local-name()='style'])");
  EXPECT_THAT(style, HasSubstr("@media (prefers-color-scheme: light)"));
  EXPECT_THAT(style, HasSubstr("@media (prefers-color-scheme: dark)"));
  EXPECT_EQ(style.substr(0, style.find_first_not_of(" \n") + 6), "\n    @media");
  EXPECT_EQ(count("//*[@data-numbers]/*[local-name()='rect'][@fill and @stroke]"), 1);
  EXPECT_EQ(count("//*[@data-numbers]/*[local-name()='g'][@fill]"), 1);
}

TEST_F(LayoutSvg, ReportsNoDisplays) {
  draw("{}");
  EXPECT_EQ(query("string(//*[@class='legend']/*[1])"), "no displays");
}

TEST_F(LayoutSvg, WritesToStandardOutputForDash) {
  draw(kThreeDisplays);
  const ToolRun run = runTool({"--desktop", path("desktop.json"), "layout", "--output", "-"});
  EXPECT_EQ(run.exit_status, 0);
  EXPECT_EQ(run.output, contentOf(path_));
  EXPECT_THAT(run.errors, IsEmpty());
}

}  // namespace
