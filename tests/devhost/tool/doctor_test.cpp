// ostrevin-host doctor, on private servers with and without what a display needs.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "devhost/tool/tool_runner.h"
#include "support/fake_compositor.h"
#include "support/private_colord.h"
#include "support/wayland_session.h"
#include "support/x_proxy.h"
#include "support/xorg_server.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using ::testing::AllOf;
using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using tool_test::contentOf;
using tool_test::runTool;
using tool_test::ToolRun;

constexpr const char* kNoBus = "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere";

/// The findings of one source: about the desktop, or about its first display.
std::vector<json> findings(const json& about, const std::string& source) {
  std::vector<json> found;
  for (const json& finding : about["findings"]) {
    if (finding["source"] == source) {
      found.push_back(finding);
    }
  }
  return found;
}

void expectMissing(const json& about, const std::string& source, const std::string& text, const std::string& remedy) {
  for (const json& finding : findings(about, source)) {
    if (finding["state"] == "missing" && finding["text"].get<std::string>().find(text) != std::string::npos) {
      EXPECT_THAT(finding["remedy"].get<std::string>(), HasSubstr(remedy));
      return;
    }
  }
  ADD_FAILURE() << source << " should miss: " << text << "\n" << about.dump(1);
}

// --- without servers

class Doctor : public tool_test::ToolTest {
 protected:
  /// Runs with a private profile folder beside the computer's.
  ToolRun run(std::vector<std::string> options = {}, const std::string& display = "", support::Environment more = {}) {
    options.insert(options.begin(), "doctor");
    more.insert(more.end(), {"XDG_DATA_HOME=" + folder_.path(), kNoBus});
    return runTool(options, {display, "", more});
  }
};

TEST_F(Doctor, ReportsMissingDisplayVariable) {
  const ToolRun result = run();
  EXPECT_EQ(result.exit_status, 1);
  EXPECT_THAT(result.output, HasSubstr("X server   missing  DISPLAY is not set, so no X server can be queried\n"
                                       "                    fix: export DISPLAY=:0"));
  EXPECT_THAT(result.output, HasSubstr("2 things are missing.\n"));
  EXPECT_THAT(result.errors, IsEmpty());
}

TEST_F(Doctor, ReportsUnreachableCompositor) {
  const json document = run({"--json"}, "", {"WAYLAND_DISPLAY=/nowhere/wayland-0"}).document();
  expectMissing(document, "Wayland", "there is no compositor at /nowhere/wayland-0", "unset WAYLAND_DISPLAY");
  expectMissing(document, "X server", "DISPLAY is not set", "export DISPLAY=:0");
  const json forced = run({"--json", "--desktop", "wayland"}).document();
  expectMissing(forced, "Wayland", "WAYLAND_DISPLAY is not set", "export WAYLAND_DISPLAY=wayland-0");
  EXPECT_THAT(findings(forced, "X server"), IsEmpty());
}

TEST_F(Doctor, ReportsUnreachableServer) {
  const ToolRun result = run({"--json"}, ":64999");
  EXPECT_EQ(result.exit_status, 1);
  EXPECT_EQ(result.document()["well"], false);
  expectMissing(result.document(), "X server", "there is no X server :64999", "DISPLAY=:64999 xrandr --query");
}

TEST_F(Doctor, ReportsUnreachableBus) {
  expectMissing(run({"--json"}).document(), "colord", "the system bus cannot be reached", "systemctl start dbus");
}

