#include "desktop/model/language.h"

#include <algorithm>
#include <cstdlib>

#include "desktop/model/utf8.h"

namespace platform::desktop {

Language languageOfLocale(std::string_view locale) {
  locale = locale.substr(0, locale.find_first_of(".@:"));
  const std::string_view language = locale.substr(0, locale.find_first_of("_-"));
  if (language.empty() || language == "C" || language == "POSIX") {
    return {"en", "US"};
  }
  return {std::string(language), std::string(locale.substr(std::min(language.size() + 1, locale.size())))};
}

Language userLanguage() {
  for (const char* const variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const locale = std::getenv(variable);
    if (locale != nullptr && *locale != '\0') {
      return languageOfLocale(locale);
    }
  }
  return languageOfLocale("");
}

int languageRank(std::string_view language, std::string_view country, const Language& wanted) {
  if (equalsIgnoringCase(language, wanted.language)) {
    return equalsIgnoringCase(country, wanted.country) ? 5 : country.empty() ? 4 : 3;
  }
  if (equalsIgnoringCase(language, "en")) {
    return country.empty() ? 2 : 1;
  }
  return 0;
}

}  // namespace platform::desktop
