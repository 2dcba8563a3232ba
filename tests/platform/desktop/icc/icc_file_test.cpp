#include "desktop/icc/icc_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "support/temporary_folder.h"
#include "support/unprivileged.h"

namespace {

using platform::desktop::IccFile;
using platform::desktop::kMaxIccFileSize;
using support::TemporaryFolder;

std::string numbered(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i) {
    bytes[i] = static_cast<char>(i * 31 + i / 251);
  }
  return bytes;
}

TEST(IccFile, GivesTheBytesOfARegularFile) {
  const TemporaryFolder folder;
  const std::string bytes = numbered(10000);
  const auto file = IccFile::open(folder.write("a", bytes));
  ASSERT_TRUE(file);
  EXPECT_EQ(file->size(), bytes.size());
  for (const std::size_t offset : {0, 1, 4000, 4095, 4096, 4097, 9999, 10000}) {
    for (const std::size_t count : {0, 1, 96, 5000}) {
      std::string read(count, '\0');
      const bool inside = offset + count <= bytes.size();
      ASSERT_EQ(file->read(offset, read.data(), count), inside) << offset << ' ' << count;
      if (inside) {
        EXPECT_EQ(read, bytes.substr(offset, count)) << offset << ' ' << count;
      }
    }
  }
}

TEST(IccFile, RefusesAReadWhoseEndOverflows) {
  const TemporaryFolder folder;
  const auto file = IccFile::open(folder.write("a", "12345678"));
  ASSERT_TRUE(file);
  char byte = 0;
  EXPECT_FALSE(file->read(UINT64_MAX, &byte, 1));
  EXPECT_FALSE(file->read(4, &byte, SIZE_MAX));
}

TEST(IccFile, OpensAnEmptyFile) {
  const TemporaryFolder folder;
  const auto file = IccFile::open(folder.write("a", ""));
  ASSERT_TRUE(file);
  EXPECT_EQ(file->size(), 0U);
  char byte = 0;
  EXPECT_FALSE(file->read(0, &byte, 1));
}

TEST(IccFile, FollowsASymbolicLink) {
  const TemporaryFolder folder;
  folder.write("a", "12345678");
  std::filesystem::create_symlink("a", folder.path("link"));
  EXPECT_TRUE(IccFile::open(folder.path("link")));
}

TEST(IccFile, RefusesWhatIsMissing) {
  const TemporaryFolder folder;
  std::filesystem::create_symlink("nowhere", folder.path("dangling"));
  std::filesystem::create_symlink("itself", folder.path("itself"));
  EXPECT_FALSE(IccFile::open(folder.path("missing")));
  EXPECT_FALSE(IccFile::open(folder.path("dangling")));
  EXPECT_FALSE(IccFile::open(folder.path("itself")));
  EXPECT_FALSE(IccFile::open(""));
}

TEST(IccFile, RefusesADirectory) {
  const TemporaryFolder folder;
  EXPECT_FALSE(IccFile::open(folder.path()));
}

TEST(IccFile, RefusesADeviceFile) {
  EXPECT_FALSE(IccFile::open("/dev/zero"));
  EXPECT_FALSE(IccFile::open("/dev/null"));
}

TEST(IccFile, RefusesANamedPipeWithoutWaitingForAWriter) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(IccFile::open(folder.path("pipe")));
}

TEST(IccFile, RefusesANamedPipeEvenWhenItWasTakenForARegularFile) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(IccFile::openAt(AT_FDCWD, folder.path("pipe").c_str()));
}

TEST(IccFile, RefusesASocket) {
  const TemporaryFolder folder;
  const int handle = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  folder.path("socket").copy(address.sun_path, sizeof(address.sun_path) - 1);
  ASSERT_EQ(bind(handle, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  EXPECT_FALSE(IccFile::open(folder.path("socket")));
  close(handle);
}

TEST(IccFile, RefusesAFileThatMayNotBeRead) {
  const TemporaryFolder folder;
  chmod(folder.path().c_str(), 0755);
  const std::string open_path = folder.write("open", "12345678");
  const std::string closed_path = folder.write("closed", "12345678");
  chmod(open_path.c_str(), 0644);
  chmod(closed_path.c_str(), 0);
  EXPECT_TRUE(support::holdsUnprivileged([&] { return IccFile::open(open_path) && !IccFile::open(closed_path); }));
}

TEST(IccFile, RefusesAFileAboveTheLargestSize) {
  const TemporaryFolder folder;
  const std::string path = folder.write("sparse", "x");
  ASSERT_EQ(truncate(path.c_str(), static_cast<off_t>(kMaxIccFileSize)), 0);
  EXPECT_TRUE(IccFile::open(path));
  ASSERT_EQ(truncate(path.c_str(), static_cast<off_t>(kMaxIccFileSize + 1)), 0);
  EXPECT_FALSE(IccFile::open(path));
}

TEST(IccFile, AReadFailsWhenTheFileHasShrunk) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a", numbered(10000));
  const auto file = IccFile::open(path);
  ASSERT_TRUE(file);
  ASSERT_EQ(truncate(path.c_str(), 5000), 0);
  std::string read(4000, '\0');
  EXPECT_FALSE(file->read(5000, read.data(), 1000));
  EXPECT_TRUE(file->read(4200, read.data(), 700));
}

TEST(IccFile, GoesOnReadingAFileThatWasReplaced) {
  const TemporaryFolder folder;
  const std::string bytes = numbered(10000);
  const auto file = IccFile::open(folder.write("a", bytes));
  ASSERT_TRUE(file);
  std::filesystem::rename(folder.write("b", "other"), folder.path("a"));
  std::string read(1000, '\0');
  ASSERT_TRUE(file->read(9000, read.data(), read.size()));
  EXPECT_EQ(read, bytes.substr(9000));
}

TEST(IccFile, TellsTheFileByItsIdentity) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a", "12345678");
  const auto first = IccFile::open(path)->identity();
  EXPECT_EQ(IccFile::open(path)->identity(), first);
  std::filesystem::rename(folder.write("b", "12345678"), path);
  EXPECT_NE(IccFile::open(path)->identity(), first);
}

}  // namespace
