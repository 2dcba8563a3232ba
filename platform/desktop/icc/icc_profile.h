// The header and the tag table of an ICC profile, read from its file with every bound checked. Any thread may call.
//
// This reader stands beside lcms2 because lcms2 refuses profiles with more than 100 tags and costs more than a listing
// may spend on each file. It judges a file as lcms2 2.14 does: a file is no profile without the "acsp" mark, with a
// version above 5.0, with a class that ICC.1 does not name, or with a tag table that the file does not hold; a tag that
// reaches out of the file, or beyond the size that the header states, is not there. In two things it is more patient:
// an element may be empty, and of several tags with one signature the first counts, where lcms2 passes over the tag and
// refuses the file. Layout: ICC.1:2022, 7.2 and 7.3.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "desktop/icc/icc_file.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// More tags than this make a file no profile. (Well over anything in use, it bounds what a hostile table can cost.)
inline constexpr std::uint32_t kMaxIccTags = 65536;

/// Four characters as ICC files store them: big-endian, in one number.
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
  using Header = std::array<std::uint8_t, kHeaderSize>;

  /// Nothing when the file is no profile. `file` must outlive the profile.
  static std::optional<IccProfile> parse(const IccFile& file);

  const Header& header() const { return header_; }
  /// The four characters of the header's class field; nothing when it is zero, as some old writers left it.
  std::optional<std::string> deviceClass() const;
  std::optional<IccTag> find(std::uint32_t signature) const;

 private:
  IccProfile(const IccFile& file, const Header& header) : file_(&file), header_(header) {}

  const IccFile* file_;
  Header header_;
  std::uint32_t tag_count_ = 0;
  std::uint64_t end_ = 0;  ///< no element reaches beyond this offset
};

}  // namespace platform::desktop