TEST_F(Doctor, ReportsBrokenFilesInProfileFolders) {
  fs::create_directories(path("icc/deeper"));
  fs::copy_file("/usr/share/color/icc/colord/sRGB.icc", path("icc/sound.icc"));
  std::string sound = contentOf(path("icc/sound.icc"));
  write("icc/deeper/short.ICM", sound.substr(0, sound.size() - 100));
  write("icc/it's \n$(touch x)\x1b.icc", "no profile");
  write("icc/other.txt", "not looked at");
  ASSERT_EQ(mkfifo(path("icc/pipe.icc").c_str(), 0600), 0);
  fs::create_symlink("nowhere", path("icc/dangling.icc"));
  fs::create_symlink("/dev/zero", path("icc/zero.icc"));
  write("icc/huge.icc", "x");
  ASSERT_EQ(truncate(path("icc/huge.icc").c_str(), off_t{10} << 30), 0);

  const json document = run({"--json"}).document();
  expectMissing(document, "ICC files", path("icc/deeper/short.ICM") + " is shorter than its header states", "rm -- ");
  expectMissing(document, "ICC files", "is not an ICC profile", "rm -- $'");
  expectMissing(document, "ICC files", path("icc/pipe.icc") + " is not a regular file", "rm -- ");
  expectMissing(document, "ICC files", path("icc/dangling.icc") + " does not exist", "rm -- ");
  expectMissing(document, "ICC files", path("icc/zero.icc") + " is not a regular file", "rm -- ");
  expectMissing(document, "ICC files", path("icc/huge.icc") + " is too large for a profile", "rm -- ");
  EXPECT_THAT(run().output, HasSubstr(path("icc") + ": 1 profile\n"));
  EXPECT_THAT(run().output, Not(HasSubstr("\x1b")));

  // Each command removes what it names and nothing else.
  for (const json& finding : findings(document, "ICC files")) {
    if (finding["state"] == "missing") {
      const std::string remedy = finding["remedy"];
      EXPECT_EQ(support::run({"bash", "-c", "cd \"$1\" && " + remedy, "bash", folder_.path()}).exit_status, 0)
          << remedy;
    }
  }
  for (const json& finding : findings(run({"--json"}).document(), "ICC files")) {
    EXPECT_EQ(finding["state"], "ok") << finding["text"];
  }
  EXPECT_TRUE(fs::exists(path("icc/sound.icc")));
  EXPECT_FALSE(fs::exists(path("x")));
}

TEST_F(Doctor, ReadsDesktopFile) {
  const std::string well = write("well.json", R"({"displays": [{"number": 9, "bounds": [0, 0, 8, 6], "name": "Nine",
      "profiles": ["/usr/share/color/icc/colord/sRGB.icc"]}]})");
  const ToolRun result = runTool({"--desktop", well, "doctor"});
  EXPECT_EQ(result.exit_status, 0);
  EXPECT_EQ(result.output, "desktop file  note     " + well +
                               " describes the desktop; the computer's own is not queried\n\n" +
                               "Display 9, Nine\n"
                               "  name     ok       Nine\n"
                               "  profile  ok       /usr/share/color/icc/colord/sRGB.icc\n\n"
                               "All is well.\n");
  EXPECT_EQ(runTool({"doctor"}, {"", well}).output, result.output);

  const std::string ill = write("ill.json", R"({"displays": [{"number": 9, "bounds": [0, 0, 8, 6]}]})");
  const json document = runTool({"--desktop", ill, "doctor", "--json"}).document();
  EXPECT_EQ(document["well"], false);
  expectMissing(document["displays"][0], "name", "none", "edit " + ill);
  expectMissing(document["displays"][0], "profile", "none", "edit " + ill);
  EXPECT_EQ(runTool({"--desktop", write("none.json", "{}"), "doctor"}).exit_status, 1);
}

// --- with servers

class LiveDoctor : public ::testing::Test {
 protected:
  void setMonitor(const std::string& output, const std::optional<std::string>& name) {
    support::Monitor monitor;
    monitor.name = name;
    server_.setEdid(output, support::makeEdid(monitor));
  }
  ToolRun tool(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), OSTREVIN_HOST);
    support::Environment environment = server_.environment();
    environment.insert(environment.end(), {"OSTREVIN_DESKTOP=", "XDG_DATA_HOME=" + colord_.directory().string(),
                                           "XDG_STATE_HOME=" + (colord_.directory() / "state").string()});
    return {support::run(arguments, environment)};
  }
  json document() const { return tool({"doctor", "--json"}).document(); }
  json display() const { return document()["displays"][0]; }
  std::string number() { return std::to_string(server_.output("DUMMY0").id); }

  support::PrivateColord colord_;
  support::XorgServer server_;
};

