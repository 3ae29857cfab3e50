// SPDX-License-Identifier: Apache-2.0
//
// Calendar periods beside the same calls of ICU's calendar, making a calendar beside copying one of
// ICU's, RFC 3339 timestamps beside ICU's formatter kept from one to the next, and what looking a
// column up takes.

#include <benchmark/benchmark.h>
#include <unicode/calendar.h>
#include <unicode/smpdtfmt.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/PlatformUtilities/NSCalendar-RVFExtensions.h"
#include "RVFoundation/PlatformUtilities/NSDateFormatter-RVFExtensions.h"
#include "RVFoundation/PlatformUtilities/RVFColumnWidthRegistry.h"
#include "benchmarks/Measure.h"

namespace rvf {
namespace {

constexpr int kDates = 500;
constexpr const char* kZone = "America/New_York";

using Period = Ref<NSDate> (*)(const Ref<NSCalendar>&, const Ref<NSDate>&);
using RawPeriod = double (*)(icu::Calendar&, double milliseconds);

/// Whole seconds of the years 1999 to 2032, in milliseconds since 1970.
const std::vector<double>& moments() {
  static const std::vector<double> kList = [] {
    std::mt19937_64 random(5);
    std::vector<double> list;
    for (int i = 0; i < kDates; ++i)
      list.push_back(1000.0 * static_cast<double>(915148800 + random() % 1073001600));
    return list;
  }();
  return kList;
}

std::vector<Ref<NSDate>> dates() {
  std::vector<Ref<NSDate>> list;
  for (const double milliseconds : moments())
    list.push_back(NSDate::dateWithTimeIntervalSince1970(milliseconds / 1000));
  return list;
}

std::unique_ptr<icu::Calendar> rawCalendar() {
  UErrorCode status = U_ZERO_ERROR;
  return std::unique_ptr<icu::Calendar>(icu::Calendar::createInstance(
      icu::TimeZone::createTimeZone(kZone), icu::Locale("@calendar=gregorian"), status));
}

double rawFirstDayOfWeek(icu::Calendar& calendar, double milliseconds) {
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(milliseconds, status);
  const std::int32_t weekday = calendar.get(UCAL_DAY_OF_WEEK, status);
  calendar.add(UCAL_DATE, 1 - weekday, status);
  return calendar.getTime(status);
}

double rawFirstDayOfPreviousWeek(icu::Calendar& calendar, double milliseconds) {
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(milliseconds, status);
  const std::int32_t weekday = calendar.get(UCAL_DAY_OF_WEEK, status);
  calendar.add(UCAL_WEEK_OF_YEAR, -1, status);
  calendar.add(UCAL_DATE, 1 - weekday, status);
  return calendar.getTime(status);
}

double rawLastDayOfMonth(icu::Calendar& calendar, double milliseconds) {
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(milliseconds, status);
  const std::int32_t length = calendar.getActualMaximum(UCAL_DATE, status);
  calendar.add(UCAL_DATE, length - calendar.get(UCAL_DATE, status), status);
  return calendar.getTime(status);
}

double rawFirstDayOfNextYear(icu::Calendar& calendar, double milliseconds) {
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(milliseconds, status);
  const std::int32_t year = calendar.get(UCAL_YEAR, status) + 1;
  calendar.clear();
  calendar.set(year, UCAL_JANUARY, 1);
  return calendar.getTime(status);
}

Ref<NSCalendar> calendarOfZone() {
  const auto calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName(kZone));
  return calendar;
}

template <Period period, RawPeriod rawPeriod>
void findPeriod(benchmark::State& state) {
  const auto calendar = calendarOfZone();
  const auto raw = rawCalendar();
  const auto all = dates();
  for (std::size_t i = 0; i < all.size(); ++i) {
    const double milliseconds = rawPeriod(*raw, moments()[i]);
    if (period(calendar, all[i])->timeIntervalSince1970() != milliseconds / 1000)
      state.SkipWithError("the dates differ");
  }
  const auto findAll = [&] {
    for (const Ref<NSDate>& date : all)
      benchmark::DoNotOptimize(period(calendar, date));
  };
  measure(state, findAll, kDates);
}

template <RawPeriod rawPeriod>
void findRawPeriod(benchmark::State& state) {
  const auto raw = rawCalendar();
  const auto findAll = [&] {
    for (const double milliseconds : moments())
      benchmark::DoNotOptimize(rawPeriod(*raw, milliseconds));
  };
  measure(state, findAll, kDates);
}

BENCHMARK(findPeriod<&RVF_firstDayOfWeekForDate, &rawFirstDayOfWeek>)
    ->Name("first day of the week/ours");
BENCHMARK(findRawPeriod<&rawFirstDayOfWeek>)->Name("first day of the week/limit: ICU");
BENCHMARK(findPeriod<&RVF_firstDayOfPreviousWeekForDate, &rawFirstDayOfPreviousWeek>)
    ->Name("first day of the previous week/ours");
BENCHMARK(findRawPeriod<&rawFirstDayOfPreviousWeek>)
    ->Name("first day of the previous week/limit: ICU");
BENCHMARK(findPeriod<&RVF_lastDayOfCurrentMonthForDate, &rawLastDayOfMonth>)
    ->Name("last day of the month/ours");
BENCHMARK(findRawPeriod<&rawLastDayOfMonth>)->Name("last day of the month/limit: ICU");
BENCHMARK(findPeriod<&RVF_firstDayOfNextYearForDate, &rawFirstDayOfNextYear>)
    ->Name("first day of next year/ours");
BENCHMARK(findRawPeriod<&rawFirstDayOfNextYear>)->Name("first day of next year/limit: ICU");

/// The default time zone is that of the device, found anew each time, or one that was set.
void makeCalendars(benchmark::State& state, const char* zone) {
  NSTimeZone::setDefaultTimeZone(zone ? NSTimeZone::timeZoneWithName(zone) : nullptr);
  measureResult(state,
                [] { return NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian); });
  NSTimeZone::setDefaultTimeZone(nullptr);
}

