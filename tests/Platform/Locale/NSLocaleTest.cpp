// SPDX-License-Identifier: Apache-2.0
#include "Platform/Locale/NSLocale.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Platform/Observation/NSNotificationCenter.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Storage/NSUserDefaults.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/Platform/Locale/LocaleListener.h"

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

/// The user's choice in the standard user defaults.
class CurrentLocaleTest : public testing::Test {
 protected:
  ~CurrentLocaleTest() override { NSLocale::setCurrentLocaleIdentifier(std::nullopt); }

  static std::string current() { return NSLocale::currentLocale()->localeIdentifier(); }
  static void choose(const id& value) {
    NSUserDefaults::standardUserDefaults()->setObject(value, "AppleLocale");
  }
  static void postChange() {
    NSNotificationCenter::defaultCenter()->postNotificationName(
        NSCurrentLocaleDidChangeNotification, nullptr);
  }
};

TEST_F(CurrentLocaleTest, IsTheUsersChoiceFromTheNotificationOn) {
  NSLocale::setCurrentLocaleIdentifier("de_DE");
  EXPECT_EQ(current(), "de_DE");
  choose(box("fr_FR"));
  EXPECT_EQ(current(), "de_DE");
  postChange();
  EXPECT_EQ(current(), "fr_FR");
  EXPECT_EQ(NSLocale::currentLocale(), NSLocale::currentLocale());
}

TEST_F(CurrentLocaleTest, IsTheEnvironmentsWithoutAChoice) {
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  const std::string environments = current();
  choose(box("xx_YY"));
  postChange();
  EXPECT_EQ(current(), "xx_YY");
  choose(nullptr);
  postChange();
  EXPECT_EQ(current(), environments);
  choose(box(7));
  postChange();
  EXPECT_EQ(current(), environments);
}

TEST_F(CurrentLocaleTest, SettingItChoosesForThisProcessAndTellsObservers) {
  const auto listener = LocaleListener::listening();
  NSLocale::setCurrentLocaleIdentifier("de_AT");
  EXPECT_TRUE(objectsAreEqual(NSUserDefaults::standardUserDefaults()->objectForKey("AppleLocale"),
                              box("de_AT")));
  NSLocale::setCurrentLocaleIdentifier("it_IT");
  EXPECT_EQ(listener->locales(), (std::vector<std::string>{"de_AT", "it_IT"}));
  EXPECT_TRUE(listener->isPlain());
}

TEST_F(CurrentLocaleTest, ObserversThatRegisterBeforeItsFirstUseMeetTheNewOne) {
  const auto listener = LocaleListener::listening();
  const auto listenerOfAll = std::make_shared<LocaleListener>();
  NSNotificationCenter::defaultCenter()->addObserver(listenerOfAll, SEL("currentLocaleDidChange:"),
                                                     std::nullopt, nullptr);
  choose(box("de_DE"));
  current();
  for (const char* locale : {"fr_FR", "it_IT"}) {
    choose(box(locale));
    postChange();
  }
  EXPECT_EQ(listener->locales(), (std::vector<std::string>{"fr_FR", "it_IT"}));
  EXPECT_EQ(listenerOfAll->locales(), listener->locales());
}

TEST_F(CurrentLocaleTest, WhatIsNoUTF8IsRefused) {
  NSLocale::setCurrentLocaleIdentifier("de_AT");
  EXPECT_THROW(NSLocale::setCurrentLocaleIdentifier("\xFF"), NSException);
  EXPECT_EQ(current(), "de_AT");
}

TEST_F(CurrentLocaleTest, EveryChangeHasAnotherNumber) {
  NSLocale::currentLocale();
  const unsigned long before = NSLocale::changesOfCurrentLocale();
  EXPECT_EQ(NSLocale::changesOfCurrentLocale(), before);
  NSLocale::setCurrentLocaleIdentifier("de_DE");
  const unsigned long afterwards = NSLocale::changesOfCurrentLocale();
  EXPECT_NE(afterwards, before);
  postChange();
  EXPECT_NE(NSLocale::changesOfCurrentLocale(), afterwards);
}

}  // namespace
}  // namespace rvf
