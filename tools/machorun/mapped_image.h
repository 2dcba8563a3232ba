// Memory of this process that holds one architecture of a Mac's file, each segment at its distance from the others.
// Addresses without a base are the file's. Loading is one thread's; afterwards all may read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "tools/macho/image.h"

namespace machorun {

using macho::Bytes;
using macho::MachoError;

/// Kept mapped for the life of the process, unless it is destroyed before keep().
class MappedImage {
 public:
  /// Behind the segments lies a page for code that the loader makes: calls that have to be seen to come from the image.
  static constexpr std::size_t kOwnCodeSize = 4096;

  /// Copies the segments; everything can be written. Throws MachoError for segments that overlap or are too large.
  explicit MappedImage(const macho::Image& image);
  ~MappedImage();
  MappedImage(const MappedImage&) = delete;
  MappedImage& operator=(const MappedImage&) = delete;

  /// Where an address of the file lies here; one outside the segments leads outside, too.
  std::uint8_t* at(std::uint64_t address) const {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): arithmetic on a pointer may not leave the segments
    return reinterpret_cast<std::uint8_t*>(reinterpret_cast<std::uintptr_t>(memory_) + (address - lowest_));
  }
  std::uint8_t* begin() const { return memory_; }
  /// With the loader's own page.
  std::size_t size() const { return size_; }
  std::uint8_t* ownCode() const { return memory_ + size_ - kOwnCodeSize; }
  bool holds(const void* address) const {
    const auto* byte = static_cast<const std::uint8_t*>(address);
    return byte >= memory_ && byte < memory_ + size_;
  }

  template <typename Value>
  Value read(std::uint64_t address) const {
    Value value;
    std::memcpy(&value, at(address), sizeof value);
    return value;
  }
  template <typename Value>
  void write(std::uint64_t address, Value value) const {
    std::memcpy(at(address), &value, sizeof value);
  }

  /// Gives each segment and the loader's own page the protection that they have while the image runs.
  void protect(const macho::Image& image);
  void keep() { is_kept_ = true; }

 private:
  std::uint64_t lowest_ = 0;
  std::size_t size_ = 0;
  std::uint8_t* memory_ = nullptr;
  bool is_kept_ = false;
};

}  // namespace machorun
