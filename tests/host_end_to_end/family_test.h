// A test that calls the host-call family as a plugin does, and is served by a host of its own.
//
// Every test must leave no reference unreleased, and no fault that it has not looked at.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/runtime/host.h"
#include "host/host_calls.h"

class FamilyTest : public ::testing::Test {
 protected:
  FamilyTest() {
    gResolver = [](const char* name) { return devhost::Host::current().entries().resolve(name); };
  }

  void TearDown() override {
    EXPECT_THAT(host_.unreleased(), ::testing::IsEmpty());
    EXPECT_THAT(host_.faults(), ::testing::IsEmpty());
  }

  /// The faults so far, which are then forgotten.
  std::vector<std::string> takeFaults() {
    std::vector<std::string> faults = host_.faults();
    host_.handles().clearFaults();
    return faults;
  }

  static REALobjectStruct* handleOf(const devhost::Ref<devhost::Object>& object) {
    return static_cast<REALobjectStruct*>(object.handle());
  }

  static REALstringStruct* build(std::string_view bytes) {
    return REALBuildStringWithEncoding(bytes.data(), static_cast<int>(bytes.size()), kHostEncodingUTF8);
  }

  /// All bytes of a string, wherever there are NULs among them.
  static std::string contents(REALstringStruct* string) {
    std::int64_t length = -1;
    const char* const bytes = REALGetStringContents(string, &length);
    return bytes == nullptr ? "(none)" : std::string(bytes, static_cast<std::size_t>(length));
  }

  static const RuntimeText* buildText(std::string_view utf8) {
    return reinterpret_cast<const RuntimeText*>(
        REALBuildText(utf8.data(), static_cast<int>(utf8.size()), kHostEncodingUTF8));
  }

  std::size_t living(devhost::Counted::Kind kind) { return host_.handles().count(kind); }

  /// The host takes an array as a method's result, and drops it.
  void handOver(REALarrayStruct* array) { host_.handles().take<devhost::Array>(array, "handing an array over"); }

  devhost::Host host_;
};

/// True when the two have the same bits: a not-a-number is itself, and -0.0 is not 0.0.
template <typename T>
bool sameBits(T a, T b) {
  return std::memcmp(&a, &b, sizeof(T)) == 0;
}
