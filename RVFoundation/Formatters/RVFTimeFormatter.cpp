// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFTimeFormatter.h"

#include <cstdint>
#include <utility>

#include "Platform/Locale/NSBundle.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Text/Format.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSNumber.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFTimeFormatter::classObject);

Ref<NSNumberFormatter> twoDigitFormatter() {
  auto formatter = std::make_shared<NSNumberFormatter>();
  formatter->setPositiveFormat("00");
  return formatter;
}

double secondsFrom(const id& value) {
  if (const auto date = std::dynamic_pointer_cast<NSDate>(value))
    return NSDate::date()->timeIntervalSince1970() - date->timeIntervalSince1970();
  const auto number = std::dynamic_pointer_cast<NSNumber>(value);
  return number ? number->doubleValue() : 0;
}

/// Toward zero; number objects read doubles that are out of range as the nearest integer.
std::int32_t truncated(double value) {
  return box(value)->intValue();
}

std::int64_t remainderOf60(double value) {
  return box(value)->longLongValue() % 60;
}

}  // namespace

Class RVFTimeFormatter::classObject() {
  static const Class kClass =
      ClassBuilder<RVFTimeFormatter>("RVFTimeFormatter", NSFormatter::classObject())
          .property("locale", "T@\"NSLocale\",&,N,V_locale")
          .ivar<&RVFTimeFormatter::locale_>("_locale")
          .ivar<&RVFTimeFormatter::formatter_>("_formatter")
          .method<&RVFTimeFormatter::locale>("locale")
          .method<&RVFTimeFormatter::setLocale>("setLocale:")
          .method<&RVFTimeFormatter::formatter>("formatter")
          .method<&RVFTimeFormatter::timeInSecondsMinutesAndHoursFromObject>(
              "timeInSecondsMinutesAndHoursFromObject:")
          .registered();
  return kClass;
}

Class RVFTimeFormatter::isa() const {
  return classObject();
}

void RVFTimeFormatter::setLocale(Ref<NSLocale> locale) {
  announceChange(*this, "locale", [&] { locale_ = std::move(locale); });
}

const Ref<NSNumberFormatter>& RVFTimeFormatter::formatter() {
  if (formatter_) return formatter_;
  formatter_ = twoDigitFormatter();
  if (locale_) formatter_->setLocale(locale_);
  return formatter_;
}

std::optional<std::string> RVFTimeFormatter::stringForObjectValue(const id& value) {
  return timeInSecondsMinutesAndHoursFromObject(value ? value : box(0));
}

std::string RVFTimeFormatter::timeInSecondsMinutesAndHoursFromObject(const id& value) {
  constexpr double kSecondsPerHour = 3600.0;
  constexpr double kSecondsPerMinute = 60.0;
  const double seconds = secondsFrom(value);
  const auto digits = twoDigitFormatter();
  const auto written = [&digits](auto part) { return digits->stringForObjectValue(box(part)); };
  const auto hours = written(truncated(seconds / kSecondsPerHour));
  const auto minutes = written(truncated(seconds / kSecondsPerMinute) % 60);
  const Ref<NSBundle> bundle = NSBundle::bundleForClass(isa());
  if (!std::dynamic_pointer_cast<NSDate>(value))
    return stringWithFormat(bundle->localizedStringForKey("%@:%@"), hours, minutes);
  return stringWithFormat(bundle->localizedStringForKey("%@:%@:%@"), hours, minutes,
                          written(remainderOf60(seconds)));
}

}  // namespace rvf
