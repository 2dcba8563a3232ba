// Conversions of a mebibyte of mixed text between UTF-8 and UTF-16, beside iconv.
#include <iconv.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "groups.h"
#include "strings/utils.h"

namespace bench {
namespace {

constexpr std::size_t kTextSize = 1 << 20;

/// About as much of each script as a page of names in many languages has: most of it ASCII, in runs.
std::string mixedText() {
  constexpr std::string_view kPage =
      "Display P3, a wide-gamut profile for the built-in screen; "
      "\xC3\x89"
      "cran int\xC3\xA9gr\xC3\xA9, profil \xC3\xA0 large gamme; "
      "\xD0\x9F\xD1\x80\xD0\xBE\xD1\x84\xD0\xB8\xD0\xBB\xD1\x8C \xD1\x8D\xD0\xBA\xD1\x80\xD0\xB0\xD0\xBD\xD0\xB0; "
      "\xE5\x86\x85\xE8\x94\xB5\xE3\x83\x87\xE3\x82\xA3\xE3\x82\xB9\xE3\x83\x97\xE3\x83\xAC\xE3\x82\xA4; "
      "\xF0\x9F\x96\xA5\xF0\x9F\x8E\xA8\n";
  std::string text;
  while (text.size() + kPage.size() <= kTextSize) {
    text += kPage;
  }
  return text.append(kTextSize - text.size(), ' ');
}

const std::string& utf8Text() {
  static const std::string text = mixedText();
  return text;
}

const std::wstring& utf16Text() {
  static const std::wstring text = Utils::utf8_to_utf16(utf8Text());
  return text;
}

/// Converts `from` into `to`, which is as large as the result can become.
void convert(iconv_t converter, std::string_view from, std::vector<char>& to) {
  char* in = const_cast<char*>(from.data());  // iconv only reads it
  std::size_t in_left = from.size();
  char* out = to.data();
  std::size_t out_left = to.size();
  if (iconv(converter, &in, &in_left, &out, &out_left) == static_cast<std::size_t>(-1)) {
    throw std::runtime_error("iconv failed");
  }
  keep(to.data());
}

constexpr Batches kBatches{.rounds = 101, .calls = 1};

Pair fromUtf8() {
  return pairOf([] { keep(Utils::utf8_to_utf16(utf8Text())); },
                [converter = iconv_open("UTF-16LE", "UTF-8")] {
                  std::vector<char> units(utf8Text().size() * 2);
                  convert(converter, utf8Text(), units);
                },
                kBatches);
}

Pair toUtf8() {
  const std::wstring& wide = utf16Text();
  return pairOf(
      [] { keep(Utils::utf16_to_utf8(utf16Text())); },
      [converter = iconv_open("UTF-8", "UTF-16LE"), units = std::u16string(wide.begin(), wide.end())] {
        std::vector<char> utf8(units.size() * 3);
        convert(converter, {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t)}, utf8);
      },
      kBatches);
}

}  // namespace

void addText(const Suite& suite) {
  constexpr double kBar = 1;
  suite.add({"UTF-8 to UTF-16", 1, "MiB", "iconv", kBar}, fromUtf8);
  suite.add({"UTF-16 to UTF-8", 1, "MiB", "iconv", kBar}, toUtf8);
}

}  // namespace bench
