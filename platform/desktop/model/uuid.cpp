#include "desktop/model/uuid.h"

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

constexpr std::size_t kTextSize = 36;

bool isDashPosition(std::size_t position) {
  return position == 8 || position == 13 || position == 18 || position == 23;
}

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

std::string uuidText(const Uuid& uuid) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(kTextSize);
  for (const std::uint8_t byte : uuid) {
    if (isDashPosition(text.size())) {
      text.push_back('-');
    }
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 0xF]);
  }
  return text;
}

std::optional<Uuid> parseUuid(std::string_view text) {
  if (text.size() != kTextSize) {
    return std::nullopt;
  }
  Uuid uuid{};
  std::size_t digits = 0;
  for (std::size_t i = 0; i < kTextSize; ++i) {
    if (isDashPosition(i)) {
      if (text[i] != '-') {
        return std::nullopt;
      }
      continue;
    }
    const int digit = g_ascii_xdigit_value(text[i]);
    if (digit < 0) {
      return std::nullopt;
    }
    std::uint8_t& byte = uuid[digits++ / 2];
    byte = static_cast<std::uint8_t>(byte << 4 | digit);
  }
  return uuid;
}

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
