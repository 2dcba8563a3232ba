#include "desktop/icc_profile.h"

#include <algorithm>

#include "desktop/big_endian.h"

namespace platform::desktop {
namespace {

constexpr std::size_t kSizeField = 0;
constexpr std::size_t kClassField = 12;
constexpr std::size_t kMarkField = 36;
constexpr std::size_t kTagCountSize = 4;
constexpr std::size_t kTagEntrySize = 12;
constexpr std::size_t kTableStart = IccProfile::kHeaderSize + kTagCountSize;

}  // namespace

std::optional<IccProfile> IccProfile::parse(const IccFile& file) {
  Header header;
  std::array<std::uint8_t, kTagCountSize> count;
  if (!file.read(0, header.data(), header.size()) || bigEndian32(&header[kMarkField]) != iccSignature("acsp") ||
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
  const auto* first = header_.data() + kClassField;
  if (std::any_of(first, first + 4, [](std::uint8_t byte) { return byte == 0 || byte >= 0x80; })) {
    return std::nullopt;
  }
  return std::string(first, first + 4);
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
