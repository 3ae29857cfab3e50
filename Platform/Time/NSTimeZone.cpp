// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/NSTimeZone.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Time/HostTimeZone.h"
#include "Platform/Time/ICUTimeZone.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSTimeZone::classObject);

struct DefaultZone {
  std::mutex mutex;
  Ref<NSTimeZone> zone;
};

DefaultZone& defaultZone() {
  static DefaultZone kept;
  return kept;
}

}  // namespace

Ref<NSTimeZone> NSTimeZone::timeZoneWithName(std::string_view name) {
  return icuTimeZone(name) ? Ref<NSTimeZone>(new NSTimeZone(std::string(name))) : nullptr;
}

Ref<NSTimeZone> NSTimeZone::timeZoneForSecondsFromGMT(long seconds) {
  constexpr long kSecondsPerDay = 86400;
  if (seconds <= -kSecondsPerDay || seconds >= kSecondsPerDay) return nullptr;
  return timeZoneWithName(timeZoneNameForOffset(static_cast<std::int32_t>(seconds)));
}

Ref<NSTimeZone> NSTimeZone::systemTimeZone() {
  return Ref<NSTimeZone>(new NSTimeZone(hostTimeZoneName(HostTimeZoneSources::ofDevice())));
}

Ref<NSTimeZone> NSTimeZone::defaultTimeZone() {
  {
    DefaultZone& kept = defaultZone();
    const std::lock_guard lock(kept.mutex);
    if (kept.zone) return kept.zone;
  }
  return systemTimeZone();
}

void NSTimeZone::setDefaultTimeZone(Ref<NSTimeZone> zone) {
  DefaultZone& kept = defaultZone();
  const std::lock_guard lock(kept.mutex);
  kept.zone.swap(zone);
}

Class NSTimeZone::classObject() {
  static const Class kClass = ClassBuilder<NSTimeZone>("NSTimeZone", NSObject::classObject())
                                  .property("name", "T@\"NSString\",R,C,N")
                                  .method<&NSTimeZone::name>("name")
                                  .method("copy", immutableCopyImplementation())
                                  .conformsTo("NSCopying")
                                  .registered();
  return kClass;
}

Class NSTimeZone::isa() const {
  return classObject();
}

bool NSTimeZone::isEqual(const NSObject* other) const {
  const auto* zone = dynamic_cast<const NSTimeZone*>(other);
  return zone && name_ == zone->name_;
}

std::size_t NSTimeZone::hash() const {
  return std::hash<std::string>()(name_);
}

}  // namespace rvf
