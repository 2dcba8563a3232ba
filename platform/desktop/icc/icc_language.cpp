#include "desktop/icc/icc_language.h"

#include <algorithm>
#include <cstdlib>

namespace platform::desktop {
namespace {

constexpr char lower(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter; }

bool sameLetters(std::string_view first, std::string_view second) {
  return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                    [](char a, char b) { return lower(a) == lower(b); });
}

}  // namespace

Language languageOfLocale(std::string_view locale) {
  locale = locale.substr(0, locale.find_first_of(".@"));
  const std::string_view language = locale.substr(0, locale.find('_'));
  if (language.empty() || language == "C" || language == "POSIX") {
    return {"en", "US"};
  }
  std::string_view country;
  if (language.size() < locale.size()) {
    country = locale.substr(language.size() + 1);
  }
  return {std::string(language), std::string(country)};
}

Language userLanguage() {
  for (const char* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const locale = std::getenv(variable);
    if (locale != nullptr && *locale != '\0') {
      return languageOfLocale(locale);
    }
  }
  return languageOfLocale("");
}

int languageRank(std::string_view language, std::string_view country, const Language& wanted) {
  if (sameLetters(language, wanted.language)) {
    return sameLetters(country, wanted.country) ? 3 : 2;
  }
  return sameLetters(language, "en") ? 1 : 0;
}

}  // namespace platform::desktop
