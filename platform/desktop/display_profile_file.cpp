#include "desktop/display_profile_file.h"

#include <colord.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "desktop/glib_refs.h"

namespace platform::desktop {
namespace {

/// Profiles of displays have some kilobytes, with large tables a few megabytes.
constexpr off_t kMostBytes = 64 << 20;
/// An ICC header, and the tag count after it.
constexpr off_t kFewestBytes = 132;

class Descriptor {
 public:
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  ~Descriptor() {
    if (descriptor_ >= 0) {
      close(descriptor_);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return descriptor_; }

 private:
  int descriptor_;
};

std::optional<std::vector<std::uint8_t>> readProfile(const std::string& path) {
  // Not blocking: the path may name a pipe that nobody writes to.
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (file.get() < 0 || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size < kFewestBytes ||
      status.st_size > kMostBytes) {
    return std::nullopt;
  }
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(status.st_size));
  std::size_t have = 0;
  while (have < bytes.size()) {
    const ssize_t more = read(file.get(), bytes.data() + have, bytes.size() - have);
    if (more <= 0) {
      return std::nullopt;
    }
    have += static_cast<std::size_t>(more);
  }
  return bytes;
}

/// The size that an ICC header states: its first four bytes, the most significant first.
std::size_t statedSize(const std::vector<std::uint8_t>& bytes) {
  return std::size_t{bytes[0]} << 24 | std::size_t{bytes[1]} << 16 | std::size_t{bytes[2]} << 8 | bytes[3];
}

}  // namespace

bool isDisplayProfileFile(const std::string& path) {
  const auto bytes = readProfile(path);
  if (!bytes || statedSize(*bytes) > bytes->size()) {
    return false;
  }
  const ObjectRef<CdIcc> profile(cd_icc_new());
  ErrorSlot error;
  // What colord itself does with a file; a file that it fails to load leaves an unusable profile behind in it.
  return cd_icc_load_data(profile.get(), bytes->data(), bytes->size(), CD_ICC_LOAD_FLAGS_METADATA, error.place()) &&
         cd_icc_get_description(profile.get(), nullptr, error.place()) != nullptr &&
         cd_icc_get_kind(profile.get()) == CD_PROFILE_KIND_DISPLAY_DEVICE;
}

}  // namespace platform::desktop
