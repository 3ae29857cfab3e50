// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/PlatformUtilities/NSLocale-RVFExtensions.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Platform/Numbers/NSNumberFormatter.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Storage/NSUserDefaults.h"
#include "Platform/Time/NSCalendar.h"
#include "Platform/Time/NSDateFormatter.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/CoreServices/RVFLibraryBundle.h"
#include "RVFoundation/Formatters/RVFCurrencyFormatter.h"
#include "RVFoundation/Formatters/RVFQuantityFormatter.h"
#include "tests/Platform/Locale/LocaleListener.h"

namespace rvf {
namespace {

using Texts = std::vector<std::string>;

void changeLocale(std::string_view identifier, const std::function<void()>& block) {
  NSLocale_RVFExtensions::RVF_changeLocaleTo(identifier, block);
}

std::string current() {
  return NSLocale::currentLocale()->localeIdentifier();
}

/// Does something at every change of the current locale.
class Follower final : public NSObject {
 public:
  static Ref<Follower> following(std::function<void()> action) {
    auto follower = std::make_shared<Follower>();
    follower->action_ = std::move(action);
    NSNotificationCenter::defaultCenter()->addObserver(
        follower, SEL("currentLocaleDidChange:"), std::string(NSCurrentLocaleDidChangeNotification),
        nullptr);
    return follower;
  }

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<Follower>("LocaleFollower", NSObject::classObject())
            .method<&Follower::currentLocaleDidChange>("currentLocaleDidChange:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void currentLocaleDidChange(const Ref<NSNotification>&) { action_(); }

 private:
  std::function<void()> action_;
};

class NSLocale_RVFExtensionsTest : public testing::Test {
 protected:
  NSLocale_RVFExtensionsTest() { NSLocale::setCurrentLocaleIdentifier("en_US"); }
  ~NSLocale_RVFExtensionsTest() override {
    NSLocale::setCurrentLocaleIdentifier(std::nullopt);
    NSUserDefaults::standardUserDefaults()->synchronize();
  }

