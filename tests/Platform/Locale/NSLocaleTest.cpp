// SPDX-License-Identifier: Apache-2.0
#include "Platform/Locale/NSLocale.h"

#include <gtest/gtest.h>

namespace rvf {
namespace {

TEST(NSLocale, ReadsTheEnvironmentsMessageLocale) {
  struct Row {
    const char* lcAll;
    const char* lcMessages;
    const char* lang;
    const char* identifier;
  };
  const Row rows[] = {
      {"", "", "", "en_US_POSIX"},
      {"C", "de_DE.UTF-8", "fr_FR", "en_US_POSIX"},
      {"C.UTF-8", "", "", "en_US_POSIX"},
      {"POSIX", "", "", "en_US_POSIX"},
      {"", "POSIX", "de_DE", "en_US_POSIX"},
      {"fr_CA.UTF-8", "de_DE", "it_IT", "fr_CA"},
      {"", "de_AT.UTF-8", "it_IT", "de_AT"},
      {"", "", "it_IT.ISO-8859-15@euro", "it_IT"},
      {"", "", "ca_ES@valencia", "ca_ES"},
      {"", "", "de", "de"},
      {"", "", "en_US_POSIX", "en_US_POSIX"},
      {"../../etc/passwd", "", "", "en_US_POSIX"},
      {"/usr/share/locale/de", "", "", "en_US_POSIX"},
      {"\xFF\xFE", "", "", "en_US_POSIX"},
      {".UTF-8", "", "", "en_US_POSIX"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(NSLocale::identifierForEnvironment(row.lcAll, row.lcMessages, row.lang),
              row.identifier)
        << row.lcAll << " | " << row.lcMessages << " | " << row.lang;
  }
}

TEST(NSLocale, KnowsLanguageAndCountryOfItsIdentifier) {
  struct Row {
    const char* identifier;
    const char* language;
    const char* country;
  };
  const Row rows[] = {
      {"de_AT", "de", "AT"},   {"de-AT", "de", "AT"},       {"DE_at", "de", "AT"},
      {"de", "de", ""},        {"zh_Hant_TW", "zh", "TW"},  {"es_419", "es", "419"},
      {"fil_PH", "fil", "PH"}, {"en_US_POSIX", "en", "US"}, {"", "", ""},
      {"d", "", ""},           {"../de", "", ""},           {"de_", "de", ""},
      {"de_../..", "de", ""},  {"\xC3\xBC_DE", "", "DE"},
  };
  for (const Row& row : rows) {
    const NSLocale locale(row.identifier);
    EXPECT_EQ(locale.languageCode(), row.language) << row.identifier;
    EXPECT_EQ(locale.countryCode(), row.country) << row.identifier;
  }
}

TEST(NSLocale, KeepsItsIdentifierVerbatim) {
  EXPECT_EQ(NSLocale("de-at@x").localeIdentifier(), "de-at@x");
}

TEST(NSLocale, TheCurrentLocaleIsTheOneThatWasSet) {
  NSLocale::setCurrentLocaleIdentifier("de_AT");
  EXPECT_EQ(NSLocale::currentLocale()->localeIdentifier(), "de_AT");
  NSLocale::setCurrentLocaleIdentifier("fr");
  EXPECT_EQ(NSLocale::currentLocale()->localeIdentifier(), "fr");
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
}

TEST(NSLocale, LocalesOfOneIdentifierAreEqual) {
  const auto locale = NSLocale::localeWithLocaleIdentifier("de_AT");
  EXPECT_TRUE(objectsAreEqual(locale, NSLocale::localeWithLocaleIdentifier("de_AT")));
  EXPECT_EQ(locale->hash(), NSLocale("de_AT").hash());
  EXPECT_FALSE(objectsAreEqual(locale, NSLocale::localeWithLocaleIdentifier("de_DE")));
  EXPECT_FALSE(objectsAreEqual(locale, nullptr));
}

TEST(NSLocale, KnowsItsDecimalSeparator) {
  const std::pair<const char*, const char*> rows[] = {
      {"en_US", "."}, {"en_US_POSIX", "."}, {"de_DE", ","},     {"de_CH", "."},
      {"ar_EG", "٫"}, {"xx_YY", "."},       {"\xFF/../x", "."}, {"", "."}};
  for (const auto& [identifier, separator] : rows)
    EXPECT_EQ(NSLocale(identifier).decimalSeparator(), separator) << identifier;
}

TEST(NSLocale, CountsTheChangesOfTheCurrentLocale) {
  const unsigned long before = NSLocale::changesOfCurrentLocale();
  NSLocale::setCurrentLocaleIdentifier("de_DE");
  EXPECT_EQ(NSLocale::changesOfCurrentLocale(), before + 1);
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  EXPECT_EQ(NSLocale::changesOfCurrentLocale(), before + 2);
}

}  // namespace
}  // namespace rvf