TEST_F(LiveDoctor, FindsNothingMissing) {
  setMonitor("DUMMY0", "Good One");
  ASSERT_EQ(tool({"call", "SetProfile", number(), "/usr/share/color/icc/colord/sRGB.icc"}).exit_status, 0);
  const ToolRun result = tool({"doctor"});
  EXPECT_EQ(result.exit_status, 0) << result.output;
  EXPECT_THAT(
      result.output,
      AllOf(HasSubstr("X server   ok       " + server_.display() + ", RandR 1."), HasSubstr(", 1 display, scale 1\n"),
            HasSubstr("colord     ok       running, 1 display device\n"),
            HasSubstr("\nDisplay " + number() + ", Good One\n"),
            HasSubstr("  RandR    ok       DUMMY0, 1024 x 768 at 0, 0, main\n"),
            HasSubstr("  EDID     ok       \"Good One\", vendor 0x3e74, product 0x2a17, serial 20240607\n"),
            HasSubstr("  profile  ok       /usr/share/color/icc/colord/sRGB.icc\n"), HasSubstr("\nAll is well.\n")));
  EXPECT_EQ(document()["well"], true);
  const std::string device = support::PrivateColord::fields(colord_.colormgr({"get-devices"}), "Device ID").front();
  EXPECT_EQ(findings(display(), "colord")[0]["text"], "device " + device + ", 1 profile");
}

TEST_F(LiveDoctor, PrintsTheCommandThatFixesDisplayWithoutDevice) {
  setMonitor("DUMMY0", "Plain");
  const json about = display();
  EXPECT_EQ(about["name"], "Plain");
  const std::string remedy = "ostrevin-host call SetProfile " + number() + " FILE.icc";
  expectMissing(about, "colord", "has no device for this display", remedy);
  ASSERT_EQ(tool({"call", "SetProfile", number(), "/usr/share/color/icc/colord/sRGB.icc"}).exit_status, 0);
  EXPECT_EQ(tool({"doctor"}).exit_status, 0);
}

TEST_F(LiveDoctor, ReportsDeviceWithoutProfile) {
  setMonitor("DUMMY0", "Plain");
  colord_.registerDevice("xrandr-test", {{"XRANDR_name", "DUMMY0"}});
  expectMissing(display(), "colord", "the device xrandr-test has no profile", "SetProfile " + number());
}

TEST_F(LiveDoctor, ReportsProfileWithoutFile) {
  setMonitor("DUMMY0", "Plain");
  const fs::path file = colord_.copyOfProfile("AdobeRGB1998.icc", "own.icc");
  ASSERT_EQ(tool({"call", "SetProfile", number(), file.string()}).exit_status, 0);
  EXPECT_EQ(tool({"doctor"}).exit_status, 0);
  fs::remove(file);
  const json about = display();
  expectMissing(about, "profile", file.string() + " does not exist", "SetProfile " + number());
  std::ofstream(file) << "not a profile";
  expectMissing(display(), "profile", file.string() + " is not an ICC profile", "SetProfile " + number());
}

TEST_F(LiveDoctor, ReportsMissingInvalidAndNamelessEdid) {
  server_.removeEdid("DUMMY0");
  expectMissing(display(), "EDID", "the monitor sends no EDID", "drm.edid_firmware=DUMMY0:");
  support::EdidBytes broken = support::makeEdid();
  broken[20] ^= 1;
  server_.setEdid("DUMMY0", broken);
  expectMissing(display(), "EDID", "the monitor's EDID is invalid", "drm.edid_firmware=DUMMY0:");
  setMonitor("DUMMY0", std::nullopt);
  expectMissing(display(), "EDID", "serial 20240607, and no name", "drm.edid_firmware=DUMMY0:");
}

TEST_F(LiveDoctor, ReportsMonitorWithoutOutput) {
  server_.setMonitor("half", "512/100x768/200+0+0", "none");
  const json displays = document()["displays"];
  ASSERT_EQ(displays.size(), 2U);
  const json part = findings(displays[0], "EDID")[0]["state"] == "note" ? displays[0] : displays[1];
  EXPECT_EQ(findings(part, "EDID")[0]["text"], "a part of the screen without an output, which has no EDID and no name");
}

