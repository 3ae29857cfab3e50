// SPDX-License-Identifier: Apache-2.0
//
// Expiry dates as people type them: `getExpiryMonth` of the text extensions.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <limits>
#include <string>
#include <vector>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Time/NSTimeZone.h"
#include "Platform/Values/NSDate.h"
#include "RVFoundation/CoreServices/RVFErrors.h"
#include "RVFoundation/CoreServices/RVFLibraryBundle.h"
#include "RVFoundation/Text/NSString-RVFExtensions.h"
#include "tests/Platform/Text/TextGenerators.h"

namespace rvf {
namespace {

using testing::ElementsAre;

constexpr double kStartOf2026 = 1767225600;  // in UTC, seconds since 1970
constexpr double kStartOf2100 = 4102444800;
constexpr std::int32_t kUntouched = -77;

constexpr const char* kFormatSuggestion =
    "Enter an expiry date using one of these formats: 'MMYY', 'MM/YY' or 'MM/YYYY'.";
constexpr const char* kMonthSuggestion = "Enter a number between 1 and 12.";
constexpr const char* kYearSuggestion = "Enter a number between 2000 and 9999.";

class ExpiryDateTest : public testing::Test {
 protected:
  ExpiryDateTest() {
    NSLocale::setCurrentLocaleIdentifier("en_US_POSIX");
    NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName("GMT"));
    setNow(kStartOf2026);
  }
  ~ExpiryDateTest() override {
    NSLocale::setCurrentLocaleIdentifier(std::nullopt);
    NSTimeZone::setDefaultTimeZone(nullptr);
    NSDate::setClock(nullptr);
  }

  static void setNow(double secondsSince1970) {
    const auto now = NSDate::dateWithTimeIntervalSince1970(secondsSince1970);
    NSDate::setClock([now] { return now->timeIntervalSinceReferenceDate(); });
  }