  /// The name of the exception that changing to "de_DE" raised.
  static std::string nameOfRaised(const std::function<void()>& block) {
    try {
      changeLocale("de_DE", block);
    } catch (const NSException& exception) {
      return exception.name();
    }
    return "";
  }
  static id chosen() { return NSUserDefaults::standardUserDefaults()->objectForKey("AppleLocale"); }
  /// What the file of the standard defaults says, see ConfigurationFolder.cpp.
  static id stored() {
    return NSUserDefaults::userDefaultsWithFile(
               NSUserDefaults::filePath(getenv("XDG_CONFIG_HOME"), "",
                                        program_invocation_short_name))
        ->objectForKey("AppleLocale");
  }
};

TEST_F(NSLocale_RVFExtensionsTest, TheLocaleIsAnotherDuringTheBlock) {
  std::string during;
  changeLocale("de_DE", [&] { during = current(); });
  EXPECT_EQ(during, "de_DE");
  EXPECT_EQ(current(), "en_US");
}

TEST_F(NSLocale_RVFExtensionsTest, TheChoiceIsStoredAndRestored) {
  changeLocale("de_DE", [] {
    EXPECT_TRUE(objectsAreEqual(chosen(), box("de_DE")));
    EXPECT_TRUE(objectsAreEqual(stored(), box("de_DE")));
  });
  EXPECT_TRUE(objectsAreEqual(chosen(), box("en_US")));
  EXPECT_TRUE(objectsAreEqual(stored(), box("en_US")));
}

TEST_F(NSLocale_RVFExtensionsTest, AChoiceThatWasAbsentIsAbsentAgain) {
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  const std::string before = current();
  changeLocale("de_DE", [] { EXPECT_EQ(current(), "de_DE"); });
  EXPECT_EQ(chosen(), nullptr);
  EXPECT_EQ(stored(), nullptr);
  EXPECT_EQ(current(), before);
}

TEST_F(NSLocale_RVFExtensionsTest, WhateverWasChosenIsRestored) {
  NSUserDefaults::standardUserDefaults()->setObject(box(7), "AppleLocale");
  changeLocale("de_DE", [] { EXPECT_EQ(current(), "de_DE"); });
  EXPECT_TRUE(objectsAreEqual(chosen(), box(7)));
}

TEST_F(NSLocale_RVFExtensionsTest, ChangesStandInsideOneAnother) {
  Texts texts;
  const auto note = [&] { texts.push_back(current()); };
  changeLocale("de_DE", [&] {
    note();
    changeLocale("fr_FR", [&] {
      note();
      changeLocale("de_DE", note);
      note();
    });
    note();
  });
  note();
  EXPECT_EQ(texts, (Texts{"de_DE", "fr_FR", "de_DE", "fr_FR", "de_DE", "en_US"}));
}

TEST_F(NSLocale_RVFExtensionsTest, WhatTheBlockRaisesGoesOnAfterTheRestoration) {
  try {
    changeLocale("de_DE", [] { NSException::raise("Broken", "on purpose"); });
    FAIL() << "nothing was raised";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), "Broken");
    EXPECT_EQ(exception.reason(), "on purpose");
    EXPECT_EQ(current(), "en_US");
  }
  EXPECT_TRUE(objectsAreEqual(stored(), box("en_US")));
  EXPECT_THROW(changeLocale("de_DE", [] { throw std::out_of_range("other"); }), std::out_of_range);
  EXPECT_EQ(current(), "en_US");
}

TEST_F(NSLocale_RVFExtensionsTest, AnAbsentChoiceIsAbsentAgainAfterARaisingBlock) {
  NSLocale::setCurrentLocaleIdentifier(std::nullopt);
  EXPECT_THROW(changeLocale("de_DE", [] { NSException::raise("Broken", ""); }), NSException);
  EXPECT_EQ(chosen(), nullptr);
  EXPECT_EQ(stored(), nullptr);
}

TEST_F(NSLocale_RVFExtensionsTest, ARaisingBlockInsideRestoresEveryLevel) {
  EXPECT_THROW(
      changeLocale("de_DE",
                   [] { changeLocale("fr_FR", [] { NSException::raise("Broken", ""); }); }),
      NSException);
  EXPECT_EQ(current(), "en_US");
}

TEST_F(NSLocale_RVFExtensionsTest, ObserversHearOfTheChangeBeforeTheBlockAndAfterIt) {
  const auto listener = LocaleListener::listening();
  changeLocale("de_DE", [&] { EXPECT_EQ(listener->locales(), Texts{"de_DE"}); });
  EXPECT_EQ(listener->locales(), (Texts{"de_DE", "en_US"}));
  EXPECT_THROW(changeLocale("fr_FR", [] { NSException::raise("Broken", ""); }), NSException);
  EXPECT_EQ(listener->locales(), (Texts{"de_DE", "en_US", "fr_FR", "en_US"}));
  EXPECT_TRUE(listener->isPlain());
}

TEST_F(NSLocale_RVFExtensionsTest, ObserversFindTheChoiceStoredAndSynchronized) {
  std::vector<std::string> found;
  const auto follower = Follower::following([&] {
    found.push_back(unboxText(chosen()).value_or("") + " " + unboxText(stored()).value_or(""));
  });
  changeLocale("de_DE", [] {});
  EXPECT_EQ(found, (Texts{"de_DE de_DE", "en_US en_US"}));
}

TEST_F(NSLocale_RVFExtensionsTest, AnObserverThatRaisesBeforeTheBlockKeepsItFromRunning) {
  const auto follower = Follower::following([] {
    if (current() == "de_DE") NSException::raise("Observer", "");
  });
  bool hasRun = false;
  EXPECT_EQ(nameOfRaised([&] { hasRun = true; }), "Observer");
  EXPECT_FALSE(hasRun);
  EXPECT_TRUE(objectsAreEqual(stored(), box("en_US")));
  EXPECT_EQ(current(), "en_US");
}

TEST_F(NSLocale_RVFExtensionsTest, AnObserverThatRaisesAfterTheBlockHidesNoFailureOfIt) {
  const auto follower = Follower::following([] {
    if (current() == "en_US") NSException::raise("Observer", "");
  });
  EXPECT_EQ(nameOfRaised([] { NSException::raise("Block", ""); }), "Block");
  EXPECT_TRUE(objectsAreEqual(stored(), box("en_US")));
  EXPECT_EQ(nameOfRaised([] {}), "Observer");
  EXPECT_TRUE(objectsAreEqual(stored(), box("en_US")));
}

TEST_F(NSLocale_RVFExtensionsTest, TheBlocksExceptionIsTheSameOne) {
  const std::out_of_range* raised = nullptr;
  try {
    changeLocale("de_DE", [&] {
      try {
        throw std::out_of_range("on purpose");
      } catch (const std::out_of_range& exception) {
        raised = &exception;
        throw;
      }
    });
    FAIL() << "nothing was raised";
  } catch (const std::out_of_range& exception) {
    EXPECT_EQ(&exception, raised);
  }
}

TEST_F(NSLocale_RVFExtensionsTest, FormattersAndCalendarsFollow) {
  const auto number = std::make_shared<NSNumberFormatter>();
  number->setNumberStyle(NSNumberFormatterDecimalStyle);
  const auto month = std::make_shared<NSDateFormatter>();
  month->setDateFormat("MMMM");
  month->setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(0));
  const auto date = NSDate::dateWithTimeIntervalSinceReferenceDate(0);
  const auto text = [&] {
    return *number->stringForObjectValue(box(1234.5)) + " " + *month->stringFromDate(date) + " " +
           NSCalendar::currentCalendar()->calendarIdentifier();
  };
  EXPECT_EQ(text(), "1,234.5 January gregorian");
  changeLocale("de_AT", [&] { EXPECT_EQ(text(), "1\u00A0234,5 Jänner gregorian"); });
  EXPECT_EQ(text(), "1,234.5 January gregorian");
  changeLocale("th_TH", [&] { EXPECT_EQ(text(), "1,234.5 มกราคม buddhist"); });
  EXPECT_EQ(text(), "1,234.5 January gregorian");
}

