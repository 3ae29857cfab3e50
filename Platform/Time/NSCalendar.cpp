// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/NSCalendar.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Time/ICUCalendar.h"
#include "Platform/Time/ICUTimeZone.h"
#include "Platform/Values/NSArray.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSCalendar::classObject);

constexpr std::array kIdentifiers = {NSCalendarIdentifierGregorian,
                                     NSCalendarIdentifierBuddhist,
                                     NSCalendarIdentifierChinese,
                                     NSCalendarIdentifierCoptic,
                                     NSCalendarIdentifierEthiopicAmeteMihret,
                                     NSCalendarIdentifierEthiopicAmeteAlem,
                                     NSCalendarIdentifierHebrew,
                                     NSCalendarIdentifierIndian,
                                     NSCalendarIdentifierIslamic,
                                     NSCalendarIdentifierIslamicCivil,
                                     NSCalendarIdentifierIslamicTabular,
                                     NSCalendarIdentifierIslamicUmmAlQura,
                                     NSCalendarIdentifierJapanese,
                                     NSCalendarIdentifierPersian,
                                     NSCalendarIdentifierRepublicOfChina};

struct Unit {
  NSCalendarUnit unit;
  UCalendarDateFields field;
  long first;  ///< our number of what the library calls 0
  long (NSDateComponents::*get)() const noexcept;
  void (NSDateComponents::*set)(long);
  long seconds;  ///< of a unit of the clock; 0 for one of the calendar
};

using Components = NSDateComponents;

/// From the largest to the smallest, the order in which amounts are added. Where fields contradict
/// one another the later one counts.
constexpr Unit kUnits[] = {
    {NSCalendarUnitEra, UCAL_ERA, 0, &Components::era, &Components::setEra, 0},
    {NSCalendarUnitYear, UCAL_YEAR, 0, &Components::year, &Components::setYear, 0},
    {NSCalendarUnitMonth, UCAL_MONTH, 1, &Components::month, &Components::setMonth, 0},
    {NSCalendarUnitWeekOfYear, UCAL_WEEK_OF_YEAR, 0, &Components::weekOfYear,
     &Components::setWeekOfYear, 0},
    {NSCalendarUnitWeekday, UCAL_DAY_OF_WEEK, 0, &Components::weekday, &Components::setWeekday, 0},
    {NSCalendarUnitDay, UCAL_DATE, 0, &Components::day, &Components::setDay, 0},
    {NSCalendarUnitHour, UCAL_HOUR_OF_DAY, 0, &Components::hour, &Components::setHour, 3600},
    {NSCalendarUnitMinute, UCAL_MINUTE, 0, &Components::minute, &Components::setMinute, 60},
    {NSCalendarUnitSecond, UCAL_SECOND, 0, &Components::second, &Components::setSecond, 1},
};

const Unit& unitOf(NSCalendarUnit bits) {
  const auto* const found = std::ranges::find(kUnits, bits, &Unit::unit);
  if (found != std::end(kUnits)) return *found;
  NSException::raise(NSInvalidArgumentException, "not one single calendar unit");
}

Ref<NSTimeZone> zoneOrDefault(Ref<NSTimeZone> zone) {
  return zone ? std::move(zone) : NSTimeZone::defaultTimeZone();
}

}  // namespace

class NSCalendar::State final {
 public:
  State(const std::string& localeIdentifier, Ref<NSTimeZone> inZone)
      : zone(std::move(inZone)),
        engine(icuTimeZone(zone->name()), localeIdentifier),
        identifier(engine.type()) {}

  void setZone(Ref<NSTimeZone> newZone) {
    engine.setZone(icuTimeZone(newZone->name()));
    zone = std::move(newZone);
  }

  /// Whether there is a date to stand at.
  bool moveTo(const std::optional<SplitDate>& date) {
    if (date) engine.moveTo(date->milliseconds);
    return date.has_value();
  }

  long value(const Unit& unit) { return engine.field(unit.field) + unit.first; }

  bool add(const Unit& unit, long amount) {
    if (amount == 0 || amount == NSDateComponentUndefined || unit.unit == NSCalendarUnitWeekday)
      return true;
    return unit.seconds == 0 ? engine.add(unit.field, amount)
                             : engine.addSeconds(amount, unit.seconds);
  }

  bool set(const Unit& unit, long value) {
    if (value == NSDateComponentUndefined) return true;
    return value != std::numeric_limits<long>::min() && engine.set(unit.field, value - unit.first);
  }

  Ref<NSTimeZone> zone;
  ICUCalendar engine;
  std::string identifier;
};

NSCalendar::NSCalendar(std::unique_ptr<State> state) : state_(std::move(state)) {}

NSCalendar::~NSCalendar() = default;

Ref<NSCalendar> NSCalendar::calendarWithIdentifier(std::string_view identifier) {
  if (std::ranges::find(kIdentifiers, identifier) == kIdentifiers.end()) return nullptr;
  auto state = std::make_unique<State>("@calendar=" + std::string(identifier),
                                       NSTimeZone::defaultTimeZone());
  state->engine.setFirstWeekday(UCAL_SUNDAY);
  return Ref<NSCalendar>(new NSCalendar(std::move(state)));
}

