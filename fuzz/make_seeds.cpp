// make_seeds FOLDER: writes the seeds of each fuzzer to FOLDER/NAME/.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "support/edid_maker.h"
#include "support/icc_maker.h"

namespace {

using support::bigEndian16;
using support::bigEndian32;
using support::IccMaker;
using namespace std::string_literals;

/// The seeds of one fuzzer.
class Seeds {
 public:
  Seeds(const std::filesystem::path& folder, const std::string& fuzzer) : folder_(folder / fuzzer) {
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }

  void add(const std::string& name, std::string_view content) const {
    std::ofstream file(folder_ / name, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file.flush()) {
      throw std::runtime_error("cannot write " + (folder_ / name).string());
    }
  }

  void addEach(std::initializer_list<std::string> contents) const {
    int number = 0;
    for (const std::string& content : contents) {
      add(std::to_string(++number), content);
    }
  }

 private:
  std::filesystem::path folder_;
};

// --- ICC profiles

std::string gammaCurve() { return "curv" + bigEndian32(0) + bigEndian32(1) + bigEndian16(0x0233); }

std::string srgbCurve() {
  std::string curve = "para" + bigEndian32(0) + bigEndian16(3) + bigEndian16(0);
  for (const std::uint32_t parameter : {0x26666U, 0xF2A7U, 0xD59U, 0x13D0U, 0xA5BU}) {
    curve += bigEndian32(parameter);
  }
  return curve;
}

std::string repeated(std::uint16_t number, int times) {
  std::string bytes;
  for (int i = 0; i < times; ++i) {
    bytes += bigEndian16(number);
  }
  return bytes;
}

/// From RGB to XYZ by a table with two points a side.
std::string smallTable() {
  std::string table = "mft2" + bigEndian32(0) + "\3\3\2\0"s;
  for (int i = 0; i < 9; ++i) {
    table += bigEndian32(i % 4 == 0 ? 0x10000 : 0);  // the identity
  }
  table += bigEndian16(2) + bigEndian16(2);
  const std::string linear = bigEndian16(0) + bigEndian16(0xFFFF);
  table += linear + linear + linear;
  for (int color = 0; color < 8; ++color) {
    for (int bit = 0; bit < 3; ++bit) {
      table += bigEndian16((color >> bit & 1) != 0 ? 0x7000 : 0);
    }
  }
  return table + linear + linear + linear;
}

/// Curves alone, in the form of version 4.
std::string curvesTable() {
  constexpr std::uint32_t kHead = 32;
  const std::string identity = "curv" + bigEndian32(0) + bigEndian32(0);
  return "mAB " + bigEndian32(0) + "\3\3\0\0"s + bigEndian32(kHead) + std::string(16, '\0') + identity + identity +
         identity;
}

IccMaker matrixProfile(const std::string& curve) {
  return IccMaker()
      .tag("rXYZ", support::xyzElement(0.4361, 0.2225, 0.0139))
      .tag("gXYZ", support::xyzElement(0.3851, 0.7169, 0.0971))
      .tag("bXYZ", support::xyzElement(0.1431, 0.0606, 0.7139))
      .tag("wtpt", support::xyzElement(0.9642, 1, 0.8249))
      .tag("rTRC", curve)
      .tag("gTRC", curve)
      .tag("bTRC", curve);
}

void addTexts(const Seeds& seeds) {
  seeds.add("desc_ascii", support::displayProfile(" A display"));
  seeds.add("desc_unicode", IccMaker().tag("desc", support::descElement("", u"Größe 色 \U0001F600")).bytes());
  seeds.add("desc_latin1", IccMaker()
                               .tag("desc", support::descElement("Gr\xF6\xDF"
                                                                 "e"))
                               .bytes());
  for (const std::uint16_t script : {0, 1, 2, 3, 7, 25, 99}) {
    seeds.add("desc_script_" + std::to_string(script),
              IccMaker().tag("desc", support::descElement("", {}, script, "A\x83\x65\xA4\xA4\xB0\xA1z")).bytes());
  }
  const std::string localized = support::mlucElement({{"enUS", u"Colours"}, {"deAT", u"Farben"}, {"ja\0\0"s, u"色"}});
  seeds.add("mluc", IccMaker().tag("desc", localized).bytes());
  seeds.add("mluc_half_a_pair",
            IccMaker().tag("desc", support::mlucElement({{"enUS", u"Half a pair \xD83D"}})).bytes());
  seeds.add("desc_half_a_pair", IccMaker().tag("desc", support::descElement("", u"Half a pair \xDBFF")).bytes());
  seeds.add("mluc_none", IccMaker().tag("desc", support::mlucElement({})).bytes());
  seeds.add("text", IccMaker().tag("desc", support::textElement("plain")).bytes());
}

void addTables(const Seeds& seeds) {
  seeds.add("table_line_outside", IccMaker().description("a").tableLine("QV02", 0xFFFFFFF0, 0x20).bytes());
  seeds.add("table_too_long", IccMaker().description("a").declaredTagCount(0x15555556).bytes());
  seeds.add("declared_short", IccMaker().description("a").declaredSize(140).bytes());
  seeds.add("twice", IccMaker().tableLine("desc", 9999, 1).description("a").description("b").bytes());
  seeds.add("no_class", IccMaker().deviceClass("\0\0\0\0"s).description("a").bytes());
  seeds.add("link", IccMaker().deviceClass("link").description("a").bytes());
  IccMaker many;
  for (int i = 0; i < 120; ++i) {
    many.tableLine("zzzz", 128, 4);
  }
  seeds.add("many_tags", many.description("the last of them").bytes());
}

void addColors(const Seeds& seeds) {
  seeds.add("matrix_gamma", matrixProfile(gammaCurve()).description("matrix").bytes());
  seeds.add("matrix_parametric", matrixProfile(srgbCurve()).description("matrix").bytes());
  seeds.add("matrix_table_curve",
            matrixProfile("curv" + bigEndian32(0) + bigEndian32(4) + repeated(0x4000, 4)).description("c").bytes());
  seeds.add("table", IccMaker().tag("A2B0", smallTable()).description("table").bytes());
  seeds.add("table_of_curves", IccMaker().tag("A2B0", curvesTable()).tag("A2B1", smallTable()).bytes());
  seeds.add("grey", IccMaker().colorSpace("GRAY").tag("kTRC", gammaCurve()).description("grey").bytes());
}

void addIcc(const std::filesystem::path& folder) {
  const Seeds seeds(folder, "icc");
  addTexts(seeds);
  addTables(seeds);
  addColors(seeds);
}

void addQv02(const std::filesystem::path& folder) {
  const Seeds seeds(folder, "qv02");
  const std::string head = "text\1\2\3\4";
  const auto with = [](const std::string& element) { return IccMaker().description("a").tag("QV02", element).bytes(); };
  seeds.add("document", with(head + "<?xml version=\"1.0\"?><a>\xC3\xBC</a>"));
  seeds.add("empty_document", with(head));
  seeds.add("shorter_than_its_head", with("tex"));
  seeds.add("empty", with(""));
  seeds.add("zeros", with(std::string(16, '\0')));
  seeds.add("beyond_the_first_4096", with(head + std::string(4200, 'x')));
  seeds.add("none", support::displayProfile("a"));
  seeds.add("outside", IccMaker().tableLine("QV02", 0xFFFFFFF0, 0x20).bytes());
  seeds.add("twice", IccMaker().tableLine("QV02", 5000, 8).tag("QV02", head + "b").tag("QV02", head + "c").bytes());
  seeds.add("declared_short", IccMaker().tag("QV02", head + "cut").declaredSize(150).bytes());
}

// --- the others

void addEdid(const std::filesystem::path& folder) {
  const Seeds seeds(folder, "edid");
  const auto add = [&](const std::string& name, const support::EdidBytes& edid) {
    seeds.add(name, {reinterpret_cast<const char*>(edid.data()), edid.size()});
  };
  add("plain", support::makeEdid());
  add("thirteen_characters", support::makeEdid({.name = "Thirteen char"}));
  add("code_page_437", support::makeEdid({.name = "Gr\x94\xE1"
                                                  "e \xFE\x7F "}));
  add("blank", support::makeEdid({.name = "             "}));
  add("nameless", support::makeEdid({.serial = 0, .name = {}}));
  add("extensions", support::makeEdid({.vendor = "APP", .extensions = 2}));
}

void addUtf(const std::filesystem::path& folder) {
  Seeds(folder, "utf")
      .addEach({"", "ASCII alone, and enough",
                "Gr\xC3\xB6\xC3\x9F"
                "e \xE8\x89\xB2 \xF0\x9F\x98\x80",
                "\xEF\xBB\xBF"
                "mark",
                "\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                "12345678\xE2\x82", "A\0\x3D\xD8\0\xDE"s, "\0\xD8"s, "\xFF\xFF\x01\0"s});
}

void addDeclaration(const std::filesystem::path& folder) {
  Seeds(folder, "declaration")
      .addEach({"Refresh()", "SetObject( obj As Object )",
                "GetName(displayID As UInt32, byref name As String) As Boolean", "Paths() As String()",
                "Sum(numbers ( ) As Integer, ByVal b As Xml.Node())",
                "  f (\tobj   As\r\nObject ,b As Double )\tAs  String ( ) ",
                "gr\xC3\xB6\xC3\x9F"
                "e_2(a1 As OSType)",
                "f(byref As Integer)", "f(a As Integer", "f() As A.", "As()"});
}

/// A declaration and its arguments, each ended by a NUL.
std::string callText(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (const std::string_view part : parts) {
    text += part;
    text += '\0';
  }
  return text;
}

void addArguments(const std::filesystem::path& folder) {
  const Seeds seeds(folder, "arguments");
  seeds.addEach({
      callText({"f()"}),
      callText({"f(a As Integer)", "-0x80000000"}),
      callText({"f(a As Double, b As Single)", "-1440.5", "0x1p-1"}),
      callText({"f(a As Double)", "nan"}),
      callText({"f(a As Boolean, byref b As Boolean)", "TRUE", "false"}),
      callText({"f(a As Boolean, byref b As Boolean)", "False"}),
      callText({"f(a As String, b As Text)", "text as it is", ""}),
      callText({"f(o As Object)", "nil"}),
      callText({"f(p As Ptr)", "nil"}),
      callText({"f(a() As Integer)", "1"}),
      callText({"f(a As OSType)", "abc"}),
  });
  struct Bounds {
    std::string type;
    std::initializer_list<std::string> numbers;  // the last and the first that fit, and those beyond them
  };
  for (const Bounds& bounds :
       {Bounds{"Int8", {"-128", "127", "-129", "128"}}, Bounds{"UInt16", {"0", "65535", "-1", "65536"}},
        Bounds{"Integer", {"-2147483648", "2147483647", "-2147483649", "2147483648"}},
        Bounds{"UInt32", {"0", "4294967295", "-1", "4294967296"}},
        Bounds{"Currency",
               {"-9223372036854775808", "9223372036854775807", "-9223372036854775809", "9223372036854775808"}},
        Bounds{"UInt64", {"-0", "18446744073709551615", "-1", "18446744073709551616"}}}) {
    for (const std::string& number : bounds.numbers) {
      seeds.add(bounds.type + number, callText({"f(a As " + bounds.type + ")", number}));
    }
  }
}

constexpr const char* kEveryKey = R"({
  "displays": [
    {"number": 1, "bounds": [0, 0, 1440.5, 900], "uuid": "37D8832A-2D66-02CA-B9F7-8F30A301B230", "vendor": 15988,
     "model": 1, "serial": 7, "name": "A", "scale": 2, "connector": "DP-1",
     "profiles": ["/a.icc", {"path": "b.icc", "default": true, "current": false}]},
    {"number": 4294967295, "bounds": [-1, 1e3, 2, 3], "uuid": null}
  ],
  "screens": [{"frame": [0, 0, 1, 1], "scale": 1.5}, {}],
  "main_screen": 1,
  "services": [{"info": false}, {"vendor": 1, "product": 2, "serial": 3, "names": {"en": "A", "de": "\u00e4"}}],
  "device_profiles": [{"class": "mntr", "device": "37d8832a-2d66-02ca-b9f7-8f30a301b230", "description": "A",
                       "default": true, "current": true, "path": "../c.icc"}, {}],
  "installed_profiles": ["d.icc", {"class": "prtr", "description": "E", "path": "/e.icc"}],
  "accepts_profiles": false,
  "device_walk": {"delay_ms": 86400000, "hang": true, "repeat": 2},
  "installed_walk": {}
})";

void addDesktopFile(const std::filesystem::path& folder) {
  const Seeds seeds(folder, "desktop_file");
  seeds.add("every_key", kEveryKey);
  seeds.add("empty", "{}");
  seeds.add("nulls", R"({"displays": null, "screens": null, "main_screen": null, "services": [{"names": null}]})");
  seeds.add("main_screen", R"({"screens": [{}, {}], "main_screen": 1})");
  seeds.add("no_such_main_screen", R"({"screens": [{}, {}], "main_screen": 2})");
  seeds.add("unknown_key", "{\n\"display\": []}");
  seeds.add("twice", R"({"screens": [], "screens": []})");
  seeds.add("deep", std::string(18, '['));
  seeds.add("numbers", "[-0, 1e400, 18446744073709551616, 0.1E-5, \"\\ud83d\\ude00\"]");
}

void addWaylandOutput(const std::filesystem::path& folder) {
  const Seeds seeds(folder, "wayland_output");
  seeds.add("empty", "");
  // Texts end with a backslash and another byte; numbers are taken from the input's end.
  seeds.add("text", "DP-1\\nA monitor\\nDEL\\nModel\\n" + std::string(60, '\x01'));
  seeds.add("two", "DP-1\\n\\nDEL\\nunknown\\nDP-1\\n\\nDEL\\n0x1234\\n" + std::string(140, '\x07'));
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: make_seeds FOLDER\n";
    return 2;
  }
  const std::filesystem::path folder = arguments[1];
  for (const auto add :
       {addIcc, addQv02, addEdid, addUtf, addDeclaration, addArguments, addDesktopFile, addWaylandOutput}) {
    add(folder);
  }
  return 0;
}
