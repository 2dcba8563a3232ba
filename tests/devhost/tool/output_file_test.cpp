// Files that ostrevin-host writes.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <filesystem>

#include "devhost/tool/terminal/output_file.h"
#include "devhost/tool/tool_runner.h"
#include "support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using tool_test::contentOf;
using tool_test::runTool;
using tool_test::ToolRun;

class OutputFile : public tool_test::ToolTest {
 protected:
  ToolRun drawTo(const std::string& path) {
    return runTool({"--desktop", write("desktop.json", tool_test::kOneDisplay), "layout", "-o", path});
  }
  void expectRefused(const std::string& target, const std::string& reason) {
    const ToolRun run = drawTo(target);
    EXPECT_EQ(run.exit_status, 1) << target;
    EXPECT_THAT(run.errors, HasSubstr(reason));
    EXPECT_EQ(run.errorLines(), 1U);
    EXPECT_THAT(run.output, IsEmpty());
  }

  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.path())) {
      names.push_back(entry.path().filename());
    }
    return names;
  }
};

TEST_F(OutputFile, NewFileHonoursUmask) {
  EXPECT_EQ(drawTo(path("new.svg")).exit_status, 0);
  EXPECT_THAT(contentOf(path("new.svg")), StartsWith("<?xml"));
  const mode_t mask = umask(0);
  umask(mask);
  struct stat status {};
  ASSERT_EQ(stat(path("new.svg").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0666U & ~mask);
  EXPECT_THAT(files(), ::testing::UnorderedElementsAre("new.svg", "desktop.json"));
}

TEST_F(OutputFile, ReplacingKeepsPermissions) {
  const std::string old = write("old.svg", std::string(100000, 'x'));
  ASSERT_EQ(chmod(old.c_str(), 0640), 0);
  EXPECT_EQ(drawTo(old).exit_status, 0);
  EXPECT_THAT(contentOf(old), ::testing::AllOf(StartsWith("<?xml"), ::testing::EndsWith("</svg>\n")));
  struct stat status {};
  ASSERT_EQ(stat(old.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST_F(OutputFile, ReplacesTargetOfLink) {
  fs::create_directory(path("elsewhere"));
  write("elsewhere/target.svg", "old");
  fs::create_symlink("elsewhere/target.svg", path("link.svg"));
  EXPECT_EQ(drawTo(path("link.svg")).exit_status, 0);
  EXPECT_TRUE(fs::is_symlink(path("link.svg")));
  EXPECT_THAT(contentOf(path("elsewhere/target.svg")), StartsWith("<?xml"));
}

TEST_F(OutputFile, RefusesOtherThanRegularFiles) {
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  fs::create_symlink("pipe", path("link-to-pipe"));
  fs::create_symlink("nowhere", path("link-to-nothing"));
  for (const std::string& target : {path("pipe"), path("link-to-pipe"), folder_.path(), std::string("/dev/null"),
                                    std::string("/dev/zero"), std::string("/dev/full")}) {
    expectRefused(target, target + ": not written: it is not a regular file");
  }
  expectRefused(path("link-to-nothing"), "not written: it is a dangling link");
  EXPECT_FALSE(fs::exists(path("nowhere")));
}

TEST_F(OutputFile, ReportsUncreatableFileInOneLine) {
  expectRefused(path("no/such/folder/new.svg"), "cannot be written: No such file or directory");
  expectRefused("", "cannot be written");
}

TEST_F(OutputFile, KeepsUnwritableFile) {
  const std::string old = write("old.svg", "old");
  ASSERT_EQ(chmod(old.c_str(), 0444), 0);
  ASSERT_EQ(chmod(folder_.path().c_str(), 0777), 0);
  // Not by running the tool: other users may lack access to the build folder.
  EXPECT_TRUE(support::holdsUnprivileged([&] {
    try {
      devhost::tool::writeFile(old, "new");
    } catch (const devhost::tool::OutputError& error) {
      return error.what() == old + ": cannot be written: Permission denied";
    }
    return false;
  }));
  EXPECT_EQ(contentOf(old), "old");
  EXPECT_THAT(files(), ::testing::ElementsAre("old.svg"));
}

TEST_F(OutputFile, RemovesPartOfFileThatDoesNotFit) {
  const std::string old = write("old.svg", "old");
  const std::string desktop = write("desktop.json", tool_test::kOneDisplay);
  // A limit of 0 bytes; with its signal ignored, writing fails.
  const auto run = support::run({"sh", "-c", "trap '' XFSZ; ulimit -f 0; exec \"$@\"", "sh", OSTREVIN_HOST, "--desktop",
                                 desktop, "layout", "-o", old});
  EXPECT_EQ(run.exit_status, 1);
  EXPECT_THAT(run.errors, HasSubstr("old.svg: cannot be written: File too large"));
  EXPECT_EQ(contentOf(old), "old");
  EXPECT_THAT(files(), ::testing::UnorderedElementsAre("old.svg", "desktop.json"));
}

}  // namespace