TEST_F(NSLocale_RVFExtensionsTest, SharedFormattersAndTranslationsFollow) {
  RVFLibraryBundle()->setCatalogueFolder(RVF_BUILD_CATALOGUE_FOLDER);
  const auto text = [] {
    return *RVFCurrencyFormatter::sharedCurrencyFormatter()->stringForObjectValue(box(1234.5)) +
           " " + *RVFQuantityFormatter::sharedQuantityFormatter()->stringForObjectValue(box(0.5)) +
           " " +
           RVFLibraryBundle()->localizedStringForKey("An error occurred while receiving data.");
  };
  const std::string english = text();
  EXPECT_EQ(english, "1,234.50 0.5 An error occurred while receiving data.");
  changeLocale("de_DE", [&] {
    EXPECT_EQ(text(), "1.234,50 0,5 Beim Empfangen von Daten ist ein Fehler aufgetreten.");
    changeLocale("en_US", [&] { EXPECT_EQ(text(), english); });
  });
  EXPECT_EQ(text(), english);
  RVFLibraryBundle()->setCatalogueFolder(std::nullopt);
}

TEST_F(NSLocale_RVFExtensionsTest, AnIdentifierThatIsNoUTF8ChangesNothing) {
  const auto listener = LocaleListener::listening();
  bool hasRun = false;
  EXPECT_THROW(changeLocale("\xFF", [&] { hasRun = true; }), NSException);
  EXPECT_FALSE(hasRun);
  EXPECT_EQ(current(), "en_US");
  EXPECT_TRUE(objectsAreEqual(chosen(), box("en_US")));
}

TEST_F(NSLocale_RVFExtensionsTest, AnEmptyBlockDoesNothing) {
  const auto listener = LocaleListener::listening();
  changeLocale("de_DE", nullptr);
  EXPECT_EQ(listener->locales(), (Texts{"de_DE", "en_US"}));
}

TEST_F(NSLocale_RVFExtensionsTest, OtherThreadsReadOneLocaleOrTheOther) {
  constexpr int kReaders = 3;
  std::atomic<bool> isOver{false};
  std::atomic<int> strangers{0};
  std::vector<std::thread> readers;
  for (int i = 0; i < kReaders; ++i) {
    readers.emplace_back([&] {
      const auto number = std::make_shared<NSNumberFormatter>();
      number->setNumberStyle(NSNumberFormatterDecimalStyle);
      while (!isOver) {
        const std::string locale = current();
        const std::string text = *number->stringForObjectValue(box(0.5));
        if ((locale != "de_DE" && locale != "en_US") || (text != "0.5" && text != "0,5"))
          ++strangers;
      }
      if (*number->stringForObjectValue(box(0.5)) != "0.5") ++strangers;
    });
  }
  for (int i = 0; i < 20; ++i)
    changeLocale("de_DE", [] { EXPECT_EQ(current(), "de_DE"); });
  isOver = true;
  for (std::thread& reader : readers)
    reader.join();
  EXPECT_EQ(strangers, 0);
  EXPECT_EQ(current(), "en_US");
}

TEST(RVF_POSIXLocale, IsANewOneEachTime) {
  const auto locale = NSLocale_RVFExtensions::RVF_POSIXLocale();
  EXPECT_EQ(locale->localeIdentifier(), "en_US_POSIX");
  EXPECT_NE(locale, NSLocale_RVFExtensions::RVF_POSIXLocale());
}

}  // namespace
}  // namespace rvf
