#include "desktop/model/uuid.h"

#include <nettle/sha1.h>

#include <algorithm>
#include <charconv>

#include "desktop/model/connector.h"
#include "desktop/model/edid.h"

namespace platform::desktop {
namespace {

/// Drawn at random once. A change would give every display a new identity, and lose the profiles assigned to it.
constexpr Uuid kNamespace = {0x2E, 0xC8, 0x8F, 0xBC, 0x09, 0x0C, 0x44, 0x01,
                             0x9E, 0x88, 0x48, 0x9C, 0x21, 0x0B, 0x39, 0xBB};

constexpr std::size_t kTextSize = 36;

bool isDashPosition(std::size_t position) {
  return position == 8 || position == 13 || position == 18 || position == 23;
}

class NameBasedUuid {
 public:
  NameBasedUuid() {
    sha1_init(&digest_);
    add(kNamespace);
  }

  void add(std::span<const std::uint8_t> bytes) { sha1_update(&digest_, bytes.size(), bytes.data()); }

  /// A text and a zero byte after it, so that it cannot run into what follows.
  void add(std::string_view text) {
    add({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    constexpr std::uint8_t kEnd = 0;
    add({&kEnd, 1});
  }

  Uuid finish() {
    Uuid uuid{};
    sha1_digest(&digest_, uuid.size(), uuid.data());
    uuid[6] = static_cast<std::uint8_t>((uuid[6] & 0x0F) | 0x50);  // version 5
    uuid[8] = static_cast<std::uint8_t>((uuid[8] & 0x3F) | 0x80);  // the variant of RFC 4122
    return uuid;
  }

 private:
  sha1_ctx digest_{};
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
  const char* next = text.data();
  for (std::uint8_t& byte : uuid) {
    if (isDashPosition(static_cast<std::size_t>(next - text.data())) && *next++ != '-') {
      return std::nullopt;
    }
    if (std::from_chars(next, next + 2, byte, 16).ptr != next + 2) {
      return std::nullopt;
    }
    next += 2;
  }
  return uuid;
}

Uuid outputUuid(std::span<const std::uint8_t> edid, std::string_view connector) {
  NameBasedUuid uuid;
  uuid.add("output");
  uuid.add(commonConnectorName(connector));
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
