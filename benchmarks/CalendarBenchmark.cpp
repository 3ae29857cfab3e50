// SPDX-License-Identifier: Apache-2.0
//
// Calendar periods against the same calls of ICU's calendar, making a calendar against copying one
// of ICU's, RFC 3339 timestamps against ICU's formatter kept from one to the next, and what looking
// a column up takes. "of_icu_speed" is our speed as a multiple of ICU's; both take turns within one
// measurement.

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
#include "benchmarks/Turns.h"

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

void comparePeriod(benchmark::State& state, Period period, RawPeriod rawPeriod) {
  const auto calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName(kZone));
  const auto raw = rawCalendar();
  const auto all = dates();
  for (std::size_t i = 0; i < all.size(); ++i) {
    const double milliseconds = rawPeriod(*raw, moments()[i]);
    if (period(calendar, all[i])->timeIntervalSince1970() != milliseconds / 1000)
      state.SkipWithError("the dates differ");
  }
  const auto ours = [&] {
    for (const Ref<NSDate>& date : all)
      benchmark::DoNotOptimize(period(calendar, date));
  };
  const auto theirs = [&] {
    for (const double milliseconds : moments())
      benchmark::DoNotOptimize(rawPeriod(*raw, milliseconds));
  };
  for (auto _ : state)
    ours();
  state.SetItemsProcessed(state.iterations() * kDates);
  state.counters["of_icu_speed"] = relativeSpeed(ours, theirs);
}

BENCHMARK_CAPTURE(comparePeriod, firstDayOfWeek, &RVF_firstDayOfWeekForDate, &rawFirstDayOfWeek);
BENCHMARK_CAPTURE(comparePeriod, firstDayOfPreviousWeek, &RVF_firstDayOfPreviousWeekForDate,
                  &rawFirstDayOfPreviousWeek);
BENCHMARK_CAPTURE(comparePeriod, lastDayOfCurrentMonth, &RVF_lastDayOfCurrentMonthForDate,
                  &rawLastDayOfMonth);
BENCHMARK_CAPTURE(comparePeriod, firstDayOfNextYear, &RVF_firstDayOfNextYearForDate,
                  &rawFirstDayOfNextYear);

/// A calendar by its identifier against a copy of one that ICU made before, which is the least that
/// a new calendar can cost. The default time zone is that of the device, found anew each time, or
/// one that was set.
void makeCalendars(benchmark::State& state, const char* zone) {
  NSTimeZone::setDefaultTimeZone(zone ? NSTimeZone::timeZoneWithName(zone) : nullptr);
  const auto raw = rawCalendar();
  const auto ours = [] {
    for (int i = 0; i < kDates; ++i)
      benchmark::DoNotOptimize(NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian));
  };
  const auto theirs = [&] {
    for (int i = 0; i < kDates; ++i)
      benchmark::DoNotOptimize(std::unique_ptr<icu::Calendar>(raw->clone()));
  };
  for (auto _ : state)
    ours();
  state.SetItemsProcessed(state.iterations() * kDates);
  state.counters["of_icu_speed"] = relativeSpeed(ours, theirs, 20);
  NSTimeZone::setDefaultTimeZone(nullptr);
}
BENCHMARK_CAPTURE(makeCalendars, inZoneOfDevice, nullptr);
BENCHMARK_CAPTURE(makeCalendars, inZoneThatIsSet, kZone);

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
  const auto ours = [&] {
    for (const Ref<NSDate>& date : all)
      benchmark::DoNotOptimize(formatter->stringFromDate(date));
  };
  const auto theirs = [&] {
    for (const double milliseconds : moments())
      benchmark::DoNotOptimize(rawText(*format, milliseconds));
  };
  for (auto _ : state)
    ours();
  state.SetItemsProcessed(state.iterations() * kDates);
  state.counters["of_icu_speed"] = relativeSpeed(ours, theirs);
}
BENCHMARK(writeTimestamps);

void readTimestamps(benchmark::State& state) {
  const auto formatter = NSDateFormatter_RVFExtensions::RVF_RFC3339DateFormatter();
  std::vector<std::string> texts;
  for (const Ref<NSDate>& date : dates())
    texts.push_back(formatter->stringFromDate(date).value());
  for (auto _ : state) {
    for (const std::string& text : texts)
      benchmark::DoNotOptimize(formatter->dateFromString(text));
  }
  state.SetItemsProcessed(state.iterations() * kDates);
}
BENCHMARK(readTimestamps);

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
  for (auto _ : state) {
    benchmark::DoNotOptimize(registry.columnWidthInfoForKey("column 7", "table 3"));
    benchmark::DoNotOptimize(registry.columnWidthInfoForKey("column 24", "table 39"));
  }
  state.SetItemsProcessed(state.iterations() * 2);
  state.counters["each"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * 2,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(lookColumnsUp);

}  // namespace
}  // namespace rvf
