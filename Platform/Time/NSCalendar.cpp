// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/NSCalendar.h"

#include <unicode/gregocal.h>

#include <cmath>
#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Time/ICUTimeZone.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSCalendar::classObject);

Ref<NSTimeZone> zoneOrDefault(Ref<NSTimeZone> zone) {
  return zone ? std::move(zone) : NSTimeZone::defaultTimeZone();
}

/// The calendar data of this machine is damaged or missing; nothing can be told from it.
void requireSuccess(UErrorCode status) {
  if (U_FAILURE(status)) NSException::raise(NSInternalInconsistencyException, u_errorName(status));
}

}  // namespace

class NSCalendar::State final {
 public:
  explicit State(Ref<NSTimeZone> zone) : State(std::move(zone), U_ZERO_ERROR) {}

  const Ref<NSTimeZone>& timeZone() const noexcept { return zone_; }

  void setTimeZone(Ref<NSTimeZone> zone) {
    calendar_.adoptTimeZone(icuTimeZone(zone->name()).release());
    zone_ = std::move(zone);
  }

  long field(UCalendarDateFields field, const NSDate& date) {
    constexpr double kMillisecondsPerSecond = 1000;
    UErrorCode status = U_ZERO_ERROR;
    calendar_.setTime(date.timeIntervalSince1970() * kMillisecondsPerSecond, status);
    const std::int32_t value = calendar_.get(field, status);
    requireSuccess(status);
    return value;
  }

 private:
  State(Ref<NSTimeZone> zone, UErrorCode status)
      : zone_(std::move(zone)),
        calendar_(icuTimeZone(zone_->name()).release(), icu::Locale::getRoot(), status) {
    requireSuccess(status);
  }

  Ref<NSTimeZone> zone_;
  icu::GregorianCalendar calendar_;
};

NSCalendar::NSCalendar(std::unique_ptr<State> state) : state_(std::move(state)) {}

NSCalendar::~NSCalendar() = default;

Ref<NSCalendar> NSCalendar::calendarWithIdentifier(std::string_view identifier) {
  if (identifier != NSCalendarIdentifierGregorian) return nullptr;
  return Ref<NSCalendar>(new NSCalendar(std::make_unique<State>(NSTimeZone::defaultTimeZone())));
}

Class NSCalendar::classObject() {
  static const Class kClass = ClassBuilder<NSCalendar>("NSCalendar", NSObject::classObject())
                                  .property("calendarIdentifier", "T@\"NSString\",R,C,N")
                                  .property("timeZone", "T@\"NSTimeZone\",C,N")
                                  .method<&NSCalendar::calendarIdentifier>("calendarIdentifier")
                                  .method<&NSCalendar::timeZone>("timeZone")
                                  .method<&NSCalendar::setTimeZone>("setTimeZone:")
                                  .method<&NSCalendar::component>("component:fromDate:")
                                  .registered();
  return kClass;
}

Class NSCalendar::isa() const {
  return classObject();
}

const Ref<NSTimeZone>& NSCalendar::timeZone() const noexcept {
  return state_->timeZone();
}

void NSCalendar::setTimeZone(Ref<NSTimeZone> zone) {
  state_->setTimeZone(zoneOrDefault(std::move(zone)));
}

long NSCalendar::component(NSCalendarUnit unit, const Ref<NSDate>& fromDate) const {
  if (!fromDate || !std::isfinite(fromDate->timeIntervalSince1970())) return 0;
  switch (unit) {
    case NSCalendarUnitYear:
      return state_->field(UCAL_YEAR, *fromDate);
  }
  NSException::raise(NSInvalidArgumentException, "not one single calendar unit");
}

}  // namespace rvf
