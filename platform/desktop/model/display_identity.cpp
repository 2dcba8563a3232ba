#include "desktop/model/display_identity.h"

#include <glib.h>

#include <algorithm>
#include <memory>

#include "desktop/model/edid.h"

namespace platform::desktop {
namespace {

/// Drawn at random once. A change would give every display a new identity, and lose the profiles assigned to it.
constexpr Uuid kNamespace = {0x2E, 0xC8, 0x8F, 0xBC, 0x09, 0x0C, 0x44, 0x01,
                             0x9E, 0x88, 0x48, 0x9C, 0x21, 0x0B, 0x39, 0xBB};

constexpr std::size_t kSha1Size = 20;

struct ChecksumFree {
  void operator()(GChecksum* checksum) const { g_checksum_free(checksum); }
};

class NameBasedUuid {
 public:
  NameBasedUuid() : checksum_(g_checksum_new(G_CHECKSUM_SHA1)) { add(kNamespace); }

  void add(std::span<const std::uint8_t> bytes) {
    g_checksum_update(checksum_.get(), bytes.data(), static_cast<gssize>(bytes.size()));
  }

  /// A text and a zero byte after it, so that it cannot run into what follows.
  void add(std::string_view text) {
    g_checksum_update(checksum_.get(), reinterpret_cast<const guchar*>(text.data()), static_cast<gssize>(text.size()));
    constexpr std::uint8_t kEnd = 0;
    add({&kEnd, 1});
  }

  Uuid finish() {
    std::array<guint8, kSha1Size> digest{};
    gsize size = digest.size();
    g_checksum_get_digest(checksum_.get(), digest.data(), &size);
    Uuid uuid{};
    std::copy_n(digest.begin(), uuid.size(), uuid.begin());
    uuid[6] = static_cast<std::uint8_t>((uuid[6] & 0x0F) | 0x50);  // version 5
    uuid[8] = static_cast<std::uint8_t>((uuid[8] & 0x3F) | 0x80);  // the variant of RFC 4122
    return uuid;
  }

 private:
  std::unique_ptr<GChecksum, ChecksumFree> checksum_;
};

}  // namespace

Uuid outputUuid(std::span<const std::uint8_t> edid, std::string_view connector) {
  NameBasedUuid uuid;
  uuid.add("output");
  uuid.add(connector);
  if (decodeEdid(edid)) {
    uuid.add(edid.first(kEdidBlockSize));
  }
  return uuid.finish();
}

Uuid virtualMonitorUuid(std::string_view name) {
  NameBasedUuid uuid;
  uuid.add("monitor");
  uuid.add(name);
  return uuid.finish();
}

}  // namespace platform::desktop