/// The least that a new calendar can cost.
void copyRawCalendars(benchmark::State& state) {
  const auto raw = rawCalendar();
  measureResult(state, [&] { return std::unique_ptr<icu::Calendar>(raw->clone()); });
}

BENCHMARK_CAPTURE(makeCalendars, device, nullptr)->Name("make a calendar, zone of the device/ours");
BENCHMARK(copyRawCalendars)
    ->Name("make a calendar, zone of the device/limit: a copy of one of ICU's");
BENCHMARK_CAPTURE(makeCalendars, set, kZone)->Name("make a calendar, zone that is set/ours");
BENCHMARK(copyRawCalendars)
    ->Name("make a calendar, zone that is set/limit: a copy of one of ICU's");

std::unique_ptr<icu::SimpleDateFormat> rawFormat() {
  UErrorCode status = U_ZERO_ERROR;
  auto format = std::make_unique<icu::SimpleDateFormat>(
      icu::UnicodeString("yyyy'-'MM'-'dd'T'HH':'mm':'ss'Z'"), icu::Locale("en_US_POSIX"), status);
  format->adoptTimeZone(icu::TimeZone::createTimeZone("GMT"));
  return format;
}

std::string rawText(const icu::SimpleDateFormat& format, double milliseconds) {
  icu::UnicodeString text;
  std::string result;
  return format.format(milliseconds, text).toUTF8String(result);
}

void writeTimestamps(benchmark::State& state) {
  const auto formatter = NSDateFormatter_RVFExtensions::RVF_RFC3339DateFormatter();
  const auto format = rawFormat();
  const auto all = dates();
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (formatter->stringFromDate(all[i]) != rawText(*format, moments()[i]))
      state.SkipWithError("the texts differ");
  }
  const auto writeAll = [&] {
    for (const Ref<NSDate>& date : all)
      benchmark::DoNotOptimize(formatter->stringFromDate(date));
  };
  measure(state, writeAll, kDates);
}
BENCHMARK(writeTimestamps)->Name("write a timestamp/ours");

