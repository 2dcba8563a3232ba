// CoreGraphics' display calls, over the current desktop's arrangement.
#include <CoreGraphics/CoreGraphics.h>

#include <algorithm>
#include <cmath>

#include "desktop/current.h"
#include "frameworks/hooks/calls.h"

using platform::calls::Call;
using platform::calls::Fault;
using platform::desktop::Arrangement;
using platform::desktop::Display;
using platform::desktop::Rect;

namespace {

std::shared_ptr<const Arrangement> arrangement() { return platform::desktop::current()->arrangement(); }

const Display* find(const Arrangement& arrangement, CGDirectDisplayID number) {
  const auto found = std::find_if(arrangement.displays.begin(), arrangement.displays.end(),
                                  [&](const Display& display) { return display.number == number; });
  return found == arrangement.displays.end() ? nullptr : &*found;
}

CGRect rectOf(const Rect& rect) { return CGRectMake(rect.x, rect.y, rect.width, rect.height); }

/// Whether two half-open intervals meet; an interval without length counts as the point where it begins.
bool meet(double first, double first_length, double second, double second_length) {
  if (first_length < 0) {
    first += first_length;
    first_length = -first_length;
  }
  if (first_length == 0) {
    return second <= first && first < second + second_length;
  }
  return std::max(first, second) < std::min(first + first_length, second + second_length);
}

bool meets(const CGRect& rect, const Rect& bounds) {
  return meet(rect.origin.x, rect.size.width, bounds.x, bounds.width) &&
         meet(rect.origin.y, rect.size.height, bounds.y, bounds.height);
}

/// Writes the numbers of the displays that `wanted` picks, as both list calls do.
template <typename Wanted>
CGError list(const Fault& fault, uint32_t capacity, CGDirectDisplayID* numbers, uint32_t* count, Wanted wanted) {
  if (fault.fail || fault.error) {
    return fault.error ? static_cast<CGError>(*fault.error) : kCGErrorFailure;
  }
  if (count == nullptr) {
    return kCGErrorIllegalArgument;
  }
  const auto now = arrangement();
  uint32_t found = 0;
  for (const Display& display : now->displays) {
    if (!wanted(display)) {
      continue;
    }
    if (numbers != nullptr) {
      if (found == capacity) {
        break;
      }
      numbers[found] = display.number;
    }
    ++found;
  }
  *count = fault.number ? static_cast<uint32_t>(*fault.number) : found;
  return static_cast<CGError>(fault.late_error.value_or(kCGErrorSuccess));
}

/// CoreGraphics' vendor, model and serial number of an unknown display.
constexpr uint32_t kNoNumber = 0xFFFFFFFF;

uint32_t number(Call call, CGDirectDisplayID display, uint32_t Display::*member) {
  const Fault fault = platform::calls::fault(call);
  if (fault.fail || fault.number) {
    return fault.number ? static_cast<uint32_t>(*fault.number) : kNoNumber;
  }
  const auto now = arrangement();
  const Display* const found = find(*now, display);
  return found == nullptr ? kNoNumber : found->*member;
}

}  // namespace

extern "C" {

CGError CGGetActiveDisplayList(uint32_t maxDisplays, CGDirectDisplayID* activeDisplays, uint32_t* displayCount) {
  return list(platform::calls::fault(Call::CGGetActiveDisplayList), maxDisplays, activeDisplays, displayCount,
              [](const Display&) { return true; });
}

CGError CGGetDisplaysWithRect(CGRect rect, uint32_t maxDisplays, CGDirectDisplayID* displays,
                              uint32_t* matchingDisplayCount) {
  return list(platform::calls::fault(Call::CGGetDisplaysWithRect), maxDisplays, displays, matchingDisplayCount,
              [&](const Display& display) { return meets(rect, display.bounds); });
}

CGRect CGDisplayBounds(CGDirectDisplayID display) {
  const Fault fault = platform::calls::fault(Call::CGDisplayBounds);
  if (fault.fail || fault.rect) {
    return rectOf(fault.rect.value_or(Rect{}));
  }
  const auto now = arrangement();
  const Display* const found = find(*now, display);
  if (found == nullptr) {
    return CGRectMake(0, 0, 0, 0);
  }
  return rectOf(found->bounds);
}

uint32_t CGDisplayVendorNumber(CGDirectDisplayID display) {
  return number(Call::CGDisplayVendorNumber, display, &Display::vendor);
}

uint32_t CGDisplayModelNumber(CGDirectDisplayID display) {
  return number(Call::CGDisplayModelNumber, display, &Display::model);
}

uint32_t CGDisplaySerialNumber(CGDirectDisplayID display) {
  return number(Call::CGDisplaySerialNumber, display, &Display::serial);
}

}  // extern "C"