Ref<NSCalendar> NSCalendar::currentCalendar() {
  return Ref<NSCalendar>(new NSCalendar(std::make_unique<State>(
      NSLocale::currentLocale()->localeIdentifier(), NSTimeZone::defaultTimeZone())));
}

Class NSCalendar::classObject() {
  static const Class kClass =
      ClassBuilder<NSCalendar>("NSCalendar", NSObject::classObject())
          .property("calendarIdentifier", "T@\"NSString\",R,C,N")
          .property("timeZone", "T@\"NSTimeZone\",C,N")
          .property("firstWeekday", "TQ,N")
          .method<&NSCalendar::calendarIdentifier>("calendarIdentifier")
          .method<&NSCalendar::timeZone>("timeZone")
          .method<&NSCalendar::setTimeZone>("setTimeZone:")
          .method<&NSCalendar::firstWeekday>("firstWeekday")
          .method<&NSCalendar::setFirstWeekday>("setFirstWeekday:")
          .method<&NSCalendar::component>("component:fromDate:")
          .method<&NSCalendar::components>("components:fromDate:")
          .method<&NSCalendar::dateFromComponents>("dateFromComponents:")
          .method<&NSCalendar::dateByAddingComponents>("dateByAddingComponents:toDate:options:")
          .registered();
  return kClass;
}

Class NSCalendar::isa() const {
  return classObject();
}

const std::string& NSCalendar::calendarIdentifier() const noexcept {
  return state_->identifier;
}

const Ref<NSTimeZone>& NSCalendar::timeZone() const noexcept {
  return state_->zone;
}

void NSCalendar::setTimeZone(Ref<NSTimeZone> zone) {
  announceChange(*this, "timeZone", [&] { state_->setZone(zoneOrDefault(std::move(zone))); });
}

unsigned long NSCalendar::firstWeekday() const {
  return static_cast<unsigned long>(state_->engine.firstWeekday());
}

void NSCalendar::setFirstWeekday(unsigned long weekday) {
  if (weekday < UCAL_SUNDAY || weekday > UCAL_SATURDAY)
    NSException::raise(NSInvalidArgumentException, "weekdays are numbered from 1 to 7");
  announceChange(*this, "firstWeekday",
                 [&] { state_->engine.setFirstWeekday(static_cast<int>(weekday)); });
}

long NSCalendar::component(NSCalendarUnit unit, const Ref<NSDate>& fromDate) const {
  const Unit& wanted = unitOf(unit);
  return state_->moveTo(SplitDate::of(fromDate.get())) ? state_->value(wanted) : 0;
}

Ref<NSDateComponents> NSCalendar::components(NSCalendarUnit units,
                                             const Ref<NSDate>& fromDate) const {
  if (!state_->moveTo(SplitDate::of(fromDate.get()))) return nullptr;
  auto components = std::make_shared<NSDateComponents>();
  for (const Unit& unit : kUnits) {
    if (units & unit.unit) ((*components).*unit.set)(state_->value(unit));
  }
  if (units & NSCalendarUnitMonth)
    components->setLeapMonth(state_->engine.field(UCAL_IS_LEAP_MONTH) != 0);
  return components;
}

Ref<NSDate> NSCalendar::dateFromComponents(const Ref<NSDateComponents>& components) const {
  if (!components) return nullptr;
  ICUCalendar& engine = state_->engine;
  engine.clear();
  engine.set(UCAL_YEAR, 1);
  const auto isSet = [&](const Unit& unit) {
    return state_->set(unit, ((*components).*unit.get)());
  };
  if (!std::ranges::all_of(kUnits, isSet)) return nullptr;
  if (components->isLeapMonth()) engine.set(UCAL_IS_LEAP_MONTH, 1);
  const std::optional<double> milliseconds = engine.milliseconds();
  return milliseconds ? SplitDate{*milliseconds, 0}.date() : nullptr;
}

Ref<NSDate> NSCalendar::dateByAddingComponents(const Ref<NSDateComponents>& components,
                                               const Ref<NSDate>& toDate,
                                               unsigned long options) const {
  if (options != 0)
    NSException::raise(NSInvalidArgumentException, "dates are added to without options only");
  std::optional<SplitDate> date = SplitDate::of(toDate.get());
  if (!components || !state_->moveTo(date)) return nullptr;
  const auto isAdded = [&](const Unit& unit) {
    return state_->add(unit, ((*components).*unit.get)());
  };
  if (!std::ranges::all_of(kUnits, isAdded)) return nullptr;
  date->milliseconds = state_->engine.milliseconds().value();
  return date->date();
}

NSRange NSCalendar::rangeOfUnit(NSCalendarUnit unit, NSCalendarUnit inUnit,
                                const Ref<NSDate>& forDate) const {
  constexpr NSRange kNone{NSNotFound, NSNotFound};
  const bool isInMonth = inUnit == NSCalendarUnitMonth;
  if (unit != NSCalendarUnitDay || (!isInMonth && inUnit != NSCalendarUnitYear)) return kNone;
  if (!state_->moveTo(SplitDate::of(forDate.get()))) return kNone;
  const auto last = state_->engine.greatest(isInMonth ? UCAL_DATE : UCAL_DAY_OF_YEAR);
  return {1, static_cast<std::size_t>(last)};
}

}  // namespace rvf