  std::int32_t month_ = kUntouched;
  std::int32_t year_ = kUntouched;
  Ref<NSError> error_;
};

TEST_F(ExpiryDateTest, ReadsMonthAndYear) {
  struct Row {
    const char* text;
    std::int32_t month;
    std::int32_t year;
  };
  const Row rows[] = {{"1225", 12, 2025},
                      {"12/25", 12, 2025},
                      {"12/2025", 12, 2025},
                      {"0125", 1, 2025},
                      {"1/5", 1, 2005},
                      {"01/2030", 1, 2030},
                      {"12/5", 12, 2005},
                      {"12/00", 12, 2000},
                      {"12/2000", 12, 2000},
                      {"12/9999", 12, 9999},
                      {"12/ 25x", 12, 2025},
                      {"12/-25", 12, 2025},
                      {"12/year 25!", 12, 2025},
                      {" \n+7abc/25", 7, 2025},
                      {"000000000012/25", 12, 2025},
                      {"12/0002025", 12, 2025},
                      {"12/2025 or 2026", 12, 2025},
                      {"1//2", 1, 2002},
                      {"1 25", 1, 2025},
                      {"1\u00FC25", 1, 2025},
                      {"1\U0001F6002", 1, 2002},
                      {"12/\u20AC\U0001F60025\xFF", 12, 2025},
                      {"5x/7", 5, 2007}};
  for (const Row& row : rows) {
    error_ = nullptr;
    EXPECT_TRUE(getExpiryMonth(row.text, &month_, &year_, &error_)) << row.text;
    EXPECT_EQ(month_, row.month) << row.text;
    EXPECT_EQ(year_, row.year) << row.text;
    EXPECT_EQ(error_, nullptr) << row.text;
  }
}

TEST_F(ExpiryDateTest, TellsWhyATextCannotBeRead) {
  struct Row {
    const char* text;
    long code;
    std::string message;
    const char* suggestion;
    std::int32_t month;
    std::int32_t year;
  };
  constexpr std::int32_t kNone = kUntouched;
  const auto noDate = [](const char* text) {
    return "Could not read expiry date '" + std::string(text) + "'.";
  };
  const auto badMonth = [](const char* month) {
    return "Invalid expiry month value '" + std::string(month) + "'.";
  };
  const auto badYear = [](const char* year) {
    return "Invalid expiry year value '" + std::string(year) + "'.";
  };
  const std::string noMonth = "Invalid expiry month value.";
  const std::string noYear = "Invalid expiry year value.";
  const Row rows[] = {
      {"", 303, noDate(""), kFormatSuggestion, kNone, kNone},
      {"122", 303, noDate("122"), kFormatSuggestion, kNone, kNone},
      {"12255", 303, noDate("12255"), kFormatSuggestion, kNone, kNone},
      {"12/25/30", 303, noDate("12/25/30"), kFormatSuggestion, kNone, kNone},
      {"%@%d\u20AC", 303, noDate("%@%d\u20AC"), kFormatSuggestion, kNone, kNone},
      {"122\U0001F600", 303, noDate("122\U0001F600"), kFormatSuggestion, kNone, kNone},
      {"/", 304, noMonth, kMonthSuggestion, kNone, kNone},
      {"/2025", 304, noMonth, kMonthSuggestion, kNone, kNone},
      {"x12/25", 304, noMonth, kMonthSuggestion, kNone, kNone},
      {"+ 1/25", 304, noMonth, kMonthSuggestion, kNone, kNone},
      {"\u0661\u0662/25", 304, noMonth, kMonthSuggestion, kNone, kNone},
      {"\U0001F60025", 304, noMonth, kMonthSuggestion, kNone, kNone},
      {"00/25", 304, badMonth("0"), kMonthSuggestion, 0, kNone},
      {"13/25", 304, badMonth("13"), kMonthSuggestion, 13, kNone},
      {"1325", 304, badMonth("13"), kMonthSuggestion, 13, kNone},
      {"-1/25", 304, badMonth("-1"), kMonthSuggestion, -1, kNone},
      {"99999999999/25", 304, badMonth("2147483647"), kMonthSuggestion, 2147483647, kNone},
      {"12/", 305, noYear, kYearSuggestion, 12, kNone},
      {"12xx", 305, noYear, kYearSuggestion, 12, kNone},
      {"12/ - ", 305, noYear, kYearSuggestion, 12, kNone},
      {"12/\u0662\u0665", 305, noYear, kYearSuggestion, 12, kNone},
      {"12/025", 305, badYear("25"), kYearSuggestion, 12, 25},
      {"12/2 5", 305, badYear("2"), kYearSuggestion, 12, 2},
      {"12/1999", 305, badYear("1999"), kYearSuggestion, 12, 1999},
      {"12/10000", 305, badYear("10000"), kYearSuggestion, 12, 10000},
      {"12/99999999999", 305, badYear("2147483647"), kYearSuggestion, 12, 2147483647}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    month_ = year_ = kUntouched;
    error_ = nullptr;
    EXPECT_FALSE(getExpiryMonth(row.text, &month_, &year_, &error_));
    ASSERT_NE(error_, nullptr);
    EXPECT_EQ(error_->domain(), RVFErrorDomain);
    EXPECT_EQ(error_->code(), row.code);
    EXPECT_EQ(error_->localizedDescription(), row.message);
    EXPECT_EQ(error_->localizedRecoverySuggestion(), row.suggestion);
    EXPECT_EQ(error_->userInfo()->count(), 2U);
    EXPECT_EQ(month_, row.month);
    EXPECT_EQ(year_, row.year);
    EXPECT_FALSE(getExpiryMonth(row.text, &month_, &year_));
  }
}

TEST_F(ExpiryDateTest, AShortYearIsOneOfTheCurrentCentury) {
  struct Row {
    double now;
    const char* zone;
    std::int32_t year;
  };
  constexpr double kHour = 3600;
  const Row rows[] = {{kStartOf2026, "GMT", 2025},
                      {kStartOf2100 - 1, "GMT", 2025},
                      {kStartOf2100, "GMT", 2125},
                      {kStartOf2100 - kHour, "Europe/Berlin", 2125},
                      {kStartOf2100 + kHour, "America/New_York", 2025}};
  for (const Row& row : rows) {
    setNow(row.now);
    NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName(row.zone));
    EXPECT_TRUE(getExpiryMonth("12/25", &month_, &year_));
    EXPECT_EQ(year_, row.year) << row.zone << " " << row.now;
  }
}

TEST_F(ExpiryDateTest, TheCenturyIsTheGregorianOneWhateverCalendarTheUserHas) {
  for (const char* locale : {"th_TH", "th_TH@calendar=buddhist", "he_IL@calendar=hebrew"}) {
    NSLocale::setCurrentLocaleIdentifier(locale);
    EXPECT_TRUE(getExpiryMonth("12/25", &month_, &year_)) << locale;
    EXPECT_EQ(year_, 2025) << locale;
  }
}

TEST_F(ExpiryDateTest, TextsAreTranslatedAndFilledIn) {
  RVFLibraryBundle()->setCatalogueFolder(RVF_BUILD_CATALOGUE_FOLDER);
  NSLocale::setCurrentLocaleIdentifier("de_DE");
  getExpiryMonth("13/25", &month_, &year_, &error_);
  EXPECT_EQ(error_->localizedDescription(), "Ung\u00FCltiger Ablaufmonat '13'.");
  EXPECT_EQ(error_->localizedRecoverySuggestion(), "Geben Sie eine Zahl von 1 bis 12 ein.");
  getExpiryMonth("12/25/1", &month_, &year_, &error_);
  EXPECT_EQ(error_->localizedDescription(),
            "Das Ablaufdatum '12/25/1' konnte nicht gelesen werden.");
  NSLocale::setCurrentLocaleIdentifier("fr_FR");
  getExpiryMonth("12/1999", &month_, &year_, &error_);
  EXPECT_EQ(error_->localizedDescription(),
            "Ann\u00E9e d\u2019expiration \u00AB 1999 \u00BB non valide.");
  RVFLibraryBundle()->setCatalogueFolder(std::nullopt);
}

