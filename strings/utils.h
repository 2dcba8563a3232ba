// Text, bytes and maps: what needs neither the host nor the platform. Any thread; nothing is shared.
#pragma once

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/interface.h"

namespace Utils {

/// UTF-8 to UTF-16: each element of the result holds one UTF-16 code unit, so that a character above U+FFFF becomes a
/// high and a low surrogate. A byte-order mark is a character like others. Throws std::range_error("wstring_convert:
/// from_bytes error") for what is not valid UTF-8: a stray continuation byte, a byte that begins no sequence, an
/// overlong form, an encoded surrogate, a value above U+10FFFF, or a sequence cut short.
OSTREVIN_API std::wstring utf8_to_utf16(std::string text);

/// UTF-16, one code unit per element, to UTF-8.
/// Throws std::range_error("wstring_convert: to_bytes error") for a surrogate without its other half and for an element
/// above 0xFFFF, which is not a code unit.
OSTREVIN_API std::string utf16_to_utf8(std::wstring text);

/// Appends `count` bytes, which are not part of `target`. With a count of 0, `bytes` may be null.
OSTREVIN_API void appendBytes(std::vector<unsigned char>& target, unsigned char* bytes, unsigned long count);

/// The pair with its members swapped.
template <typename First, typename Second>
std::pair<Second, First> flip_pair(const std::pair<First, Second>& pair) {
  return {pair.second, pair.first};
}

/// The map from values to keys.
///
/// Equal values come out in an order that is deliberate and that callers rely on: each entry, taken in the order of the
/// map, is inserted with the place just after the previous one as its hint. So it goes directly there when its value
/// fits there, else behind all values that are not greater when its value is less than the previous one's, else before
/// all values that are not less. Equal values of neighbouring entries keep the order of their keys; others may not.
template <typename Key, typename Value>
std::multimap<Value, Key> flip_map(const std::map<Key, Value>& map) {
  std::multimap<Value, Key> flipped;
  std::transform(map.begin(), map.end(), std::inserter(flipped, flipped.begin()), flip_pair<Key, Value>);
  return flipped;
}

}  // namespace Utils
