#include "tools/machorun/mapped_image.h"

#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace machorun {
namespace {

constexpr std::uint64_t kPage = 4096;
/// No library of ours comes near.
constexpr std::uint64_t kMostMemory = std::uint64_t{1} << 30;

/// Above it is the system's kernel.
constexpr std::uint64_t kHighestAddress = std::uint64_t{1} << 47;

constexpr std::uint64_t wholePages(std::uint64_t size) { return (size + kPage - 1) / kPage * kPage; }

/// The segments that take memory, by address.
std::vector<const macho::Segment*> segmentsOf(const macho::Image& image) {
  std::vector<const macho::Segment*> segments;
  for (const macho::Segment& segment : image.segments()) {
    if (segment.size > 0) {
      segments.push_back(&segment);
    }
  }
  std::sort(segments.begin(), segments.end(), [](const auto* a, const auto* b) { return a->address < b->address; });
  return segments;
}

void expectInOrder(const std::vector<const macho::Segment*>& segments) {
  if (segments.empty()) {
    throw MachoError("has no segments");
  }
  const std::uint64_t lowest = segments.front()->address;
  std::uint64_t end = lowest;
  for (const macho::Segment* segment : segments) {
    const std::string name = "the segment " + segment->name;
    if (segment->address < end) {
      throw MachoError(name + " overlaps another one");
    }
    if (segment->address % kPage != 0) {
      throw MachoError(name + " does not begin at a page");
    }
    if (segment->file_size > segment->size) {
      throw MachoError(name + " has more contents than memory");
    }
    if (segment->size > kMostMemory || segment->address > kHighestAddress || segment->address - lowest > kMostMemory) {
      throw MachoError(name + " takes too much memory");
    }
    end = segment->address + wholePages(segment->size);
  }
}

}  // namespace

MappedImage::MappedImage(const macho::Image& image) {
  const std::vector<const macho::Segment*> segments = segmentsOf(image);
  expectInOrder(segments);
  lowest_ = segments.front()->address;
  size_ = segments.back()->address + wholePages(segments.back()->size) - lowest_ + kOwnCodeSize;
  void* const memory = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) {
    throw MachoError(std::string("no memory for its segments: ") + std::strerror(errno));
  }
  memory_ = static_cast<std::uint8_t*>(memory);
  for (const macho::Segment* segment : segments) {
    if (segment->file_size > 0) {
      const Bytes contents = image.bytesAt(segment->address, segment->file_size);
      std::copy(contents.begin(), contents.end(), at(segment->address));
    }
  }
}

MappedImage::~MappedImage() {
  if (!is_kept_) {
    munmap(memory_, size_);
  }
}

void MappedImage::protect(const macho::Image& image) {
  const auto set = [](std::uint8_t* memory, std::size_t size, int protection) {
    if (mprotect(memory, size, protection) != 0) {
      throw MachoError(std::string("a segment cannot be protected: ") + std::strerror(errno));
    }
  };
  for (const macho::Segment* segment : segmentsOf(image)) {
    set(at(segment->address), wholePages(segment->size),
        (segment->readable ? PROT_READ : 0) | (segment->writable ? PROT_WRITE : 0) |
            (segment->executable ? PROT_EXEC : 0));
  }
  set(ownCode(), kOwnCodeSize, PROT_READ | PROT_EXEC);
  __builtin___clear_cache(reinterpret_cast<char*>(memory_), reinterpret_cast<char*>(memory_ + size_));
}

}  // namespace machorun
