#include "desktop/icc_language.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace {

using platform::desktop::Language;
using platform::desktop::languageOfLocale;
using platform::desktop::languageRank;
using platform::desktop::userLanguage;

/// Sets the locale variables for a test, the absent ones to nothing, and restores them.
class LocaleVariables {
 public:
  explicit LocaleVariables(const std::map<std::string, std::string>& values) {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
      const char* const value = std::getenv(name);
      before_[name] = value != nullptr ? std::optional<std::string>(value) : std::nullopt;
      const auto wanted = values.find(name);
      set(name, wanted != values.end() ? std::optional<std::string>(wanted->second) : std::nullopt);
    }
  }
  LocaleVariables(const LocaleVariables&) = delete;
  LocaleVariables& operator=(const LocaleVariables&) = delete;
  ~LocaleVariables() {
    for (const auto& [name, value] : before_) {
      set(name, value);
    }
  }

 private:
  static void set(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
      setenv(name.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name.c_str());
    }
  }
  std::map<std::string, std::optional<std::string>> before_;
};

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
    const LocaleVariables variables({{"LC_ALL", "de_DE"}, {"LC_MESSAGES", "fr_FR"}, {"LANG", "ja_JP"}});
    EXPECT_EQ(userLanguage(), (Language{"de", "DE"}));
  }
  {
    const LocaleVariables variables({{"LC_ALL", ""}, {"LC_MESSAGES", "fr_FR"}, {"LANG", "ja_JP"}});
    EXPECT_EQ(userLanguage(), (Language{"fr", "FR"}));
  }
  {
    const LocaleVariables variables({{"LC_MESSAGES", ""}, {"LANG", "ja_JP"}});
    EXPECT_EQ(userLanguage(), (Language{"ja", "JP"}));
  }
  {
    const LocaleVariables variables({});
    EXPECT_EQ(userLanguage(), (Language{"en", "US"}));
  }
}

TEST(UserLanguage, OfTheCLocaleOverridesAnother) {
  const LocaleVariables variables({{"LC_ALL", "C"}, {"LANG", "ja_JP"}});
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
