#include <CoreGraphics/CoreGraphics.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "display/screens.h"
#include "plugin/display.h"
#include "plugin/result_codes.h"

namespace Display {
namespace {

/// Truncates toward zero; what does not fit, and NaN, is the least 32-bit number.
std::int32_t truncated(double value) {
  constexpr double kBelow = -2147483649.0;
  constexpr double kAbove = 2147483648.0;
  if (value > kBelow && value < kAbove) {
    return static_cast<std::int32_t>(value);
  }
  return std::numeric_limits<std::int32_t>::min();
}

/// The display's bounds. The scale is deliberately asked for and not used: rectangles are in points at any scale.
CGRect boundsOf(std::uint32_t displayID) {
  const CGRect bounds = CGDisplayBounds(displayID);
  static_cast<void>(DisplayServices::ScaleFactorForDisplay(displayID));
  return bounds;
}

}  // namespace

void GetMonitorRect(std::uint32_t displayID, std::int32_t* left, std::int32_t* top, std::int32_t* right,
                    std::int32_t* bottom) {
  const CGRect bounds = boundsOf(displayID);
  *top = truncated(bounds.origin.y);
  *bottom = truncated(bounds.origin.y + bounds.size.height);
  *left = truncated(bounds.origin.x);
  *right = truncated(bounds.origin.x + bounds.size.width);
}

void GetMonitorRect(std::uint32_t displayID, double* x, double* y, double* width, double* height) {
  const CGRect bounds = boundsOf(displayID);
  *x = bounds.origin.x;
  *y = bounds.origin.y;
  *width = bounds.size.width;
  *height = bounds.size.height;
}

std::uint32_t GetIndex(std::uint32_t displayID) {
  constexpr auto kNotFound = static_cast<std::uint32_t>(kQVIDisplayNotFound);
  std::uint32_t capacity = 0;
  CGGetActiveDisplayList(0, nullptr, &capacity);  // only the count is looked at, deliberately not the error
  if (capacity == 0) {
    return kNotFound;
  }
  // Deliberately never released: a small loss per call. Zeroed, so that what is not written is no display.
  auto* const displays = static_cast<CGDirectDisplayID*>(std::calloc(capacity, sizeof(CGDirectDisplayID)));
  if (displays == nullptr) {
    return kNotFound;
  }
  std::uint32_t count = capacity;
  if (CGGetActiveDisplayList(capacity, displays, &count) != kCGErrorSuccess) {
    return kNotFound;
  }
  // No more than the buffer holds, whatever number is reported.
  count = std::min(count, capacity);
  for (std::uint32_t index = 0; index < count && displays[index] != kCGNullDirectDisplay; ++index) {
    if (displays[index] == displayID) {
      return index;
    }
  }
  return kNotFound;
}

double GetScale(std::uint32_t displayID) { return DisplayServices::ScaleFactorForDisplay(displayID); }

std::uint32_t DisplayIDForWindow(double left, double top, double width, double height) {
  // Deliberately begins at the window's lower edge.
  return DisplayServices::DisplayIDForRect(CGRectMake(left, top + height, width, height));
}

}  // namespace Display