void writeTimestampsRawly(benchmark::State& state) {
  const auto format = rawFormat();
  const auto writeAll = [&] {
    for (const double milliseconds : moments())
      benchmark::DoNotOptimize(rawText(*format, milliseconds));
  };
  measure(state, writeAll, kDates);
}
BENCHMARK(writeTimestampsRawly)->Name("write a timestamp/limit: ICU, formatter kept");

std::vector<std::string> timestamps() {
  const auto formatter = NSDateFormatter_RVFExtensions::RVF_RFC3339DateFormatter();
  std::vector<std::string> texts;
  for (const Ref<NSDate>& date : dates())
    texts.push_back(formatter->stringFromDate(date).value());
  return texts;
}

void readTimestamps(benchmark::State& state) {
  const auto formatter = NSDateFormatter_RVFExtensions::RVF_RFC3339DateFormatter();
  const auto texts = timestamps();
  const auto readAll = [&] {
    for (const std::string& text : texts)
      benchmark::DoNotOptimize(formatter->dateFromString(text));
  };
  measure(state, readAll, kDates);
}
BENCHMARK(readTimestamps)->Name("read a timestamp/ours");

void readTimestampsRawly(benchmark::State& state) {
  const auto format = rawFormat();
  const auto texts = timestamps();
  for (std::size_t i = 0; i < texts.size(); ++i) {
    UErrorCode status = U_ZERO_ERROR;
    if (format->parse(icu::UnicodeString::fromUTF8(texts[i]), status) != moments()[i])
      state.SkipWithError("the dates differ");
  }
  const auto readAll = [&] {
    for (const std::string& text : texts) {
      UErrorCode status = U_ZERO_ERROR;
      benchmark::DoNotOptimize(format->parse(icu::UnicodeString::fromUTF8(text), status));
    }
  };
  measure(state, readAll, kDates);
}
BENCHMARK(readTimestampsRawly)->Name("read a timestamp/limit: ICU, formatter kept");

/// 40 tables of 25 columns, half of which leave two values to their table.
Ref<NSDictionary> columnWidths() {
  NSDictionary::Entries tables;
  for (int table = 0; table < 40; ++table) {
    NSDictionary::Entries columns;
    for (int column = 0; column < 25; ++column) {
      NSDictionary::Entries values{{box("Default Column Width"), box(60.5)},
                                   {box("List Order"), box(column)}};
      if (column % 2 == 0) {
        values.emplace(box("Minimum Column Width"), box(20));
        values.emplace(box("Auto-Resize Width"), box(true));
      }
      columns.emplace(box("column " + std::to_string(column)),
                      std::make_shared<NSDictionary>(std::move(values)));
    }
    tables.emplace(box("table " + std::to_string(table)),
                   NSDictionary::dictionaryWithEntries(
                       {{"Columns", std::make_shared<NSDictionary>(std::move(columns))},
                        {"Minimum Column Width", box(10)},
                        {"Auto-Resize Width", box(false)}}));
  }
  return std::make_shared<NSDictionary>(std::move(tables));
}

void lookColumnsUp(benchmark::State& state) {
  RVFColumnWidthRegistry registry;
  registry.setRegistry(columnWidths());
  const auto lookUp = [&] {
    benchmark::DoNotOptimize(registry.columnWidthInfoForKey("column 7", "table 3"));
    benchmark::DoNotOptimize(registry.columnWidthInfoForKey("column 24", "table 39"));
  };
  measure(state, lookUp, 2);
}
BENCHMARK(lookColumnsUp)->Name("look a column up/ours");

}  // namespace
}  // namespace rvf
