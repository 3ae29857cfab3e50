// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/ICUTimeZone.h"

#include <unicode/ucal.h>
#include <unicode/unistr.h>

#include <cstdlib>
#include <mutex>
#include <utility>

namespace rvf {

namespace {

icu::UnicodeString unicode(std::string_view name) {
  return icu::UnicodeString::fromUTF8({name.data(), static_cast<std::int32_t>(name.size())});
}

/// What the library makes of any name that it does not know, and of this one itself.
bool isUnknown(const icu::TimeZone& zone) {
  icu::UnicodeString name;
  return zone.getID(name) == icu::UnicodeString(UCAL_UNKNOWN_ZONE_ID);
}

std::unique_ptr<icu::TimeZone> newZone(std::string_view name) {
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(unicode(name)));
  return zone && !isUnknown(*zone) ? std::move(zone) : nullptr;
}

/// The zone that was asked for last: most ask for the same one again, and a copy takes a tenth of
/// what looking a zone up in the library's data does.
class LastZone final {
 public:
  std::unique_ptr<icu::TimeZone> named(std::string_view name) {
    const std::lock_guard lock(mutex_);
    if (!zone_ || name != name_) {
      auto zone = newZone(name);
      if (!zone) return nullptr;
      zone_ = std::move(zone);
      name_ = name;
    }
    return std::unique_ptr<icu::TimeZone>(zone_->clone());
  }

 private:
  std::mutex mutex_;
  std::string name_;
  std::unique_ptr<icu::TimeZone> zone_;
};

}  // namespace

std::unique_ptr<icu::TimeZone> icuTimeZone(std::string_view name) {
  static LastZone& last = *new LastZone;  // never destroyed: other threads may go on at exit
  return last.named(name);
}

bool isCanonicalZoneName(std::string_view name) {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString canonical;
  icu::TimeZone::getCanonicalID(unicode(name), canonical, status);
  return U_SUCCESS(status) && canonical == unicode(name);
}

std::string timeZoneNameForOffset(std::int32_t seconds) {
  if (seconds == 0) return "GMT";
  const std::int32_t distance = std::abs(seconds);
  const auto twoDigits = [](std::int32_t n) {
    return std::string(n < 10 ? "0" : "") + std::to_string(n);
  };
  const std::string name = std::string(seconds < 0 ? "GMT-" : "GMT+") + twoDigits(distance / 3600) +
                           ":" + twoDigits(distance / 60 % 60);
  return distance % 60 == 0 ? name : name + ":" + twoDigits(distance % 60);
}

}  // namespace rvf
