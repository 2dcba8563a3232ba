#include "desktop/icc/icc_profile.h"

#include <algorithm>

#include "desktop/model/big_endian.h"

namespace platform::desktop {
namespace {

constexpr std::size_t kSizeField = 0;
constexpr std::size_t kVersionField = 8;
constexpr std::size_t kClassField = 12;
constexpr std::size_t kMarkField = 36;
constexpr std::size_t kTagCountSize = 4;
constexpr std::size_t kTagEntrySize = 12;
constexpr std::size_t kTableStart = IccProfile::kHeaderSize + kTagCountSize;

/// Zero is the mark of writers that did not know the field.
constexpr std::array<std::uint32_t, 8> kClasses = {0,
                                                   iccSignature("abst"),
                                                   iccSignature("link"),
                                                   iccSignature("mntr"),
                                                   iccSignature("nmcl"),
                                                   iccSignature("prtr"),
                                                   iccSignature("scnr"),
                                                   iccSignature("spac")};

bool isProfileHeader(const IccProfile::Header& header) {
  const std::uint8_t major = header[kVersionField];
  const std::uint8_t minor = header[kVersionField + 1];
  const bool version_is_known = major < 5 || (major == 5 && minor == 0);
  const bool class_is_known =
      std::find(kClasses.begin(), kClasses.end(), bigEndian32(&header[kClassField])) != kClasses.end();
  return bigEndian32(&header[kMarkField]) == iccSignature("acsp") && version_is_known && class_is_known;
}

}  // namespace

std::optional<IccProfile> IccProfile::parse(const IccFile& file) {
  Header header;
  std::array<std::uint8_t, kTagCountSize> count;
  if (!file.read(0, header.data(), header.size()) || !isProfileHeader(header) ||
      !file.read(kHeaderSize, count.data(), count.size())) {
    return std::nullopt;
  }
  IccProfile profile(file, header);
  profile.tag_count_ = bigEndian32(count.data());
  profile.end_ = std::min<std::uint64_t>(file.size(), bigEndian32(&header[kSizeField]));
  if (profile.tag_count_ > kMaxIccTags || kTableStart + profile.tag_count_ * kTagEntrySize > file.size()) {
    return std::nullopt;
  }
  return profile;
}

std::optional<std::string> IccProfile::deviceClass() const {
  const auto* const first = header_.data() + kClassField;
  return bigEndian32(first) == 0 ? std::nullopt : std::optional(std::string(first, first + 4));
}

std::optional<IccTag> IccProfile::find(std::uint32_t signature) const {
  constexpr std::uint32_t kEntriesAtOnce = 100;
  std::array<std::uint8_t, kEntriesAtOnce * kTagEntrySize> table;
  for (std::uint32_t done = 0; done < tag_count_; done += kEntriesAtOnce) {
    const std::size_t entries = std::min(kEntriesAtOnce, tag_count_ - done);
    if (!file_->read(kTableStart + std::uint64_t{done} * kTagEntrySize, table.data(), entries * kTagEntrySize)) {
      return std::nullopt;
    }
    for (std::size_t i = 0; i < entries; ++i) {
      const std::uint8_t* entry = &table[i * kTagEntrySize];
      const IccTag tag{bigEndian32(entry), bigEndian32(entry + 4), bigEndian32(entry + 8)};
      if (tag.signature == signature && std::uint64_t{tag.offset} + tag.size <= end_) {
        return tag;
      }
    }
  }
  return std::nullopt;
}

}  // namespace platform::desktop
