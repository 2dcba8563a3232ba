#include "desktop/icc/icc_language.h"

#include <gtest/gtest.h>

#include "support/environment_variables.h"

namespace {

using platform::desktop::Language;
using platform::desktop::languageOfLocale;
using platform::desktop::languageRank;
using platform::desktop::userLanguage;

TEST(LanguageOfLocale, IsItsLanguageAndCountry) {
  EXPECT_EQ(languageOfLocale("de_AT.UTF-8@euro"), (Language{"de", "AT"}));
  EXPECT_EQ(languageOfLocale("sr_RS@latin"), (Language{"sr", "RS"}));
  EXPECT_EQ(languageOfLocale("fr_FR"), (Language{"fr", "FR"}));
  EXPECT_EQ(languageOfLocale("fr.UTF-8"), (Language{"fr", ""}));
  EXPECT_EQ(languageOfLocale("ja"), (Language{"ja", ""}));
}

TEST(LanguageOfLocale, IsAmericanEnglishWhenItNamesNone) {
  for (const char* const locale : {"", "C", "POSIX", "C.UTF-8", ".UTF-8", "_DE"}) {
    EXPECT_EQ(languageOfLocale(locale), (Language{"en", "US"})) << locale;
  }
}

TEST(UserLanguage, IsThatOfTheFirstVariableThatSaysOne) {
  {
    const auto variables = support::userLanguage({{"LC_ALL", "de_DE"}, {"LC_MESSAGES", "fr_FR"}, {"LANG", "ja_JP"}});
    EXPECT_EQ(userLanguage(), (Language{"de", "DE"}));
  }
  {
    const auto variables = support::userLanguage({{"LC_ALL", ""}, {"LC_MESSAGES", "fr_FR"}, {"LANG", "ja_JP"}});
    EXPECT_EQ(userLanguage(), (Language{"fr", "FR"}));
  }
  {
    const auto variables = support::userLanguage({{"LC_MESSAGES", ""}, {"LANG", "ja_JP"}});
    EXPECT_EQ(userLanguage(), (Language{"ja", "JP"}));
  }
  {
    const auto variables = support::userLanguage({});
    EXPECT_EQ(userLanguage(), (Language{"en", "US"}));
  }
}

TEST(UserLanguage, OfTheCLocaleOverridesAnother) {
  const auto variables = support::userLanguage({{"LC_ALL", "C"}, {"LANG", "ja_JP"}});
  EXPECT_EQ(userLanguage(), (Language{"en", "US"}));
}

TEST(LanguageRank, PrefersCountryThenLanguageThenEnglish) {
  const Language wanted = {"de", "AT"};
  EXPECT_EQ(languageRank("de", "AT", wanted), 3);
  EXPECT_EQ(languageRank("DE", "at", wanted), 3);
  EXPECT_EQ(languageRank("de", "DE", wanted), 2);
  EXPECT_EQ(languageRank("en", "AT", wanted), 1);
  EXPECT_EQ(languageRank("fr", "AT", wanted), 0);
}

}  // namespace
