// A compositor over libwayland-server that shows whatever outputs a test describes, also impossible ones. It runs on a
// thread of its own.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace support {

/// What the compositor sends about an output, as far as the versions in use have an event for it.
struct FakeOutput {
  std::string name = "DP-1";
  std::string description = "An output";
  std::string make = "OST";
  std::string model = "Model";
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t mode_width = 1920;
  std::int32_t mode_height = 1080;
  std::int32_t scale = 1;
  std::int32_t transform = 0;
  std::int32_t logical_x = 0;
  std::int32_t logical_y = 0;
  std::int32_t logical_width = 1920;
  std::int32_t logical_height = 1080;
  bool done = true;  ///< whether the events that complete the description are sent
};

struct FakeGlobals {
  std::vector<FakeOutput> outputs;
  std::uint32_t output_version = 4;
  std::uint32_t manager_version = 3;  ///< of zxdg_output_manager_v1; 0: absent
};

class FakeCompositor {
 public:
  explicit FakeCompositor(const FakeGlobals& globals);
  ~FakeCompositor();
  FakeCompositor(const FakeCompositor&) = delete;
  FakeCompositor& operator=(const FakeCompositor&) = delete;

  /// The path of its socket.
  std::string socket() const;
  /// Replaces an output's description and sends it to all clients.
  void describe(std::size_t index, const FakeOutput& output);
  /// Adds an output, or removes one.
  void add(const FakeOutput& output);
  void remove(std::size_t index);
  /// Sends all clients so many descriptions of an output at once.
  void flood(std::size_t index, int times);

 private:
  struct State;

  /// Runs on the compositor's thread; returns when it is done.
  void perform(const std::function<void()>& work);

  std::unique_ptr<State> state_;
};

}  // namespace support
