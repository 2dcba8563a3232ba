#include "host/definitions.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace {

/// A record of the host as raw memory, longer than what we know of it, every byte telling.
struct RawRecord {
  alignas(8) std::array<unsigned char, 256> bytes;

  RawRecord() { bytes.fill(0xA5); }
  template <typename T>
  void put(std::size_t offset, T value) {
    std::memcpy(bytes.data() + offset, &value, sizeof value);
  }
  template <typename T>
  T* as() {
    return reinterpret_cast<T*>(bytes.data());
  }
};

TEST(ClassData, BeginsWhereTheFieldAtOffset32Says) {
  RawRecord record;
  record.put(32, std::int64_t{40});
  char instance[64];
  EXPECT_EQ(REALGetClassData(instance, record.as<REALclassDefinition>()), instance + 40);
}

TEST(ClassData, MayBeginBeforeOrFarBehindTheInstance) {
  RawRecord record;
  char instance[64];
  record.put(32, std::int64_t{-8});
  EXPECT_EQ(REALGetClassData(instance + 32, record.as<REALclassDefinition>()), instance + 24);
  record.put(32, std::int64_t{0x1'0000'0010});
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(REALGetClassData(instance, record.as<REALclassDefinition>())),
            reinterpret_cast<std::uintptr_t>(instance) + 0x1'0000'0010);
}

TEST(ClassData, OfNoInstanceIsTheOffset) {
  RawRecord record;
  record.put(32, std::int64_t{40});
  EXPECT_EQ(REALGetClassData(nullptr, record.as<REALclassDefinition>()), reinterpret_cast<void*>(40));
}

TEST(ControlData, BeginsWhereTheFieldAtOffset104Says) {
  RawRecord record;
  record.put(104, std::int64_t{24});
  char instance[64];
  EXPECT_EQ(REALGetControlData(instance, record.as<REALcontrolDefinition>()), instance + 24);
}

/// Changes the flags at offset 160 from `before`; nothing else of the record may change.
std::uint32_t flagsAfter(REALclassDefinition* (*change)(REALclassDefinition*), std::uint32_t before) {
  RawRecord record;
  record.put(160, before);
  RawRecord expected = record;
  EXPECT_EQ(change(record.as<REALclassDefinition>()), record.as<REALclassDefinition>());
  std::uint32_t after = 0;
  std::memcpy(&after, record.bytes.data() + 160, sizeof after);
  expected.put(160, after);
  EXPECT_EQ(record.bytes, expected.bytes);
  return after;
}

TEST(ClassConsoleSafe, SetsItsBit) {
  EXPECT_EQ(flagsAfter(&SetClassConsoleSafe, 0), 0x4U);
  EXPECT_EQ(flagsAfter(&SetClassConsoleSafe, 0xFFFFFFFB), 0xFFFFFFFFU);
}

TEST(ClassConsoleSafe, StaysSet) { EXPECT_EQ(flagsAfter(&SetClassConsoleSafe, 0x4), 0x4U); }

TEST(ClassWebOnly, SetsItsBitAndClearsAnother) {
  EXPECT_EQ(flagsAfter(&SetClassWebOnly, 0x0000000C), 0x00000104U);
  EXPECT_EQ(flagsAfter(&SetClassWebOnly, 0), 0x100U);
  EXPECT_EQ(flagsAfter(&SetClassWebOnly, 0xFFFFFFFF), 0xFFFFFFF7U);
}

}  // namespace
