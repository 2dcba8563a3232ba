#include "fuzz/support/icc_reference.h"

#include <algorithm>

namespace fuzz {
namespace {

constexpr std::size_t kClassOffset = 12;
constexpr std::size_t kCountOffset = 128;
constexpr std::size_t kTableOffset = 132;
constexpr std::size_t kLineSize = 12;
constexpr std::uint32_t kMostTags = 65536;

std::uint32_t numberAt(std::string_view file, std::size_t offset) {
  std::uint32_t number = 0;
  for (const char byte : file.substr(offset, 4)) {
    number = number * 256 + static_cast<unsigned char>(byte);
  }
  return number;
}

bool isKnownClass(std::string_view signature) {
  using namespace std::string_view_literals;
  constexpr std::string_view kKnown[] = {"\0\0\0\0"sv, "scnr", "mntr", "prtr", "link", "spac", "abst", "nmcl"};
  return std::find(std::begin(kKnown), std::end(kKnown), signature) != std::end(kKnown);
}

}  // namespace

std::optional<std::string_view> ReferenceProfile::element(std::string_view signature) const {
  const std::uint64_t end = std::min<std::uint64_t>(file.size(), numberAt(file, 0));
  for (const TagLine& line : lines) {
    if (line.signature == signature && line.offset <= end && line.size <= end - line.offset) {
      return file.substr(line.offset, line.size);
    }
  }
  return std::nullopt;
}

std::optional<ReferenceProfile> readReference(std::string_view file) {
  if (file.size() < kTableOffset || file.substr(36, 4) != "acsp" || numberAt(file, 8) >> 16 > 0x0500 ||
      !isKnownClass(file.substr(kClassOffset, 4))) {
    return std::nullopt;
  }
  const std::uint32_t count = numberAt(file, kCountOffset);
  if (count > kMostTags || (file.size() - kTableOffset) / kLineSize < count) {
    return std::nullopt;
  }
  ReferenceProfile profile{file, {}, {}};
  if (numberAt(file, kClassOffset) != 0) {
    profile.profile_class = file.substr(kClassOffset, 4);
  }
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::size_t line = kTableOffset + i * kLineSize;
    profile.lines.push_back({file.substr(line, 4), numberAt(file, line + 4), numberAt(file, line + 8)});
  }
  return profile;
}

}  // namespace fuzz
