#include "frameworks/IOKit/preferred_name.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace platform {
namespace {

/// Such as "de_DE"; "en" when the environment asks for nothing.
std::string preferredLanguage() {
  for (const char* const name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const value = std::getenv(name);
    if (value == nullptr || *value == '\0') {
      continue;
    }
    std::string language = value;
    language.resize(std::min(language.find_first_of(".:@"), language.size()));
    return language.empty() || language == "C" || language == "POSIX" ? "en" : language;
  }
  return "en";
}

std::string_view withoutCountry(std::string_view language) { return language.substr(0, language.find_first_of("_-")); }

/// How well a name in the language `offered` serves a reader of `wanted`; the greater the better.
int rank(std::string_view offered, std::string_view wanted) {
  if (offered == wanted) {
    return 4;
  }
  if (withoutCountry(offered) == withoutCountry(wanted)) {
    return 3;
  }
  if (offered == "en") {
    return 2;
  }
  return withoutCountry(offered) == "en" ? 1 : 0;
}

}  // namespace

ProductNames onlyPreferred(const ProductNames& names) {
  const std::string wanted = preferredLanguage();
  const auto best = std::max_element(names.begin(), names.end(), [&](const auto& first, const auto& second) {
    return rank(first.first, wanted) < rank(second.first, wanted);
  });
  return best == names.end() ? ProductNames{} : ProductNames{*best};
}

}  // namespace platform
