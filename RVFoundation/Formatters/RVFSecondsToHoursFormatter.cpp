// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Formatters/RVFSecondsToHoursFormatter.h"

#include <utility>

#include "Platform/Numbers/NSDecimalNumber.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Values/NSNumber.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFSecondsToHoursFormatter::classObject);

}  // namespace

Class RVFSecondsToHoursFormatter::classObject() {
  using Formatter = RVFSecondsToHoursFormatter;
  static const Class kClass =
      ClassBuilder<Formatter>("RVFSecondsToHoursFormatter", NSNumberFormatter::classObject())
          .property("decimalFormatter", "T@\"NSFormatter\",&,V_decimalFormatter")
          .ivar<&Formatter::decimalFormatter_>("_decimalFormatter")
          .method<&Formatter::decimalFormatter>("decimalFormatter")
          .method<&Formatter::setDecimalFormatter>("setDecimalFormatter:")
          .registered();
  return kClass;
}

Class RVFSecondsToHoursFormatter::isa() const {
  return classObject();
}

Ref<NSFormatter> RVFSecondsToHoursFormatter::decimalFormatter() const {
  const std::lock_guard lock(mutex_);
  return decimalFormatter_;
}

void RVFSecondsToHoursFormatter::setDecimalFormatter(Ref<NSFormatter> formatter) {
  announceChange(*this, "decimalFormatter", [&] {
    const std::lock_guard lock(mutex_);
    decimalFormatter_.swap(formatter);  // the old one goes when the lock is open again
  });
}

std::optional<std::string> RVFSecondsToHoursFormatter::stringForObjectValue(const id& value) {
  constexpr double kSecondsPerHour = 3600.0;
  const auto number = std::dynamic_pointer_cast<NSNumber>(value);
  const double seconds = number ? number->doubleValue() : 0;
  const auto hours = NSDecimalNumber::numberWithDouble(seconds / kSecondsPerHour);
  const Ref<NSFormatter> formatter = decimalFormatter();
  return formatter ? formatter->stringForObjectValue(hours) : std::nullopt;
}

}  // namespace rvf
