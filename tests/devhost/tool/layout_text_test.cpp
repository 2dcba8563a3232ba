// ostrevin-host layout: the arrangement of the displays as a text.
#include <gmock/gmock.h>

#include "devhost/tool/tool_runner.h"

namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using tool_test::kOneDisplay;
using tool_test::kOverlappingDisplays;
using tool_test::kThreeDisplays;
using tool_test::linesOf;
using tool_test::runOnTerminal;
using tool_test::runTool;
using tool_test::ToolRun;

class LayoutText : public tool_test::ToolTest {
 protected:
  ToolRun layout(const std::string& desktop, std::vector<std::string> options = {},
                 const std::string& locale = "C.UTF-8") {
    options.insert(options.begin(), {"--desktop", write("desktop.json", desktop), "layout"});
    return runTool(options, {"", "", {"LC_ALL=" + locale}});
  }
};

/// A row of displays of 1920 x 1200, the first at 0, 0 the main one.
std::string row(int count, int first_number = 1) {
  json displays = json::array();
  for (int i = 0; i < count; ++i) {
    displays.push_back({{"number", first_number + i},
                        {"bounds", {i * 1920, 0, 1920, 1200}},
                        {"name", "Monitor " + std::to_string(i)},
                        {"model", i + 1}});
  }
  return json{{"displays", displays}}.dump();
}

/// Characters, of text that has no wide ones.
std::size_t lengthOf(const std::string& line) {
  return static_cast<std::size_t>(
      std::count_if(line.begin(), line.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; }));
}

TEST_F(LayoutText, DrawsBoxWithLabel) {
  const ToolRun run = layout(kOneDisplay, {"--width", "24"});
  EXPECT_EQ(run.exit_status, 0);
  EXPECT_EQ(run.output,
            "┌──────────────────────┐\n"
            "│                      │\n"
            "│       63 main        │\n"
            "│       Built-in       │\n"
            "│  1440 x 900 at 0, 0  │\n"
            "│       scale 2        │\n"
            "│                      │\n"
            "└──────────────────────┘\n");
  EXPECT_THAT(run.errors, IsEmpty());
}

TEST_F(LayoutText, DrawsCommonEdgesOfAdjoiningDisplays) {
  EXPECT_EQ(layout(kThreeDisplays).output,
            "┌──────────────────────────────────────┐\n"
            "│                                      │\n"
            "│                                      │                     ┌───────────────┐\n"
            "│                                      │                     │               │\n"
            "│                  2                   ├─────────────────────┤               │\n"
            "│                 Wide                 │                     │               │\n"
            "│      2560 x 1440 at -2560, -540      │       1 main        │               │\n"
            "│               scale 1                │      Built-in       │       3       │\n"
            "│                                      │ 1440 x 900 at 0, 0  │   Portrait    │\n"
            "│                                      │       scale 2       │  1080 x 1920  │\n"
            "│                                      │                     │ at 1440, -300 │\n"
            "└──────────────────────────────────────┴─────────────────────┤   scale 1.5   │\n"
            "                                                             │               │\n"
            "                                                             │               │\n"
            "                                                             │               │\n"
            "                                                             │               │\n"
            "                                                             └───────────────┘\n");
}

TEST_F(LayoutText, DrawsAsciiByOption) {
  EXPECT_EQ(layout(row(2), {"--ascii", "--width", "41"}).output,
            "+-------------------+-------------------+\n"
            "|      1 main       |         2         |\n"
            "|     Monitor 0     |     Monitor 1     |\n"
            "|1920 x 1200 at 0, 0|    1920 x 1200    |\n"
            "|      scale 1      |    at 1920, 0     |\n"
            "|                   |      scale 1      |\n"
            "+-------------------+-------------------+\n");
}

TEST_F(LayoutText, DrawsAsciiInLocaleWithoutUtf8) {
  const std::string desktop =
      R"({"displays": [{"number": 1, "bounds": [0, 0, 1440, 900], "name": "Écran 日", "model": 1}]})";
  EXPECT_EQ(layout(desktop, {"--width", "24"}, "C").output,
            "+----------------------+\n"
            "|                      |\n"
            "|        1 main        |\n"
            "|       ?cran ??       |\n"
            "|  1440 x 900 at 0, 0  |\n"
            "|       scale 1        |\n"
            "|                      |\n"
            "+----------------------+\n");
  EXPECT_THAT(layout(desktop, {"--width", "24"}).output, HasSubstr("│       Écran 日       │\n"));
}

TEST_F(LayoutText, ListsSmallDisplaysInLegend) {
  EXPECT_EQ(layout(row(12, 60), {"--width", "61"}).output,
            "┌────┬────┬────┬────┬────┬────┬────┬────┬────┬────┬────┬────┐\n"
            "│60* │ 61 │ 62 │ 63 │ 64 │ 65 │ 66 │ 67 │ 68 │ 69 │ 70 │ 71 │\n"
            "└────┴────┴────┴────┴────┴────┴────┴────┴────┴────┴────┴────┘\n"
            "\n"
            "60  main  Monitor 0   1920 x 1200 at 0, 0      scale 1\n"
            "61        Monitor 1   1920 x 1200 at 1920, 0   scale 1\n"
            "62        Monitor 2   1920 x 1200 at 3840, 0   scale 1\n"
            "63        Monitor 3   1920 x 1200 at 5760, 0   scale 1\n"
            "64        Monitor 4   1920 x 1200 at 7680, 0   scale 1\n"
            "65        Monitor 5   1920 x 1200 at 9600, 0   scale 1\n"
            "66        Monitor 6   1920 x 1200 at 11520, 0  scale 1\n"
            "67        Monitor 7   1920 x 1200 at 13440, 0  scale 1\n"
            "68        Monitor 8   1920 x 1200 at 15360, 0  scale 1\n"
            "69        Monitor 9   1920 x 1200 at 17280, 0  scale 1\n"
            "70        Monitor 10  1920 x 1200 at 19200, 0  scale 1\n"
            "71        Monitor 11  1920 x 1200 at 21120, 0  scale 1\n");
}

