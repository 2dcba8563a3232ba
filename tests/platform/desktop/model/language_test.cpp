#include "desktop/model/language.h"

#include <gtest/gtest.h>

#include "support/environment_variables.h"

namespace {

using platform::desktop::Language;
using platform::desktop::languageOfLocale;
using platform::desktop::languageRank;
using platform::desktop::userLanguage;

TEST(LanguageOfLocale, ReturnsLanguageAndCountry) {
  EXPECT_EQ(languageOfLocale("de_AT.UTF-8@euro"), (Language{"de", "AT"}));
  EXPECT_EQ(languageOfLocale("sr_RS@latin"), (Language{"sr", "RS"}));
  EXPECT_EQ(languageOfLocale("pt-BR"), (Language{"pt", "BR"}));
  EXPECT_EQ(languageOfLocale("fr.UTF-8"), (Language{"fr", ""}));
  EXPECT_EQ(languageOfLocale("ja"), (Language{"ja", ""}));
}

TEST(LanguageOfLocale, ReturnsAmericanEnglishForNoLanguage) {
  for (const char* const locale : {"", "C", "POSIX", "C.UTF-8", ".UTF-8", "_DE", ":de"}) {
    EXPECT_EQ(languageOfLocale(locale), (Language{"en", "US"})) << locale;
  }
}

TEST(UserLanguage, ReturnsThatOfTheFirstVariableThatIsSet) {
  {
    const auto variables = support::userLanguage(
        {{"LANGUAGE", "it:en"}, {"LC_ALL", "de_DE"}, {"LC_MESSAGES", "fr_FR"}, {"LANG", "ja_JP"}});
    EXPECT_EQ(userLanguage(), (Language{"it", ""}));
  }
  {
    const auto variables = support::userLanguage({{"LC_ALL", "de_DE"}, {"LC_MESSAGES", "fr_FR"}, {"LANG", "ja_JP"}});
    EXPECT_EQ(userLanguage(), (Language{"de", "DE"}));
  }
  {
    const auto variables = support::userLanguage({{"LC_ALL", ""}, {"LC_MESSAGES", "fr_FR"}, {"LANG", "ja_JP"}});
    EXPECT_EQ(userLanguage(), (Language{"fr", "FR"}));
  }
  {
    const auto variables = support::userLanguage({{"LANGUAGE", ""}, {"LC_MESSAGES", ""}, {"LANG", "ja_JP"}});
    EXPECT_EQ(userLanguage(), (Language{"ja", "JP"}));
  }
  {
    const auto variables = support::userLanguage({{"LC_ALL", "C"}, {"LANG", "ja_JP"}});
    EXPECT_EQ(userLanguage(), (Language{"en", "US"}));
  }
  {
    const auto variables = support::userLanguage({});
    EXPECT_EQ(userLanguage(), (Language{"en", "US"}));
  }
}

TEST(LanguageRank, PrefersCountryThenLanguageThenEnglish) {
  const Language wanted = {"de", "AT"};
  EXPECT_EQ(languageRank("de", "AT", wanted), 5);
  EXPECT_EQ(languageRank("DE", "at", wanted), 5);
  EXPECT_EQ(languageRank("de", "", wanted), 4);
  EXPECT_EQ(languageRank("de", "DE", wanted), 3);
  EXPECT_EQ(languageRank("en", "", wanted), 2);
  EXPECT_EQ(languageRank("en", "AT", wanted), 1);
  EXPECT_EQ(languageRank("fr", "AT", wanted), 0);
}

}  // namespace
