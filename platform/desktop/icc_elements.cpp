#include "desktop/icc_elements.h"

namespace platform::desktop {

bool isIccProfile(const std::string& path) {
  const auto file = IccFile::open(path);
  return file && IccProfile::parse(*file);
}

std::optional<Bytes> readElement(const std::string& path, std::uint32_t signature) {
  const auto file = IccFile::open(path);
  const auto profile = file ? IccProfile::parse(*file) : std::nullopt;
  const auto tag = profile ? profile->find(signature) : std::nullopt;
  return tag ? readElement(*file, *tag) : std::nullopt;
}

std::optional<Bytes> readElement(const IccFile& file, const IccTag& tag) {
  Bytes bytes;
  if (tag.size == 0) {
    return bytes;
  }
  bytes.data.reset(static_cast<std::uint8_t*>(std::malloc(tag.size)));
  bytes.size = tag.size;
  if (!bytes.data || !file.read(tag.offset, bytes.data.get(), bytes.size)) {
    return std::nullopt;
  }
  return bytes;
}

}  // namespace platform::desktop
