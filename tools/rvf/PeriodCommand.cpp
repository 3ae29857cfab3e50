// SPDX-License-Identifier: Apache-2.0
#include "tools/rvf/PeriodCommand.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#include "RVFoundation/PlatformUtilities/NSCalendar-RVFExtensions.h"
#include "RVFoundation/PlatformUtilities/NSDateFormatter-RVFExtensions.h"
#include "RVFoundation/PlatformUtilities/NSLocale-RVFExtensions.h"
#include "tools/rvf/CommandLine.h"
#include "tools/rvf/Failure.h"
#include "tools/rvf/Finding.h"
#include "tools/rvf/OptionKinds.h"
#include "tools/terminal/ExitCode.h"

namespace rvf::tool {
namespace {

struct PeriodOptions {
  std::string period;
  std::optional<long> delta;        ///< years, for "first-day-of-year-with-delta"; default: 0
  std::optional<std::string> date;  ///< "2024-03-12", with a time and its distance; default: now
  std::optional<std::string> zone;  ///< default: the device's
  std::optional<std::string> calendar;  ///< an identifier; default: the user's
  bool asJson = false;
};

struct Period {
  std::string_view name;
  Ref<NSDate> (*boundary)(const Ref<NSCalendar>&, const Ref<NSDate>&);  ///< null: needs the delta
};

constexpr Period kPeriods[] = {
    {"first-day-of-week", &RVF_firstDayOfWeekForDate},
    {"first-day-of-previous-week", &RVF_firstDayOfPreviousWeekForDate},
    {"last-day-of-previous-week", &RVF_lastDayOfPreviousWeekForDate},
    {"first-day-of-next-week", &RVF_firstDayOfNextWeekForDate},
    {"last-day-of-next-week", &RVF_lastDayOfNextWeekForDate},
    {"first-day-of-current-month", &RVF_firstDayOfCurrentMonthForDate},
    {"last-day-of-current-month", &RVF_lastDayOfCurrentMonthForDate},
    {"last-day-of-previous-month", &RVF_lastDayOfPreviousMonthForDate},
    {"first-day-of-previous-month", &RVF_firstDayOfPreviousMonthForDate},
    {"first-day-of-next-month", &RVF_firstDayOfNextMonthForDate},
    {"last-day-of-next-month", &RVF_lastDayOfNextMonthForDate},
    {"first-day-of-year-with-delta", nullptr},
    {"first-day-of-current-year", &RVF_firstDayOfCurrentYearForDate},
    {"first-day-of-next-year", &RVF_firstDayOfNextYearForDate},
    {"last-day-of-next-year", &RVF_lastDayOfNextYearForDate},
};

Ref<NSDateFormatter> formatter(std::string_view pattern, const Ref<NSTimeZone>& zone) {
  auto made = std::make_shared<NSDateFormatter>();
  made->setLocale(NSLocale_RVFExtensions::RVF_POSIXLocale());
  made->setTimeZone(zone);
  made->setDateFormat(pattern);
  return made;
}

/// The zone of a final distance from UTC, "+05:30" or "+00:53:28"; absent if there is none.
Ref<NSTimeZone> zoneAtEnd(const std::string& text) {
  const std::size_t sign = text.find_last_of("+-");
  return sign == std::string::npos ? nullptr
                                   : NSTimeZone::timeZoneWithName("GMT" + text.substr(sign));
}

/// A moment that says how far it is from UTC.
Ref<NSDate> readMoment(const std::string& text) {
  if (auto date = NSDateFormatter_RVFExtensions::RVF_RFC3339DateFormatter()->dateFromString(text))
    return date;
  const auto zone = zoneAtEnd(text);
  return zone ? formatter("uuuu-MM-dd'T'HH:mm:ssxxxxx", zone)->dateFromString(text) : nullptr;
}

/// A time that the zone's clock leaves out is none.
Ref<NSDate> readDate(const std::string& text, const Ref<NSTimeZone>& zone) {
  if (auto date = readMoment(text)) return date;
  for (const char* pattern : {"uuuu-MM-dd", "uuuu-MM-dd'T'HH:mm", "uuuu-MM-dd'T'HH:mm:ss"}) {
    if (auto date = formatter(pattern, zone)->dateFromString(text)) return date;
  }
  return nullptr;
}

std::string isoText(const Ref<NSDate>& date, const Ref<NSTimeZone>& zone) {
  return formatter("uuuu-MM-dd'T'HH:mm:ssxxxxx", zone)->stringFromDate(date).value_or("");
}

nlohmann::json jsonOf(const PeriodOptions& options, const Ref<NSCalendar>& calendar,
                      const Ref<NSDate>& date, const Ref<NSDate>& result) {
  const auto fields = calendar->components(
      NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay | NSCalendarUnitWeekday, result);
  return {{"period", options.period},
          {"date", isoText(date, calendar->timeZone())},
          {"result", isoText(result, calendar->timeZone())},
          {"zone", calendar->timeZone()->name()},
          {"calendar", calendar->calendarIdentifier()},
          {"year", fields->year()},
          {"month", fields->month()},
          {"day", fields->day()},
          {"weekday", fields->weekday()}};
}

const Period& periodOf(const PeriodOptions& options) {
  return *std::ranges::find(kPeriods, options.period, &Period::name);
}

Ref<NSDate> boundaryOf(const PeriodOptions& options, const Ref<NSCalendar>& calendar,
                       const Ref<NSDate>& date) {
  const Period& period = periodOf(options);
  return period.boundary ? period.boundary(calendar, date)
                         : RVF_firstDayOfYearWithDelta(calendar, options.delta.value_or(0), date);
}

ExitCode periodCommand(const PeriodOptions& options) {
  const auto fail = [&options](ExitCode code, const std::string& message) {
    return report({code, message}, options.asJson);
  };
  if (options.delta && periodOf(options).boundary)
    return fail(ExitCode::usage, "--delta goes with first-day-of-year-with-delta alone");
  const auto zone =
      options.zone ? NSTimeZone::timeZoneWithName(*options.zone) : NSTimeZone::defaultTimeZone();
  if (!zone) return fail(ExitCode::usage, "there is no time zone \"" + *options.zone + "\"");
  const auto calendar = options.calendar ? NSCalendar::calendarWithIdentifier(*options.calendar)
                                         : NSCalendar::currentCalendar();
  if (!calendar) return fail(ExitCode::usage, "there is no calendar \"" + *options.calendar + "\"");
  calendar->setTimeZone(zone);
  const auto date = options.date ? readDate(*options.date, zone) : NSDate::date();
  if (!date) return fail(ExitCode::dataError, "\"" + *options.date + "\" is no date there");
  const auto result = boundaryOf(options, calendar, date);
  if (!result) return fail(ExitCode::dataError, "the calendar does not reach that far");
  if (options.asJson) {
    std::cout << jsonText(jsonOf(options, calendar, date, result)) << "\n";
  } else {
    std::cout << isoText(result, zone) << "\n";
  }
  return std::cout.flush() ? ExitCode::ok : ExitCode::ioError;
}

}  // namespace

void addPeriodCommand(CommandLine& line) {
  const auto options = std::make_shared<PeriodOptions>();
  CLI::App& command =
      line.addCommand("period", "Print the first or last day of a week, month or year",
                      [options] { return periodCommand(*options); });
  command.add_option("PERIOD", options->period, "Which day")
      ->required()
      ->check(isOneOf(namesOf(kPeriods)))
      ->type_name("WORD");
  command
      .add_option("--delta", options->delta,
                  "Years from the date's, for first-day-of-year-with-delta")
      ->type_name("YEARS");
  command
      .add_option("--date", options->date,
                  "Such as 2024-03-12 or 2024-03-12T02:30 in the zone, or 2024-03-12T06:30:00Z or "
                  "2024-03-12T06:30:00+02:00; default: now")
      ->type_name("DATE");
  command.add_option("--zone", options->zone, "Such as America/New_York; default: the device's")
      ->type_name("ZONE");
  command
      .add_option("--calendar", options->calendar,
                  "Such as gregorian, buddhist or hebrew; default: the user's")
      ->type_name("CALENDAR");
  addJsonFlag(command, options->asJson);
  command.footer(
      "Days of weeks and months keep the date's time of day; days of years begin at midnight.");
}

}  // namespace rvf::tool
