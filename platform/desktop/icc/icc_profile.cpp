#include "desktop/icc/icc_profile.h"

#include <fcntl.h>

#include <algorithm>
#include <cstring>

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

bool readWhole(const RegularFile& file, std::uint64_t offset, void* target, std::size_t count) {
  return file.read(offset, target, count) == static_cast<ssize_t>(count);
}

}  // namespace

std::optional<IccProfile> IccProfile::open(const std::string& path, bool is_regular) {
  const RegularFile file = is_regular ? RegularFile(AT_FDCWD, path.c_str()) : RegularFile(path);
  IccProfile profile;
  if (!file || !profile.load(file, kKeptSize)) {
    return std::nullopt;
  }
  profile.path_ = path;
  return profile;
}

std::optional<IccProfile> IccProfile::of(const RegularFile& file) {
  // Header, tag table and, in most profiles, the description.
  constexpr std::size_t kBeginning = 4096;
  IccProfile profile;
  profile.file_ = &file;
  return profile.load(file, kBeginning) ? std::optional(std::move(profile)) : std::nullopt;
}

bool IccProfile::load(const RegularFile& file, std::size_t kept_size) {
  identity_ = file.identity();
  if (fileSize() < kTableStart || fileSize() > kMaxIccFileSize) {
    return false;
  }
  kept_.resize(std::min<std::uint64_t>(kept_size, fileSize()));
  if (!readWhole(file, 0, kept_.data(), kept_.size())) {
    return false;
  }
  std::copy_n(kept_.begin(), kHeaderSize, header_.begin());
  tag_count_ = bigEndian32(&kept_[kHeaderSize]);
  end_ = std::min<std::uint64_t>(fileSize(), bigEndian32(&header_[kSizeField]));
  return isProfileHeader(header_) && tag_count_ <= kMaxIccTags &&
         kTableStart + tag_count_ * kTagEntrySize <= fileSize();
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
    if (!read(kTableStart + std::uint64_t{done} * kTagEntrySize, table.data(), entries * kTagEntrySize)) {
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

bool IccProfile::read(std::uint64_t offset, void* target, std::size_t count) const {
  if (offset > fileSize() || count > fileSize() - offset) {
    return false;
  }
  if (offset + count <= kept_.size()) {
    std::memcpy(target, kept_.data() + offset, count);
    return true;
  }
  if (file_ != nullptr) {
    return readWhole(*file_, offset, target, count);
  }
  const RegularFile again(path_);
  return again && again.identity() == identity_ && readWhole(again, offset, target, count);
}

}  // namespace platform::desktop