TEST_F(ExpiryDateTest, AnAbsentOutputRaisesBeforeAnythingIsRead) {
  const auto reasonOf = [this](std::int32_t* month, std::int32_t* year) {
    try {
      getExpiryMonth("13/25", month, year, &error_);
    } catch (const NSException& exception) {
      EXPECT_EQ(exception.name(), NSInternalInconsistencyException);
      return exception.reason();
    }
    return std::string("nothing was raised");
  };
  EXPECT_EQ(reasonOf(nullptr, &year_), "month ptr is null");
  EXPECT_EQ(reasonOf(&month_, nullptr), "year ptr is null");
  EXPECT_EQ(reasonOf(nullptr, nullptr), "month ptr is null");
  EXPECT_EQ(month_, kUntouched);
  EXPECT_EQ(year_, kUntouched);
  EXPECT_EQ(error_, nullptr);
}

class ForgivingHandler final : public NSAssertionHandler {
 public:
  void handleFailureInMethod(SEL selector, const NSObject* object, std::string_view file, int,
                             std::string_view description) override {
    reports_.push_back(NSStringFromSelector(selector) + " of " + object->description() + ", " +
                       std::string(file) + ": " + std::string(description));
  }
  std::vector<std::string> reports_;
};

TEST_F(ExpiryDateTest, AHandlerThatReturnsMakesAnAbsentOutputAFailure) {
  const auto handler = std::make_shared<ForgivingHandler>();
  NSAssertionHandler::setCurrentHandler(handler);
  EXPECT_FALSE(getExpiryMonth("12/25", nullptr, nullptr, &error_));
  NSAssertionHandler::setCurrentHandler(nullptr);
  const std::string place =
      "getExpiryMonth:andExpiryYear:error: of 12/25, RVFoundation/NSString-RVFExtensions: ";
  EXPECT_THAT(handler->reports_,
              ElementsAre(place + "month ptr is null", place + "year ptr is null"));
  EXPECT_EQ(error_, nullptr);
}

TEST_F(ExpiryDateTest, EveryDateOfEveryFormIsReadBack) {
  EXPECT_TRUE(rc::check([] {
    const auto month = *rc::gen::inRange(1, 13);
    const auto year = *rc::gen::inRange(2000, 10000);
    const std::string text = std::to_string(month) + "/" + std::to_string(year);
    std::int32_t readMonth = 0;
    std::int32_t readYear = 0;
    RC_ASSERT(getExpiryMonth(text, &readMonth, &readYear));
    RC_ASSERT(readMonth == month && readYear == year);
    const auto twoDigits = [](int n) { return std::to_string(100 + n).substr(1); };
    RC_ASSERT(getExpiryMonth(twoDigits(month) + twoDigits(year % 100), &readMonth, &readYear));
    RC_ASSERT(readMonth == month && readYear == 2000 + year % 100);
  }));
}

TEST_F(ExpiryDateTest, AnyTextIsADateOrAnErrorWithTexts) {
  EXPECT_TRUE(rc::check([] {
    const std::string text = *rc::gen::oneOf(
        anyBytes(), rc::gen::container<std::string>(rc::gen::element<char>(
                        '0', '1', '2', '5', '9', '/', ' ', '-', '\xC3', '\xBC', '\xF0')));
    std::int32_t month = kUntouched;
    std::int32_t year = kUntouched;
    Ref<NSError> error;
    const bool isRead = getExpiryMonth(text, &month, &year, &error);
    RC_ASSERT(isRead == (error == nullptr));
    if (isRead) {
      RC_ASSERT(month >= 1 && month <= 12 && year >= 2000 && year <= 9999);
    } else {
      RC_ASSERT(error->code() >= 303 && error->code() <= 305);
      RC_ASSERT(!error->localizedDescription().empty() && error->localizedRecoverySuggestion());
    }
  }));
}

TEST_F(ExpiryDateTest, LongTextsAreMeasured) {
  constexpr std::size_t kTenMegabytes = 10'000'000;
  const std::string digits(kTenMegabytes, '9');
  EXPECT_FALSE(getExpiryMonth(digits, &month_, &year_));
  EXPECT_FALSE(getExpiryMonth("12/" + digits, &month_, &year_));
  EXPECT_EQ(year_, std::numeric_limits<std::int32_t>::max());
  const std::string blanks(kTenMegabytes, ' ');
  EXPECT_TRUE(getExpiryMonth(blanks + "12/" + blanks + "25" + blanks, &month_, &year_));
}

}  // namespace
}  // namespace rvf
