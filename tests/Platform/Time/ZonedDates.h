// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Time/NSDateFormatter.h"

namespace rvf {

/// Dates of a time zone in the Gregorian calendar as texts: "2024-03-12 02:30:00 -0400".
class ZonedDates final {
 public:
  explicit ZonedDates(std::string_view zone) : zone_(NSTimeZone::timeZoneWithName(zone)) {
    formatter_->setLocale(NSLocale::localeWithLocaleIdentifier("en_US_POSIX"));
    formatter_->setTimeZone(zone_);
    formatter_->setDateFormat("yyyy-MM-dd HH:mm:ss xx");
  }

  const Ref<NSTimeZone>& zone() const noexcept { return zone_; }
  /// Absent if the distance is not the zone's at that time.
  Ref<NSDate> date(std::string_view text) const { return formatter_->dateFromString(text); }
  std::string text(const Ref<NSDate>& date) const {
    return formatter_->stringFromDate(date).value_or("absent");
  }

 private:
  Ref<NSTimeZone> zone_;
  Ref<NSDateFormatter> formatter_ = std::make_shared<NSDateFormatter>();
};

}  // namespace rvf
