// Descriptions of Wayland outputs: the monitors and the arrangement that they make.
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstdint>
#include <set>
#include <vector>

#include "desktop/model/display_layout.h"
#include "desktop/wayland/wayland_output.h"
#include "fuzz/support/fuzzing.h"
#include "support/icu_text.h"

namespace {

using fuzz::require;
using platform::desktop::Arrangement;
using platform::desktop::WaylandOutput;

constexpr std::size_t kMostOutputs = 40;
constexpr std::size_t kLongestText = 40;

WaylandOutput outputFrom(FuzzedDataProvider& data) {
  WaylandOutput output;
  output.id = data.ConsumeIntegral<std::uint32_t>();
  for (std::string* const text : {&output.name, &output.description, &output.make, &output.model}) {
    *text = data.ConsumeRandomLengthString(kLongestText);
  }
  for (std::int32_t* const number :
       {&output.mode_width, &output.mode_height, &output.transform, &output.scale, &output.x, &output.y,
        &output.logical_x, &output.logical_y, &output.logical_width, &output.logical_height}) {
    // Half of them are such as real outputs have.
    *number = data.ConsumeBool() ? data.ConsumeIntegral<std::int32_t>() : data.ConsumeIntegralInRange(-10, 4000);
  }
  output.has_logical_area = data.ConsumeBool();
  return output;
}

void check(const Arrangement& arrangement) {
  require(arrangement.displays.size() == arrangement.screens.size(), "each display has a screen");
  std::set<std::uint32_t> numbers{0};
  for (std::size_t i = 0; i < arrangement.displays.size(); ++i) {
    const auto& display = arrangement.displays[i];
    require(numbers.insert(display.number).second, "numbers are unique and not 0");
    require(display.bounds.width > 0 && display.bounds.height > 0, "a display has an area");
    require(std::isfinite(arrangement.screens[i].backing_scale) && arrangement.screens[i].backing_scale > 0,
            "a scale is positive");
    require(support::utf16ByIcu(display.connector).has_value(), "a connector's name is UTF-8");
  }
  for (const auto& service : arrangement.services) {
    for (const auto& [language, name] : *service.product_names) {
      require(!name.empty() && support::utf16ByIcu(name).has_value(), "a product name is UTF-8 and not empty");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  std::vector<WaylandOutput> outputs;
  while (data.remaining_bytes() > 0 && outputs.size() < kMostOutputs) {
    outputs.push_back(outputFrom(data));
  }
  check(platform::desktop::arrange(platform::desktop::monitorsOf(outputs, "/nowhere"), 1));
  return 0;
}
