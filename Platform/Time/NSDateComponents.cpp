// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/NSDateComponents.h"

#include <tuple>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Values/HashMixing.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSDateComponents::classObject);

auto fields(const NSDateComponents& components) {
  return std::make_tuple(components.era(), components.year(), components.month(),
                         components.isLeapMonth(), components.weekOfYear(), components.day(),
                         components.weekday(), components.hour(), components.minute(),
                         components.second());
}

}  // namespace

Class NSDateComponents::classObject() {
  static const Class kClass =
      ClassBuilder<NSDateComponents>("NSDateComponents", NSObject::classObject())
          .property("era", "Tq,N")
          .property("year", "Tq,N")
          .property("month", "Tq,N")
          .property("leapMonth", "Tc,N,GisLeapMonth")
          .property("weekOfYear", "Tq,N")
          .property("day", "Tq,N")
          .property("weekday", "Tq,N")
          .property("hour", "Tq,N")
          .property("minute", "Tq,N")
          .property("second", "Tq,N")
          .method<&NSDateComponents::era>("era")
          .method<&NSDateComponents::setEra>("setEra:")
          .method<&NSDateComponents::year>("year")
          .method<&NSDateComponents::setYear>("setYear:")
          .method<&NSDateComponents::month>("month")
          .method<&NSDateComponents::setMonth>("setMonth:")
          .method<&NSDateComponents::isLeapMonth>("isLeapMonth")
          .method<&NSDateComponents::setLeapMonth>("setLeapMonth:")
          .method<&NSDateComponents::weekOfYear>("weekOfYear")
          .method<&NSDateComponents::setWeekOfYear>("setWeekOfYear:")
          .method<&NSDateComponents::day>("day")
          .method<&NSDateComponents::setDay>("setDay:")
          .method<&NSDateComponents::weekday>("weekday")
          .method<&NSDateComponents::setWeekday>("setWeekday:")
          .method<&NSDateComponents::hour>("hour")
          .method<&NSDateComponents::setHour>("setHour:")
          .method<&NSDateComponents::minute>("minute")
          .method<&NSDateComponents::setMinute>("setMinute:")
          .method<&NSDateComponents::second>("second")
          .method<&NSDateComponents::setSecond>("setSecond:")
          .method<&NSDateComponents::copy>("copy")
          .conformsTo("NSCopying")
          .registered();
  return kClass;
}

Class NSDateComponents::isa() const {
  return classObject();
}

void NSDateComponents::setEra(long era) {
  announceChange(*this, "era", [&] { era_ = era; });
}

void NSDateComponents::setYear(long year) {
  announceChange(*this, "year", [&] { year_ = year; });
}

void NSDateComponents::setMonth(long month) {
  announceChange(*this, "month", [&] { month_ = month; });
}

void NSDateComponents::setLeapMonth(bool isLeapMonth) {
  announceChange(*this, "leapMonth", [&] { isLeapMonth_ = isLeapMonth; });
}

void NSDateComponents::setWeekOfYear(long weekOfYear) {
  announceChange(*this, "weekOfYear", [&] { weekOfYear_ = weekOfYear; });
}

void NSDateComponents::setDay(long day) {
  announceChange(*this, "day", [&] { day_ = day; });
}

void NSDateComponents::setWeekday(long weekday) {
  announceChange(*this, "weekday", [&] { weekday_ = weekday; });
}

void NSDateComponents::setHour(long hour) {
  announceChange(*this, "hour", [&] { hour_ = hour; });
}

void NSDateComponents::setMinute(long minute) {
  announceChange(*this, "minute", [&] { minute_ = minute; });
}

void NSDateComponents::setSecond(long second) {
  announceChange(*this, "second", [&] { second_ = second; });
}

Ref<NSDateComponents> NSDateComponents::copy() const {
  auto copied = std::make_shared<NSDateComponents>();
  copied->era_ = era_;
  copied->year_ = year_;
  copied->month_ = month_;
  copied->isLeapMonth_ = isLeapMonth_;
  copied->weekOfYear_ = weekOfYear_;
  copied->day_ = day_;
  copied->weekday_ = weekday_;
  copied->hour_ = hour_;
  copied->minute_ = minute_;
  copied->second_ = second_;
  return copied;
}

bool NSDateComponents::isEqual(const NSObject* other) const {
  const auto* components = dynamic_cast<const NSDateComponents*>(other);
  return components && fields(*this) == fields(*components);
}

std::size_t NSDateComponents::hash() const {
  const auto mixed = [](auto... field) {
    std::size_t hash = 0;
    ((hash = mixedHash(hash + static_cast<std::size_t>(field))), ...);
    return hash;
  };
  return std::apply(mixed, fields(*this));
}

}  // namespace rvf
