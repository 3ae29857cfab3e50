// SPDX-License-Identifier: Apache-2.0
#include "Platform/Time/ICUTimeZone.h"

#include <unicode/simpletz.h>
#include <unicode/unistr.h>

namespace rvf {
namespace {

std::string utf8(const icu::UnicodeString& text) {
  std::string bytes;
  return text.toUTF8String(bytes);
}

/// "GMT+05:30" in the library's canonical form.
std::string nameForOffset(std::int32_t milliseconds) {
  constexpr std::int32_t kMinute = 60'000;
  const std::int32_t minutes = std::abs(milliseconds) / kMinute;
  const auto twoDigits = [](std::int32_t n) {
    return std::string(n < 10 ? "0" : "") + std::to_string(n);
  };
  return std::string("GMT") + (milliseconds < 0 ? "-" : "+") + twoDigits(minutes / 60) + ":" +
         twoDigits(minutes % 60);
}

}  // namespace

std::unique_ptr<icu::TimeZone> icuTimeZone(std::string_view name) {
  const icu::StringPiece bytes(name.data(), static_cast<std::int32_t>(name.size()));
  std::unique_ptr<icu::TimeZone> zone(
      icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(bytes)));
  return zone && *zone != icu::TimeZone::getUnknown() ? std::move(zone) : nullptr;
}

std::string icuHostTimeZoneName() {
  const std::unique_ptr<icu::TimeZone> host(icu::TimeZone::detectHostTimeZone());
  icu::UnicodeString id;
  const std::string name = utf8(host->getID(id));
  return icuTimeZone(name) ? name : nameForOffset(host->getRawOffset());
}

}  // namespace rvf
