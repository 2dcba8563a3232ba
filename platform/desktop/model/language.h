// The user's language, and how well a text in another serves the user. Any thread may call, while no other changes the
// environment.
#pragma once

#include <string>
#include <string_view>

#include "desktop/model/export.h"

namespace platform::desktop {

/// A language by its ISO 639 code and a country by its ISO 3166-1 code; empty for none.
struct Language {
  std::string language;
  std::string country;
  friend bool operator==(const Language&, const Language&) = default;
};

/// The language of a POSIX locale such as "de_AT.UTF-8@euro", or of a language code such as "de-AT". A locale that
/// names no language ("", "C", "POSIX") is American English, the language in which ColorSync's own names are written.
PLATFORM_API Language languageOfLocale(std::string_view locale);

/// The user's language for messages: the first one of LANGUAGE, else that of the first of LC_ALL, LC_MESSAGES and LANG
/// that is set and not empty.
PLATFORM_API Language userLanguage();

/// How well a text in `language` as written in `country` serves a reader of `wanted`, from 5 to 0: in the same language
/// and country, in the same language and no country, in the same language, in English of no country, in English, in
/// another language. Case-insensitive.
PLATFORM_API int languageRank(std::string_view language, std::string_view country, const Language& wanted);

}  // namespace platform::desktop
