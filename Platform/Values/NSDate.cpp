// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSDate.h"

#include <chrono>
#include <mutex>
#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSDate::classObject);

/// From 1970 to the reference date.
constexpr double kReferenceDate = 978307200;

double systemNow() {
  using Seconds = std::chrono::duration<double>;
  return Seconds(std::chrono::system_clock::now().time_since_epoch()).count() - kReferenceDate;
}

class CurrentClock final {
 public:
  NSDate::Clock get() const {
    const std::lock_guard lock(mutex_);
    return clock_;
  }
  void set(NSDate::Clock clock) {
    const std::lock_guard lock(mutex_);
    clock_.swap(clock);
  }

 private:
  mutable std::mutex mutex_;
  NSDate::Clock clock_;
};

CurrentClock& currentClock() {
  static CurrentClock clock;
  return clock;
}

}  // namespace

Ref<NSDate> NSDate::date() {
  const Clock clock = currentClock().get();
  return std::make_shared<NSDate>(clock ? clock() : systemNow());
}

Ref<NSDate> NSDate::dateWithTimeIntervalSinceReferenceDate(double seconds) {
  return std::make_shared<NSDate>(seconds);
}

Ref<NSDate> NSDate::dateWithTimeIntervalSince1970(double seconds) {
  return std::make_shared<NSDate>(seconds - kReferenceDate);
}

void NSDate::setClock(Clock clock) {
  currentClock().set(std::move(clock));
}

Class NSDate::classObject() {
  static const Class kClass =
      ClassBuilder<NSDate>("NSDate", NSObject::classObject())
          .method<&NSDate::timeIntervalSinceReferenceDate>("timeIntervalSinceReferenceDate")
          .method<&NSDate::timeIntervalSince1970>("timeIntervalSince1970")
          .method("copy", immutableCopyImplementation())
          .conformsTo("NSCopying")
          .registered();
  return kClass;
}

Class NSDate::isa() const {
  return classObject();
}

double NSDate::timeIntervalSince1970() const noexcept {
  return seconds_ + kReferenceDate;
}

bool NSDate::isEqual(const NSObject* other) const {
  const auto* date = dynamic_cast<const NSDate*>(other);
  return date && seconds_ == date->seconds_;
}

std::size_t NSDate::hash() const {
  return std::hash<double>()(seconds_);
}

}  // namespace rvf
