// EDIDs: the monitor's identity in the base block, and its UUID.
#include <algorithm>
#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

#include "desktop/model/edid.h"
#include "desktop/model/uuid.h"
#include "fuzz/support/fuzzing.h"
#include "support/icu_text.h"

namespace {

using fuzz::require;
using platform::desktop::Edid;
using platform::desktop::kEdidBlockSize;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kVersionOffset = 18;
constexpr std::uint8_t kHeader[] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};

bool isValid(const Bytes& bytes) {
  return bytes.size() >= kEdidBlockSize && std::equal(std::begin(kHeader), std::end(kHeader), bytes.begin()) &&
         bytes[kVersionOffset] == 1 && std::accumulate(bytes.begin(), bytes.begin() + kEdidBlockSize, 0U) % 256 == 0;
}

void checkName(const std::string& name) {
  require(!name.empty() && name.back() != ' ', "a name is not empty and has no blanks at its end");
  const auto units = support::utf16ByIcu(name);
  require(units && units->size() <= 13, "a name is UTF-8, of no more characters than the descriptor has bytes");
}

void checkIdentity(const Bytes& bytes, const Edid& edid) {
  require(edid.vendor == bytes[8] * 0x100 + bytes[9], "the vendor is big-endian");
  require(edid.product == bytes[10] + bytes[11] * 0x100, "the product is little-endian");
  require(edid.serial == bytes[12] + bytes[13] * 0x100U + bytes[14] * 0x10000U + bytes[15] * 0x1000000U,
          "the serial number is little-endian");
}

/// The copy has exactly the bytes' size in memory, so that AddressSanitizer sees the first read beyond them.
void check(Bytes bytes) {
  bytes.shrink_to_fit();
  const auto edid = platform::desktop::decodeEdid(bytes);
  require(edid.has_value() == isValid(bytes), "an EDID is decoded when it is valid, and only then");
  const auto uuid = platform::desktop::outputUuid(bytes, "DP-1");
  require(uuid[6] >> 4 == 5 && uuid[8] >> 6 == 2, "a UUID made of an EDID is of version 5");
  if (!edid) {
    require(uuid == platform::desktop::outputUuid({}, "DP-1"), "without a valid EDID only the connector counts");
    return;
  }
  checkIdentity(bytes, *edid);
  if (edid->name) {
    checkName(*edid->name);
  }
  bytes.resize(kEdidBlockSize);
  require(uuid == platform::desktop::outputUuid(bytes, "DP-1"), "extension blocks do not matter");
}

/// The same block, made valid.
Bytes repaired(Bytes bytes) {
  bytes.resize(std::max(bytes.size(), kEdidBlockSize));
  std::copy(std::begin(kHeader), std::end(kHeader), bytes.begin());
  bytes[kVersionOffset] = 1;
  const auto last = bytes.begin() + kEdidBlockSize - 1;
  *last = static_cast<std::uint8_t>(-std::accumulate(bytes.begin(), last, 0U));
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes bytes(data, data + size);
  check(bytes);
  check(repaired(bytes));
  return 0;
}
