#include "frameworks/Foundation/apple_text.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <vector>

namespace platform {
namespace {

/// The character that begins at `index`, which moves behind it. Half of a surrogate pair is a character.
UChar32 nextCharacter(std::u16string_view text, std::size_t& index) {
  UChar32 character = 0;
  U16_NEXT(text, index, text.size(), character);
  return character;
}

/// The whole canonical decomposition.
std::u16string decomposition(UChar32 character) {
  constexpr int kLongest = 18;
  UErrorCode status = U_ZERO_ERROR;
  static const UNormalizer2* const nfd = unorm2_getNFDInstance(&status);
  std::u16string units(kLongest, u'\0');
  const int32_t length = unorm2_getDecomposition(nfd, character, units.data(), kLongest, &status);
  if (U_FAILURE(status) || length < 0) {
    int32_t used = 0;
    U16_APPEND_UNSAFE(units, used, character);
    units.resize(static_cast<std::size_t>(used));
    return units;
  }
  units.resize(static_cast<std::size_t>(length));
  return units;
}

// --- conversion

constexpr UChar32 kFirstLatin1 = 0xA0;
constexpr std::array<const char*, 0x60> kAsciiOfLatin1 = {
    " ",  "!",  "c", "L", "$", "Y", "|",  "",  "",  "(C)", "a", "<<", "",    "-",   "(R)", "",   //
    "",   "+-", "2", "3", "",  "",  "",   "",  "",  "1",   "o", ">>", "1/4", "1/2", "3/4", "?",  //
    "A",  "A",  "A", "A", "A", "A", "AE", "C", "E", "E",   "E", "E",  "I",   "I",   "I",   "I",  //
    "TH", "N",  "O", "O", "O", "O", "O",  "X", "O", "U",   "U", "U",  "U",   "Y",   "th",  "s",  //
    "a",  "a",  "a", "a", "a", "a", "ae", "c", "e", "e",   "e", "e",  "i",   "i",   "i",   "i",  //
    "TH", "n",  "o", "o", "o", "o", "o",  "/", "o", "u",   "u", "u",  "u",   "y",   "th",  "y"};

/// What stands for a character that is not ASCII.
std::string asciiLike(UChar32 character) {
  constexpr UChar32 kZeroWidthSpace = 0x200B;
  constexpr UChar32 kEllipsis = 0x2026;
  constexpr UChar32 kLineSeparator = 0x2028;
  constexpr UChar32 kParagraphSeparator = 0x2029;
  if (character == kEllipsis) {
    return "...";
  }
  if (character == kLineSeparator || character == kParagraphSeparator) {
    return "\n";
  }
  if (u_charType(character) == U_SPACE_SEPARATOR || character == kZeroWidthSpace) {
    return " ";
  }
  const char16_t base = character < 0x100 ? static_cast<char16_t>(character) : decomposition(character)[0];
  if (base < kFirstLatin1) {
    return {static_cast<char>(base & 0x7F)};
  }
  return base < 0x100 ? kAsciiOfLatin1[static_cast<std::size_t>(base - kFirstLatin1)] : "?";
}

/// The characters from 0x80 on.
constexpr std::u16string_view kMacRoman =
    u"\u00C4\u00C5\u00C7\u00C9\u00D1\u00D6\u00DC\u00E1\u00E0\u00E2\u00E4\u00E3\u00E5\u00E7\u00E9\u00E8"
    u"\u00EA\u00EB\u00ED\u00EC\u00EE\u00EF\u00F1\u00F3\u00F2\u00F4\u00F6\u00F5\u00FA\u00F9\u00FB\u00FC"
    u"\u2020\u00B0\u00A2\u00A3\u00A7\u2022\u00B6\u00DF\u00AE\u00A9\u2122\u00B4\u00A8\u2260\u00C6\u00D8"
    u"\u221E\u00B1\u2264\u2265\u00A5\u00B5\u2202\u2211\u220F\u03C0\u222B\u00AA\u00BA\u03A9\u00E6\u00F8"
    u"\u00BF\u00A1\u00AC\u221A\u0192\u2248\u2206\u00AB\u00BB\u2026\u00A0\u00C0\u00C3\u00D5\u0152\u0153"
    u"\u2013\u2014\u201C\u201D\u2018\u2019\u00F7\u25CA\u00FF\u0178\u2044\u20AC\u2039\u203A\uFB01\uFB02"
    u"\u2021\u00B7\u201A\u201E\u2030\u00C2\u00CA\u00C1\u00CB\u00C8\u00CD\u00CE\u00CF\u00CC\u00D3\u00D4"
    u"\uF8FF\u00D2\u00DA\u00DB\u00D9\u0131\u02C6\u02DC\u00AF\u02D8\u02D9\u02DA\u00B8\u02DD\u02DB\u02C7";

// --- searching

/// A character of a canonical decomposition, and where in the text what it was decomposed from begins and ends.
struct Piece {
  UChar32 character;
  std::size_t begin;
  std::size_t end;
};

int rankOf(const Piece& piece) { return u_getCombiningClass(piece.character); }

/// In the text's own order.
std::vector<Piece> decomposed(std::u16string_view text) {
  std::vector<Piece> pieces;
  pieces.reserve(text.size());
  for (std::size_t end = 0; end < text.size();) {
    const std::size_t begin = end;
    const std::u16string units = decomposition(nextCharacter(text, end));
    for (std::size_t i = 0; i < units.size();) {
      pieces.push_back({nextCharacter(units, i), begin, end});
    }
  }
  return pieces;
}

/// Canonical order.
void sortMarks(std::vector<Piece>& pieces) {
  const auto is_base = [](const Piece& piece) { return rankOf(piece) == 0; };
  for (auto marks = pieces.begin(); marks != pieces.end();) {
    marks = std::find_if_not(marks, pieces.end(), is_base);
    const auto next_base = std::find_if(marks, pieces.end(), is_base);
    std::stable_sort(marks, next_base, [](const Piece& a, const Piece& b) { return rankOf(a) < rankOf(b); });
    marks = next_base;
  }
}

bool hasHalfPair(std::u16string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    if (U_IS_SURROGATE(nextCharacter(text, i))) {
      return true;
    }
  }
  return false;
}

bool isJamo(UChar32 character) {
  const int type = u_getIntPropertyValue(character, UCHAR_HANGUL_SYLLABLE_TYPE);
  return type == U_HST_LEADING_JAMO || type == U_HST_VOWEL_JAMO || type == U_HST_TRAILING_JAMO;
}

bool joinsHangul(UChar32 before, UChar32 after) {
  const int first = u_getIntPropertyValue(before, UCHAR_HANGUL_SYLLABLE_TYPE);
  const int second = u_getIntPropertyValue(after, UCHAR_HANGUL_SYLLABLE_TYPE);
  switch (first) {
    case U_HST_LEADING_JAMO:
      return second != U_HST_NOT_APPLICABLE && second != U_HST_TRAILING_JAMO;
    case U_HST_VOWEL_JAMO:
      return second == U_HST_VOWEL_JAMO || second == U_HST_TRAILING_JAMO;
    case U_HST_TRAILING_JAMO:
      return second == U_HST_TRAILING_JAMO;
    default:
      return false;
  }
}

constexpr UChar32 kZeroWidthJoiner = 0x200D;

bool isPictograph(UChar32 character) { return u_hasBinaryProperty(character, UCHAR_EXTENDED_PICTOGRAPHIC) != 0; }

bool isLetterOrMark(UChar32 character) { return (U_GET_GC_MASK(character) & (U_GC_L_MASK | U_GC_M_MASK)) != 0; }

bool isVirama(UChar32 character) { return u_getCombiningClass(character) == 9; }

bool extends(UChar32 character) {
  return u_hasBinaryProperty(character, UCHAR_GRAPHEME_EXTEND) != 0 ||
         u_hasBinaryProperty(character, UCHAR_EMOJI_MODIFIER) != 0;
}

/// The character that ends at `index`, which moves before it; 0 at the start.
UChar32 characterBefore(std::u16string_view text, std::size_t& index) {
  UChar32 character = 0;
  if (index > 0) {
    U16_PREV(text, 0, index, character);
  }
  return character;
}

/// What the marks and joiners that end at `index` follow, or the first of them; 0 at the start.
UChar32 baseBefore(std::u16string_view text, std::size_t index) {
  UChar32 character = characterBefore(text, index);
  while (index > 0 && (extends(character) || character == kZeroWidthJoiner)) {
    character = characterBefore(text, index);
  }
  return character;
}

/// Whether what ends at `index`, which is not 0, goes on behind it for a reader.
bool continuesAt(std::u16string_view text, std::size_t index) {
  if (index == text.size()) {
    return false;
  }
  std::size_t start = index;
  const UChar32 after = nextCharacter(text, index);
  const UChar32 last = characterBefore(text, start);
  if (after == kZeroWidthJoiner) {
    return last == kZeroWidthJoiner || isVirama(last) || isJamo(last);
  }
  if (isVirama(last) && u_charType(after) == U_COMBINING_SPACING_MARK) {
    return start > 0;
  }
  if (last == kZeroWidthJoiner && isPictograph(after) && isPictograph(baseBefore(text, start))) {
    return true;
  }
  const UChar32 sign = last == kZeroWidthJoiner ? characterBefore(text, start) : last;
  if (isVirama(sign) && u_isalpha(after) != 0) {
    return isLetterOrMark(baseBefore(text, start));
  }
  return extends(after) || joinsHangul(last, after);
}

/// Where the text ends that is equivalent to `wanted` and begins at `start`; 0 when there is none.
std::size_t matchAt(std::vector<Piece>::const_iterator start, std::vector<Piece>::const_iterator last,
                    const std::vector<Piece>& wanted) {
  const auto size = static_cast<std::ptrdiff_t>(wanted.size());
  if (rankOf(*start) == 0 && start->character != wanted[0].character) {
    return 0;
  }
  std::vector<Piece> found(start,
                           std::find_if(start + size, last, [](const Piece& piece) { return rankOf(piece) == 0; }));
  sortMarks(found);
  const auto rest = found.begin() + size;
  const auto is_same = [](const Piece& a, const Piece& b) { return a.character == b.character; };
  if (!std::equal(found.begin(), rest, wanted.begin(), is_same)) {
    return 0;
  }
  const auto by_end = [](const Piece& a, const Piece& b) { return a.end < b.end; };
  const std::size_t end = std::max_element(found.begin(), rest, by_end)->end;
  const auto next = start + static_cast<std::ptrdiff_t>(found.size());
  const auto is_before_end = [&](const Piece& piece) { return piece.begin < end; };
  return std::any_of(rest, found.end(), is_before_end) || (next != last && is_before_end(*next)) ? 0 : end;
}

std::optional<TextRange> findUnits(std::u16string_view text, std::u16string_view part) {
  const std::size_t location = text.find(part);
  return location != std::u16string_view::npos ? std::optional<TextRange>({location, part.size()}) : std::nullopt;
}

}  // namespace

