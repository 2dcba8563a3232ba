// The reader of one ICC profile file: its header and its tag table, with every bound checked. Any thread may call.
//
// This reader stands beside lcms2 because lcms2 refuses profiles with more than 100 tags and costs more than a listing
// may spend on each file. It judges a file as lcms2 2.14 does: a profile has the "acsp" mark, a version up to 5.0, a
// class that ICC.1 names, and its whole tag table in the file; a tag that reaches out of the file, or beyond the size
// in the header, is absent. There are two differences: an element may be empty, and of several tags with one signature
// the first counts, where lcms2 ignores the tag and refuses the file. Layout: ICC.1:2022, 7.2 and 7.3.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "desktop/model/export.h"
#include "desktop/model/regular_file.h"

namespace platform::desktop {

/// Files above this size are refused; the largest profiles in use have some tens of MiB.
inline constexpr std::uint64_t kMaxIccFileSize = std::uint64_t{1} << 30;

/// A file with more tags than this is refused: far more than any in use, it bounds what a hostile table can cost.
inline constexpr std::uint32_t kMaxIccTags = 65536;

// Numbers as ICC files store them, most significant byte first; the caller has checked the bounds.

constexpr std::uint16_t bigEndian16(const std::uint8_t* bytes) {
  return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

constexpr std::uint32_t bigEndian32(const std::uint8_t* bytes) {
  return std::uint32_t{bigEndian16(bytes)} << 16 | bigEndian16(bytes + 2);
}

/// Four characters in one number.
constexpr std::uint32_t iccSignature(const char (&text)[5]) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) {
    value = value << 8 | static_cast<unsigned char>(text[i]);
  }
  return value;
}

/// Where a tag's element lies in the file: `size` bytes from `offset` on, all inside the file.
struct IccTag {
  std::uint32_t signature = 0;
  std::uint32_t offset = 0;
  std::uint32_t size = 0;
  friend bool operator==(const IccTag&, const IccTag&) = default;
};

class PLATFORM_API IccProfile {
 public:
  static constexpr std::size_t kHeaderSize = 128;
  /// Of a profile that is opened by its path, this much is kept in memory.
  static constexpr std::size_t kKeptSize = 64 << 10;
  using Header = std::array<std::uint8_t, kHeaderSize>;

  /// Nothing unless `path` leads to a readable profile. No file stays open. The file's first kKeptSize bytes are read
  /// once; what lies behind them is read from the file when it is asked for, if the file is still in the same state.
  /// `is_regular`: the caller has seen a regular file at the path, so that it is opened without another look; should it
  /// have become a device since, opening it may have effects, and it is refused all the same.
  static std::optional<IccProfile> open(const std::string& path, bool is_regular = false);
  /// Of a file that outlives the profile; nothing when it is not a profile.
  static std::optional<IccProfile> of(const RegularFile& file);

  const Header& header() const { return header_; }
  std::uint64_t fileSize() const { return identity_.size; }
  /// The four characters of the header's class field; nothing when it is zero, as some old writers left it.
  std::optional<std::string> deviceClass() const;
  std::optional<IccTag> find(std::uint32_t signature) const;

  /// Fills `target` with `count` bytes from `offset` on. False, with `target` undefined, when the file does not have
  /// them all, or is no longer the file that was opened.
  bool read(std::uint64_t offset, void* target, std::size_t count) const;

 private:
  IccProfile() = default;
  bool load(const RegularFile& file, std::size_t kept_size);

  std::string path_;
  const RegularFile* file_ = nullptr;  ///< null when the file is opened by its path
  FileIdentity identity_;
  std::vector<std::uint8_t> kept_;  ///< the beginning of the file
  Header header_{};
  std::uint32_t tag_count_ = 0;
  std::uint64_t end_ = 0;  ///< no element reaches beyond this offset
};

}  // namespace platform::desktop
