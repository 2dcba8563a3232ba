#include "desktop/icc/icc_elements.h"

#include <sys/mman.h>

namespace platform::desktop {
namespace {

/// Null when there is not that much memory. A large buffer gets large pages, which are filled in a fraction of the
/// time.
std::uint8_t* allocate(std::size_t size) {
  constexpr std::size_t kLargePage = 2 << 20;
  if (size < 2 * kLargePage) {
    return static_cast<std::uint8_t*>(std::malloc(size));
  }
  const std::size_t whole_pages = (size + kLargePage - 1) / kLargePage * kLargePage;
  void* const memory = std::aligned_alloc(kLargePage, whole_pages);
  if (memory != nullptr) {
    madvise(memory, whole_pages, MADV_HUGEPAGE);  // only a hint
  }
  return static_cast<std::uint8_t*>(memory);
}

}  // namespace

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
  bytes.data.reset(allocate(tag.size));
  bytes.size = tag.size;
  if (!bytes.data || !file.read(tag.offset, bytes.data.get(), bytes.size)) {
    return std::nullopt;
  }
  return bytes;
}

}  // namespace platform::desktop