std::optional<std::string> asciiBytes(std::u16string_view text, bool lossy) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size();) {
    const UChar32 character = nextCharacter(text, i);
    if (character < 0x80) {
      bytes.push_back(static_cast<char>(character));
    } else if (lossy) {
      bytes += asciiLike(character);
    } else {
      return std::nullopt;
    }
  }
  return bytes;
}

std::optional<std::string> macRomanBytes(std::u16string_view text, bool lossy) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size();) {
    const UChar32 character = nextCharacter(text, i);
    const std::size_t place =
        character < 0x10000 ? kMacRoman.find(static_cast<char16_t>(character)) : std::u16string_view::npos;
    if (character < 0x80) {
      bytes.push_back(static_cast<char>(character));
    } else if (place != std::u16string_view::npos) {
      bytes.push_back(static_cast<char>(0x80 + place));
    } else if (u_hasBinaryProperty(character, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0) {
      continue;
    } else if (lossy) {
      bytes.push_back('?');
    } else {
      return std::nullopt;
    }
  }
  return bytes;
}

std::string utf16BigEndianBytes(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size() * 2);
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit >> 8));
    bytes.push_back(static_cast<char>(unit & 0xFF));
  }
  return bytes;
}

std::optional<TextRange> findText(std::u16string_view text, std::u16string_view part) {
  if (part.empty()) {
    return std::nullopt;
  }
  const auto is_ascii = [](char16_t unit) { return unit < 0x80; };
  if (hasHalfPair(part) ||
      (std::all_of(text.begin(), text.end(), is_ascii) && std::all_of(part.begin(), part.end(), is_ascii))) {
    return findUnits(text, part);
  }
  const std::vector<Piece> pieces = decomposed(text);
  std::vector<Piece> wanted = decomposed(part);
  sortMarks(wanted);
  for (auto start = pieces.begin(); pieces.end() - start >= static_cast<std::ptrdiff_t>(wanted.size()); ++start) {
    if (start != pieces.begin() && (start - 1)->begin == start->begin) {
      continue;  // within a character
    }
    const std::size_t end = matchAt(start, pieces.end(), wanted);
    if (end != 0 && !continuesAt(text, end)) {
      return TextRange{start->begin, end - start->begin};
    }
  }
  return std::nullopt;
}

}  // namespace platform