TEST_F(LiveDoctor, ReportsServerWithoutActiveDisplay) {
  server_.off("DUMMY0");
  const json result = document();
  expectMissing(result, "X server", "has no display that is on", "DISPLAY=" + server_.display() + " xrandr --auto");
  EXPECT_THAT(result["displays"], IsEmpty());
}

TEST_F(LiveDoctor, ReportsMissingColordOnce) {
  setMonitor("DUMMY0", "Plain");
  colord_.stop();
  const ToolRun result = tool({"doctor", "--json"});
  EXPECT_EQ(result.exit_status, 1);
  expectMissing(result.document(), "colord", "the system bus has no colord", "systemctl start colord");
  EXPECT_THAT(findings(result.document()["displays"][0], "colord"), IsEmpty());
}

TEST_F(LiveDoctor, ReportsHangingColord) {
  colord_.suspend();
  expectMissing(document(), "colord", "does not respond", "systemctl restart colord");
}

TEST_F(LiveDoctor, ReportsHangingServer) {
  support::XProxy proxy(server_.socket());
  proxy.limit(0, support::XProxy::AtLimit::kStall);
  const support::ProcessResult result = support::run(
      {OSTREVIN_HOST, "doctor", "--json"}, {"DISPLAY=" + proxy.display(), "OSTREVIN_DESKTOP=", "XAUTHORITY="});
  EXPECT_EQ(result.exit_status, 1);
  expectMissing(json::parse(result.output), "X server", "the X server " + proxy.display() + " does not respond", "");
}

/// An X server inside a window of another one, without RandR.
class ServerWithoutRandr final : public support::XServer {
 public:
  explicit ServerWithoutRandr(const XServer& outer) {
    start({"Xephyr", "-extension", "RANDR", "-screen", "640x480"}, {}, outer.environment());
  }
};

TEST_F(LiveDoctor, ReportsServerWithoutRandr) {
  const ServerWithoutRandr server(server_);
  support::Environment environment = server.environment();
  environment.emplace_back("OSTREVIN_DESKTOP=");
  const support::ProcessResult result = support::run({OSTREVIN_HOST, "doctor", "--json"}, environment);
  EXPECT_EQ(result.exit_status, 1);
  expectMissing(json::parse(result.output), "X server", server.display() + " lacks RandR 1.2", "-extension RANDR");
}

// --- under a compositor

class WaylandDoctor : public tool_test::ToolTest {
 protected:
  /// Without an X server. Linux's connectors are those in drm/ of the test's folder.
  ToolRun tool(std::vector<std::string> arguments, support::Environment more = {}) const {
    arguments.insert(arguments.begin(), OSTREVIN_HOST);
    support::Environment environment = sway_.environment();
    environment.insert(environment.end(), {"OSTREVIN_DESKTOP=", "OSTREVIN_DRM=" + path("drm"),
                                           "XDG_DATA_HOME=" + colord_.directory().string(),
                                           "XDG_STATE_HOME=" + (colord_.directory() / "state").string()});
    environment.insert(environment.begin(), more.begin(), more.end());  // the first value of a variable counts
    return {support::run(arguments, environment)};
  }
  json document(const support::Environment& more = {}) const { return tool({"doctor", "--json"}, more).document(); }
  void plugIn(const std::string& connector, const support::EdidBytes& edid) const {
    folder_.write("drm/card1-" + connector + "/edid", {reinterpret_cast<const char*>(edid.data()), edid.size()});
  }
  std::string number() const { return std::to_string(sway_.numbers().at("HEADLESS-1")); }

  support::PrivateColord colord_;
  support::SwaySession sway_;
};

