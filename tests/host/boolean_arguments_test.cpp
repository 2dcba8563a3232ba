// Boolean arguments of host calls, in a test that is optimised, as the plugin is: the compiler then takes the byte of a
// bool for 0 or 1 and passes it on whole.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>

#include "host/arrays.h"
#include "host/properties.h"
#include "recording_host.h"

namespace {

namespace slots = host::slots;

struct BooleanMember {
  const char* name;
  const char* entry;
  void** slot;
  void (*call)(bool value);
  std::size_t position;  ///< of the value, among the arguments that the host receives
};

void PrintTo(const BooleanMember& member, std::ostream* out) { *out << member.name; }

REALobjectStruct* const kObject = nullptr;
REALarrayStruct* const kArray = nullptr;

template <typename Slot>
constexpr BooleanMember member(const char* name, std::size_t position, void (*call)(bool value)) {
  return {name, Slot::kEntry, &Slot::address, call, position};
}

const BooleanMember kMembers[] = {
    member<slots::REALSetPropValueBoolean>("REALSetPropValueBoolean", 2,
                                           [](bool value) { REALSetPropValueBoolean(kObject, "Name", value); }),
    member<slots::REALInsertArrayValueBoolean>("REALInsertArrayValueBoolean", 2,
                                               [](bool value) { REALInsertArrayValueBoolean(kArray, 5, value); }),
    member<slots::REALSetArrayValueBoolean>("REALSetArrayValueBoolean", 1,
                                            [](bool value) { REALSetArrayValueBoolean(kArray, 5, value); }),
    member<slots::REALNewVariantBoolean>("REALNewVariantBoolean", 0, [](bool value) { REALNewVariantBoolean(value); }),
};

/// The procedure of any array.
void* procedure(REALarrayStruct* /*array*/) { return reinterpret_cast<void*>(&recordCall); }

/// Calls with a bool that holds `byte`, as it may come from code that is not C++.
__attribute__((noinline, no_sanitize("bool"))) void callWithByte(void (*call)(bool value), std::uint8_t byte) {
  bool value = false;
  std::memcpy(&value, &byte, sizeof value);
  asm volatile("" : "+m"(value));  // unknown to the compiler
  call(value);
}

class BooleanArgument : public testing::TestWithParam<BooleanMember> {};

TEST_P(BooleanArgument, ArrivesAsBit0OfTheCallersByte) {
  const BooleanMember& member = GetParam();
  RecordingHost host;
  if (std::string(member.entry).ends_with("Proc")) {
    host.offer(member.entry, &procedure);
  } else {
    host.offer(member.entry, &recordCall);
  }
  for (const int byte : {0, 1, 2, 3, 0x80, 0xFF}) {
    SCOPED_TRACE(byte);
    for (int call = 0; call < 2; ++call) {  // the call that finds the entry, and one after it
      *member.slot = call == 0 ? nullptr : *member.slot;
      callWithByte(member.call, static_cast<std::uint8_t>(byte));
      EXPECT_EQ(gRecorded.integers[member.position] & 0xFFFFFFFF, static_cast<unsigned>(byte) & 1U);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Of, BooleanArgument, testing::ValuesIn(kMembers),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
