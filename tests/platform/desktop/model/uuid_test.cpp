#include "desktop/model/uuid.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "support/edid_maker.h"
#include "support/process.h"

namespace {

using platform::desktop::outputUuid;
using platform::desktop::Uuid;
using platform::desktop::virtualMonitorUuid;
using support::EdidBytes;
using support::makeEdid;

/// The namespace of all identities. A change of it would lose every profile that users have assigned.
const std::string kNamespace("\056\310\217\274\011\014\104\001\236\210\110\234\041\013\071\273", 16);

/// The UUID of version 5 for a name, computed with sha1sum.
Uuid nameBasedUuid(const std::string& name) {
  const std::string digest = support::runSuccessfully({"sha1sum"}, {}, kNamespace + name);
  Uuid uuid{};
  for (std::size_t i = 0; i < uuid.size(); ++i) {
    uuid[i] = static_cast<std::uint8_t>(std::stoul(digest.substr(2 * i, 2), nullptr, 16));
  }
  uuid[6] = static_cast<std::uint8_t>(0x50 | (uuid[6] & 0x0F));
  uuid[8] = static_cast<std::uint8_t>(0x80 | (uuid[8] & 0x3F));
  return uuid;
}

std::string text(const EdidBytes& bytes) { return {bytes.begin(), bytes.end()}; }

TEST(OutputUuid, IsNameBasedOnConnectorAndEdid) {
  const EdidBytes edid = makeEdid();
  EXPECT_EQ(outputUuid(edid, "DP-1"), nameBasedUuid(std::string("output\0DP-1\0", 12) + text(edid)));
}

TEST(OutputUuid, UsesTheConnectorAloneWithoutAValidEdid) {
  const Uuid expected = nameBasedUuid(std::string("output\0DP-1\0", 12));
  EXPECT_EQ(outputUuid({}, "DP-1"), expected);
  EdidBytes broken = makeEdid();
  broken[20] ^= 1;
  EXPECT_EQ(outputUuid(broken, "DP-1"), expected);
}

TEST(OutputUuid, DiffersByConnector) { EXPECT_NE(outputUuid(makeEdid(), "DP-1"), outputUuid(makeEdid(), "DP-2")); }

TEST(OutputUuid, DiffersBySerialNumber) {
  EXPECT_NE(outputUuid(makeEdid({.serial = 1}), "DP-1"), outputUuid(makeEdid({.serial = 2}), "DP-1"));
}

TEST(OutputUuid, IgnoresExtensionBlocks) {
  EdidBytes cut = makeEdid({.extensions = 2});
  const Uuid whole = outputUuid(cut, "DP-1");
  cut.resize(200);
  EXPECT_EQ(outputUuid(cut, "DP-1"), whole);
}

TEST(VirtualMonitorUuid, IsNameBasedAndDiffersFromOutputs) {
  EXPECT_EQ(virtualMonitorUuid("left"), nameBasedUuid(std::string("monitor\0left\0", 13)));
  const std::set<Uuid> uuids{virtualMonitorUuid("left"), virtualMonitorUuid("right"), outputUuid({}, "left"),
                             virtualMonitorUuid("")};
  EXPECT_EQ(uuids.size(), 4u);
}

}  // namespace