TEST_F(LayoutText, DrawsOverlapsAndMirrors) {
  EXPECT_EQ(layout(kOverlappingDisplays).output,
            "┌───────────────┬──────────────────────┐\n"
            "│       4       │      1 main + 2      │\n"
            "│    Within     │       Internal       │\n"
            "│   800 x 600   │      Projector       │\n"
            "│    at 0, 0    │ 1920 x 1080 at 0, 0  │\n"
            "│    scale 1    │       scale 1        │\n"
            "├───────────────┘       ┌──────────────┴──────────┐\n"
            "│                       │                         │\n"
            "│                       │                         │\n"
            "│                       │            3            │\n"
            "│                       │        Half over        │\n"
            "└───────────────────────┤1280 x 1024 at 1200, 600 │\n"
            "                        │         scale 1         │\n"
            "                        │                         │\n"
            "                        │                         │\n"
            "                        │                         │\n"
            "                        └─────────────────────────┘\n"
            "\n"
            "overlap: 3 and 1+2\n"
            "overlap: 4 and 1+2\n");
}

TEST_F(LayoutText, CutsLongNameInBoxButNotInLegend) {
  const ToolRun run = layout(
      R"({"displays": [{"number": 1, "bounds": [0, 0, 1440, 900], "name": "A name of more than thirty-eight columns"}]})");
  EXPECT_THAT(run.output, HasSubstr("│A name of more than thirty-eight colu…│\n"));
  EXPECT_THAT(run.output, HasSubstr("\n\n1  main  A name of more than thirty-eight columns  1440 x 900 at 0, 0  "));
}

TEST_F(LayoutText, ReportsNoDisplays) { EXPECT_EQ(layout("{}").output, "no displays\n"); }

TEST_F(LayoutText, ListsUndrawableDisplaysInLegend) {
  EXPECT_EQ(layout(R"({"displays": [
              {"number": 1, "bounds": [0, 0, 0, 5], "name": "Flat", "model": 1},
              {"number": 2, "bounds": [-1e300, 0, 1e300, 5], "name": "Far", "model": 2}]})")
                .output,
            "1  main  Flat  0 x 5 at 0, 0             scale 1  not drawn\n"
            "2        Far   1e+300 x 5 at -1e+300, 0  scale 1  not drawn\n");
}

TEST_F(LayoutText, KeepsLinesWithinWidth) {
  for (const std::string& desktop :
       {row(1), row(3), row(12), row(100), std::string(kThreeDisplays), std::string(kOverlappingDisplays)}) {
    for (const std::size_t width : {20U, 33U, 80U, 200U}) {
      for (const std::string& line : linesOf(layout(desktop, {"--width", std::to_string(width)}).output)) {
        EXPECT_LE(lengthOf(line), width) << line;
      }
    }
  }
}

TEST_F(LayoutText, FillsTerminal) {
  const std::string desktop = write("desktop.json", row(12));
  const auto width = [&](int columns) {
    const std::string output = runOnTerminal({"--desktop", desktop, "layout", "--ascii"}, columns);
    return output.find('\r');
  };
  EXPECT_EQ(width(100), 100U);
  EXPECT_EQ(width(61), 61U);
}

TEST_F(LayoutText, PrintsBoundsAndMainDisplayAsJson) {
  const std::string desktop = write("desktop.json", kThreeDisplays);
  const json document = runTool({"--desktop", desktop, "--json", "layout"}).document();
  EXPECT_EQ(document["command"], "layout");
  EXPECT_EQ(document["bounds"], json::parse(R"({"x": -2560.0, "y": -540.0, "width": 5080.0, "height": 2160.0})"));
  ASSERT_EQ(document["displays"].size(), 3U);
  EXPECT_EQ(document["displays"][0]["main"], true);
  EXPECT_EQ(document["displays"][1],
            json::parse(R"({"number": 2, "index": 1, "name": "Wide", "scale": 1.0, "main": false,
                            "bounds": {"x": -2560.0, "y": -540.0, "width": 2560.0, "height": 1440.0}})"));
  EXPECT_EQ(runTool({"--desktop", write("none.json", "{}"), "--json", "layout"}).document()["bounds"], nullptr);
}

TEST_F(LayoutText, RefusesContradictoryOptions) {
  for (const std::vector<std::string>& options : std::vector<std::vector<std::string>>{{"--ascii", "-o", "x.svg"},
                                                                                       {"--width", "50", "-o", "-"},
                                                                                       {"--width", "19"},
                                                                                       {"--width", "1001"},
                                                                                       {"--json", "-o", "-"},
                                                                                       {"--json", "--ascii"}}) {
    const ToolRun run = layout(kOneDisplay, options);
    EXPECT_EQ(run.exit_status, 2) << options.front();
    EXPECT_EQ(run.errorLines(), 1U);
    EXPECT_THAT(run.output, IsEmpty());
  }
}

}  // namespace
