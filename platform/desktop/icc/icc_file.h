// One regular file, opened for reading in a way that no kind of file can hold up or crash.
//
// A pipe, device, socket or directory is refused without being opened or waited for. The bytes are read with pread,
// never mapped: a file that shrinks while it is read gives a failed read and not a signal. One object belongs to one
// thread at a time; any number of objects may be used at once.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "desktop/icc/file_identity.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// Files above this size are refused; the largest profiles in use have some tens of MiB.
inline constexpr std::uint64_t kMaxIccFileSize = std::uint64_t{1} << 30;

class PLATFORM_API IccFile {
 public:
  /// Follows symbolic links. Null unless `path` is a readable regular file of at most kMaxIccFileSize bytes.
  static std::unique_ptr<IccFile> open(const std::string& path);
  /// The same for a name in an open directory which the caller has just seen to be a regular file.
  static std::unique_ptr<IccFile> openAt(int directory, const char* name);

  IccFile(const IccFile&) = delete;
  IccFile& operator=(const IccFile&) = delete;
  ~IccFile();

  /// As it was when the file was opened.
  const FileIdentity& identity() const { return identity_; }
  std::uint64_t size() const { return identity_.size; }

  /// Fills `target` with `count` bytes from `offset` on. False, with `target` undefined, when the file has not got them
  /// all.
  bool read(std::uint64_t offset, void* target, std::size_t count) const;

 private:
  explicit IccFile(int descriptor) : descriptor_(descriptor) {}
  static std::unique_ptr<IccFile> adopt(int descriptor);
  bool readFromFile(std::uint64_t offset, void* target, std::size_t count) const;

  int descriptor_;
  FileIdentity identity_;
  /// The beginning of the file, read at once: header, tag table and, in most profiles, the description.
  std::array<std::uint8_t, 4096> head_;
  std::size_t head_size_ = 0;
};

}  // namespace platform::desktop
