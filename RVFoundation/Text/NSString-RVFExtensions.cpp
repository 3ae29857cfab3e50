// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSString-RVFExtensions.h"

#include "Platform/Locale/NSBundle.h"
#include "Platform/Runtime/NSAssertionHandler.h"
#include "Platform/Text/Format.h"
#include "Platform/Text/NSScanner.h"
#include "Platform/Text/PercentEncoding.h"
#include "Platform/Text/Text.h"
#include "Platform/Time/NSCalendar.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/CoreServices/RVFErrors.h"
#include "RVFoundation/CoreServices/RVFLibraryBundle.h"
#include "RVFoundation/Text/ErrorWithCode.h"

namespace rvf {
namespace {

/// Assertions name their source so, without a line.
constexpr std::string_view kSource = "RVFoundation/NSString-RVFExtensions";
constexpr int kNoLine = 0;

constexpr std::string_view kFormatSuggestion =
    "Enter an expiry date using one of these formats: 'MMYY', 'MM/YY' or 'MM/YYYY'.";
constexpr std::string_view kMonthSuggestion = "Enter a number between 1 and 12.";
constexpr std::string_view kYearSuggestion = "Enter a number between 2000 and 9999.";

constexpr std::int32_t kLowestFullYear = 2000;
constexpr std::int32_t kBeyondHighestYear = 10000;

struct ExpiryTexts {
  std::string_view month;
  std::string_view year;
};

/// The two sides of the only "/", or the halves of four characters.
std::optional<ExpiryTexts> expiryTexts(std::string_view text) {
  constexpr std::size_t kLength = 4;
  constexpr std::size_t kMonthLength = 2;
  TextPieces pieces(text, '/');
  const auto first = pieces.next();
  const auto second = pieces.next();
  if (second && !pieces.next()) return ExpiryTexts{*first, *second};
  if (utf16Length(text) != kLength) return std::nullopt;
  return ExpiryTexts{substringUtf16(text, 0, kMonthLength), substringUtf16(text, kMonthLength)};
}

/// Stores an error, if it is asked for, whose message is looked up and then filled with the values.
/// Answers false, the result of the operation that fails.
template <class... Values>
bool failExpiry(Ref<NSError>* error, RVFErrorCode code, std::string_view message,
                std::string_view suggestion, const Values&... values) {
  if (!error) return false;
  const Ref<NSBundle> bundle = RVFLibraryBundle();
  const std::string format = bundle->localizedStringForKey(message);
  *error = ErrorWithCode(code, sizeof...(values) > 0 ? stringWithFormat(format, values...) : format,
                         bundle->localizedStringForKey(suggestion));
  return false;
}

bool readMonth(std::string_view text, std::int32_t* month, Ref<NSError>* error) {
  if (!NSScanner::scannerWithString(text)->scanInt(month)) {
    return failExpiry(error, RVFExpiryMonthOutOfRangeError, "Invalid expiry month value.",
                      kMonthSuggestion);
  }
  if (*month >= 1 && *month <= 12) return true;
  return failExpiry(error, RVFExpiryMonthOutOfRangeError, "Invalid expiry month value '%d'.",
                    kMonthSuggestion, *month);
}

std::int32_t currentCentury() {
  const auto calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
  const long year = calendar->component(NSCalendarUnitYear, NSDate::date());
  return static_cast<std::int32_t>(year / 100 * 100);
}

bool readYear(std::string_view text, std::int32_t* year, Ref<NSError>* error) {
  constexpr std::size_t kLongestShortYear = 2;
  const std::string_view digits =
      trimText(text, [](char32_t c) noexcept { return !isDecimalDigit(c); });
  if (!NSScanner::scannerWithString(digits)->scanInt(year)) {
    return failExpiry(error, RVFExpiryYearOutOfRangeError, "Invalid expiry year value.",
                      kYearSuggestion);
  }
  if (*year >= kLowestFullYear && *year < kBeyondHighestYear) return true;
  if (*year < kLowestFullYear && utf16Length(digits) <= kLongestShortYear) {
    *year += currentCentury();
    return true;
  }
  return failExpiry(error, RVFExpiryYearOutOfRangeError, "Invalid expiry year value '%d'.",
                    kYearSuggestion, *year);
}

void reportNullOutput(std::string_view text, std::string_view description) {
  static const SEL kSelector("getExpiryMonth:andExpiryYear:error:");
  NSAssertionHandler::currentHandler()->handleFailureInMethod(kSelector, box(text).get(), kSource,
                                                              kNoLine, description);
}

}  // namespace

std::optional<std::string> RVF_stringByEscapingForURLArgument(std::string_view text) {
  return addPercentEscapes(text);
}

std::optional<std::string> RVF_stringByDecodingURLArguments(std::string_view text) {
  return removePercentEscapes(text);
}

bool getExpiryMonth(std::string_view text, std::int32_t* month, std::int32_t* andExpiryYear,
                    Ref<NSError>* error) {
  if (!month) reportNullOutput(text, "month ptr is null");
  if (!andExpiryYear) reportNullOutput(text, "year ptr is null");
  if (!month || !andExpiryYear) return false;
  const auto texts = expiryTexts(text);
  if (!texts) {
    return failExpiry(error, RVFExpiryDateFormatError, "Could not read expiry date '%@'.",
                      kFormatSuggestion, text);
  }
  return readMonth(texts->month, month, error) && readYear(texts->year, andExpiryYear, error);
}

}  // namespace rvf
