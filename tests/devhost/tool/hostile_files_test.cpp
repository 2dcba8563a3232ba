// ostrevin-host and files that are not what their names promise: it must neither wait nor crash.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "devhost/tool/tool_runner.h"

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using tool_test::runTool;
using tool_test::ToolRun;

constexpr const char* kSound = "/usr/share/color/icc/colord/sRGB.icc";

class HostileFiles : public tool_test::ToolTest {
 protected:
  HostileFiles() {
    fs::create_directory(path("icc"));
    fs::copy_file(kSound, path("icc/sound.icc"));
    makePipe("icc/pipe.icc");
    fs::create_symlink("pipe.icc", path("icc/link-to-pipe.icc"));
    fs::create_symlink("/dev/zero", path("icc/zero.icc"));
    fs::create_symlink("loop.icc", path("icc/loop.icc"));
    fs::create_directory(path("icc/folder.icc"));
    write("icc/empty.icc", "");
    write("icc/sparse.icc", "x");
    truncateTo("icc/sparse.icc", off_t{10} << 30);
  }

  std::string path(const std::string& name) const { return (folder_.path() / name).string(); }
  void makePipe(const std::string& name) { ASSERT_EQ(mkfifo(path(name).c_str(), 0600), 0); }
  void truncateTo(const std::string& name, off_t size) { ASSERT_EQ(truncate(path(name).c_str(), size), 0); }

  std::vector<std::string> hostilePaths() const {
    return {path("icc/pipe.icc"),
            path("icc/link-to-pipe.icc"),
            path("icc/zero.icc"),
            path("icc/loop.icc"),
            path("icc/folder.icc"),
            path("icc/empty.icc"),
            path("icc/sparse.icc"),
            path("icc/nothing.icc"),
            "/dev/zero",
            "/dev/stdin",
            "/dev/tty",
            "/dev/full",
            "/proc/self/mem",
            "/"};
  }
};

TEST_F(HostileFiles, HaveNoTags) {
  for (const std::string& hostile : hostilePaths()) {
    const ToolRun run = runTool({"tag", hostile, "desc"});
    EXPECT_EQ(run.exit_status, 1) << hostile;
    EXPECT_EQ(run.output, "no\n") << hostile;
  }
  EXPECT_EQ(runTool({"tag", path("icc/sound.icc"), "desc"}).output, "yes\n");
}

TEST_F(HostileFiles, HaveNoDocuments) {
  for (const std::string& hostile : hostilePaths()) {
    const ToolRun run = runTool({"qv02", hostile});
    EXPECT_EQ(run.exit_status, 1) << hostile;
    EXPECT_THAT(run.output, IsEmpty()) << hostile;
    EXPECT_EQ(run.errorLines(), 1U) << run.errors;
  }
}

TEST_F(HostileFiles, AreNotListed) {
  const ToolRun run = runTool({"profiles", "--json"}, {"", "", {"XDG_DATA_HOME=" + folder_.path().string()}});
  EXPECT_EQ(run.exit_status, 0);
  const nlohmann::json document = run.document();
  std::vector<std::string> listed;
  for (const auto& profile : document["profiles"]) {
    const std::string file = profile["path"];
    if (file.starts_with(folder_.path().string())) {
      listed.push_back(file);
    }
  }
  EXPECT_THAT(listed, ElementsAre(path("icc/sound.icc")));
}

TEST_F(HostileFiles, AreNoDesktops) {
  for (const std::string& hostile : hostilePaths()) {
    const ToolRun run = runTool({"--desktop", hostile});
    EXPECT_EQ(run.exit_status, 2) << hostile;
    EXPECT_EQ(run.errorLines(), 1U) << run.errors;
  }
}

TEST_F(HostileFiles, ThatShrinkWhileTheyAreReadGiveADocumentOrNone) {
  // A profile with a document of 32 MiB in its QV02 tag.
  const std::string text(std::size_t{32} << 20, 'd');
  std::string tag = std::string("text\0\0\0\0", 8) + text;
  std::string profile(132 + 12, '\0');
  const auto put = [&](std::size_t offset, std::size_t value) {
    for (int i = 0; i < 4; ++i) {
      profile[offset + static_cast<std::size_t>(i)] = static_cast<char>(value >> (24 - 8 * i) & 0xFFU);
    }
  };
  put(0, profile.size() + tag.size());
  profile.replace(8, 1, "\x02");
  profile.replace(12, 12, "mntrRGB XYZ ");
  profile.replace(36, 4, "acsp");
  put(128, 1);
  profile.replace(132, 4, "QV02");
  put(136, profile.size());
  put(140, tag.size());
  profile += tag;
  const std::string file = write("large.icc", profile);
  EXPECT_EQ(runTool({"qv02", file}).output, text);

  std::atomic<bool> done = false;
  std::thread shrinker([&] {
    while (!done) {
      for (const std::size_t size : {profile.size() / 2, std::size_t{0}, std::size_t{5000}, profile.size()}) {
        [[maybe_unused]] const int ignored = truncate(file.c_str(), static_cast<off_t>(size));
        std::this_thread::yield();
      }
    }
  });
  for (int i = 0; i < 10; ++i) {
    const int status = runTool({"qv02", file}).exit_status;
    EXPECT_TRUE(status == 0 || status == 1) << status;
  }
  done = true;
  shrinker.join();
}

}  // namespace