TEST_F(WaylandDoctor, FindsNothingMissing) {
  const support::EdidBytes edid = support::makeEdid({.name = "Good One"});
  plugIn("HEADLESS-1", edid);
  sway_.swaymsg({"output", "HEADLESS-1", "mode", "1920x1080", "scale", "1.5"});
  ASSERT_EQ(tool({"call", "SetProfile", number(), "/usr/share/color/icc/colord/sRGB.icc"}).exit_status, 0);
  const ToolRun result = tool({"doctor"});
  EXPECT_EQ(result.exit_status, 0) << result.output;
  EXPECT_THAT(result.output,
              AllOf(HasSubstr("Wayland    ok       " + sway_.socket() + ", wl_output 4, zxdg_output_manager_v1 3, "),
                    HasSubstr("1 display\n"), HasSubstr("\nDisplay " + number() + ", Good One\n"),
                    HasSubstr("  Wayland  ok       HEADLESS-1, 1280 x 720 at 0, 0, scale 1.5, main\n"),
                    HasSubstr("  EDID     ok       \"" + support::decodedName(edid) + "\", vendor 0x3e74"),
                    HasSubstr(", from " + path("drm/card1-HEADLESS-1/edid") + "\n"), HasSubstr("\nAll is well.\n"),
                    Not(HasSubstr("X server"))));
  const auto fields = support::PrivateColord::fields(colord_.colormgr({"get-devices"}), "Metadata");
  EXPECT_THAT(fields, testing::Contains(HasSubstr("XRANDR_name=HEADLESS-1")));
}

TEST_F(WaylandDoctor, AdvisesNothingAboutAVirtualOutput) {
  const json about = document()["displays"][0];
  const std::string name = about["name"];
  EXPECT_THAT(support::runSuccessfully({"wayland-info"}, sway_.environment()),
              AnyOf(HasSubstr("model: '" + name + "'"), HasSubstr("description: " + name + "\n")));
  ASSERT_EQ(findings(about, "EDID").size(), 1U);
  EXPECT_EQ(findings(about, "EDID")[0]["state"], "note");
  EXPECT_EQ(findings(about, "EDID")[0]["text"],
            "Linux has no connector HEADLESS-1: a virtual output, which the compositor names \"" + name + "\"");
}

TEST_F(WaylandDoctor, ReportsMissingAndInvalidEdid) {
  plugIn("HEADLESS-1", {});
  expectMissing(document()["displays"][0], "EDID", "the monitor sends no EDID", "drm.edid_firmware=HEADLESS-1:");
  support::EdidBytes broken = support::makeEdid();
  broken[20] ^= 1;
  plugIn("HEADLESS-1", broken);
  expectMissing(document()["displays"][0], "EDID", "the monitor's EDID is invalid", "drm.edid_firmware=HEADLESS-1:");
}

TEST_F(WaylandDoctor, ReportsCompositorsThatHangOrHaveNoOutputs) {
  sway_.pause();
  expectMissing(document(), "Wayland", "the compositor at " + sway_.socket() + " does not respond", "log in again");
  sway_.resume();
  const support::FakeCompositor dark({});
  expectMissing(document({"WAYLAND_DISPLAY=" + dark.socket()}), "Wayland", "has no output that is on",
                "wlr-randr --output NAME --on");
}

TEST_F(WaylandDoctor, ReportsOldCompositor) {
  const support::FakeCompositor old(support::FakeGlobals{{support::FakeOutput()}, 3, 0});
  const json found = document({"WAYLAND_DISPLAY=" + old.socket()});
  expectMissing(found, "Wayland", "it lacks zxdg_output_manager_v1", "install a newer compositor");
  EXPECT_EQ(found["displays"].size(), 1U);
}

TEST_F(WaylandDoctor, ReportsUnusableLibraryAndUsesTheXServer) {
  const support::XorgServer server;
  write("libwayland-client.so.0", "not a library");
  const support::Environment broken = {"LD_LIBRARY_PATH=" + folder_.path(), "DISPLAY=" + server.display()};
  const json found = document(broken);
  expectMissing(found, "Wayland", "libwayland-client.so.0", "apt-get install libwayland-client0");
  EXPECT_EQ(findings(found, "X server")[0]["state"], "ok");
  ASSERT_EQ(found["displays"].size(), 1U);
  EXPECT_THAT(findings(found["displays"][0], "RandR")[0]["text"].get<std::string>(), HasSubstr("DUMMY0"));
  EXPECT_EQ(json::parse(tool({"list", "--json"}, broken).output)["displays"].size(), 1U);
}

}  // namespace
