#include "desktop/model/regular_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "support/temporary_folder.h"

namespace {

using platform::desktop::RegularFile;
using support::TemporaryFolder;

std::string numbered(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i) {
    bytes[i] = static_cast<char>(i * 31 + i / 251);
  }
  return bytes;
}

/// What the file has at `offset`, at most `count` bytes.
std::string read(const RegularFile& file, std::uint64_t offset, std::size_t count) {
  std::string bytes(count, '\0');
  const ssize_t size = file.read(offset, bytes.data(), count);
  bytes.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
  return bytes;
}

/// errno of opening, or -1 when the file can be opened.
int failureOf(const std::string& path) { return RegularFile(path) ? -1 : errno; }

TEST(RegularFile, ReturnsTheBytesThatAreThere) {
  const TemporaryFolder folder;
  const std::string bytes = numbered(10000);
  const RegularFile file(folder.write("a", bytes));
  ASSERT_TRUE(file);
  EXPECT_EQ(file.size(), bytes.size());
  for (const std::size_t offset : {0, 1, 9999, 10000, 10001}) {
    for (const std::size_t count : {0, 1, 96, 20000}) {
      EXPECT_EQ(read(file, offset, count), offset > bytes.size() ? "" : bytes.substr(offset, count));
    }
  }
}

TEST(RegularFile, FollowsSymbolicLink) {
  const TemporaryFolder folder;
  folder.write("a", "12345678");
  std::filesystem::create_symlink("a", folder.path("link"));
  EXPECT_TRUE(RegularFile(folder.path("link")));
}

TEST(RegularFile, FailsWithTheReasonForMissingFile) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink("nowhere", folder.path("dangling"));
  std::filesystem::create_symlink("itself", folder.path("itself"));
  EXPECT_EQ(failureOf(folder.path("missing")), ENOENT);
  EXPECT_EQ(failureOf(folder.path("dangling")), ENOENT);
  EXPECT_EQ(failureOf(folder.path("itself")), ELOOP);
  EXPECT_EQ(failureOf(""), ENOENT);
}

TEST(RegularFile, FailsWithoutErrorForOtherKindsOfFile) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  const int handle = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  folder.path("socket").copy(address.sun_path, sizeof(address.sun_path) - 1);
  ASSERT_EQ(bind(handle, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  for (const std::string& path : {folder.path(), folder.path("pipe"), folder.path("socket"), std::string("/dev/zero"),
                                  std::string("/dev/null")}) {
    EXPECT_EQ(failureOf(path), 0) << path;
  }
  close(handle);
}

TEST(RegularFile, DoesNotWaitForAPipeThatWasTakenForAFile) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(RegularFile(AT_FDCWD, folder.path("pipe").c_str()));
}

TEST(RegularFile, FailsWithoutPermission) {
  const TemporaryFolder folder;
  chmod(folder.path().c_str(), 0755);
  const std::string open_path = folder.write("open", "12345678");
  const std::string closed_path = folder.write("closed", "12345678");
  chmod(open_path.c_str(), 0644);
  chmod(closed_path.c_str(), 0);
  EXPECT_TRUE(support::holdsUnprivileged([&] { return RegularFile(open_path) && failureOf(closed_path) == EACCES; }));
}

TEST(RegularFile, ReadsLessOfAFileThatHasShrunk) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a", numbered(10000));
  const RegularFile file(path);
  ASSERT_EQ(truncate(path.c_str(), 5000), 0);
  EXPECT_EQ(read(file, 4900, 1000).size(), 100U);
  EXPECT_EQ(read(file, 5000, 1000), "");
}

TEST(RegularFile, ReadsTheFileThatWasOpenedAfterItIsReplaced) {
  const TemporaryFolder folder;
  const std::string bytes = numbered(10000);
  const RegularFile file(folder.write("a", bytes));
  std::filesystem::rename(folder.write("b", "other"), folder.path("a"));
  EXPECT_EQ(read(file, 9000, 1000), bytes.substr(9000));
}

TEST(RegularFile, HasAnIdentityThatChangesWithTheFile) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a", "12345678");
  const auto first = RegularFile(path).identity();
  EXPECT_EQ(RegularFile(path).identity(), first);
  std::filesystem::rename(folder.write("b", "12345678"), path);
  EXPECT_NE(RegularFile(path).identity(), first);
}

}  // namespace
