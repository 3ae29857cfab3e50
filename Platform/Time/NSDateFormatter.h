// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Locale/NSLocale.h"
#include "Platform/Numbers/NSFormatter.h"
#include "Platform/Time/NSTimeZone.h"
#include "Platform/Values/NSDate.h"

namespace rvf {

/// Writes dates by a pattern (Unicode technical standard 35, part 4) in a locale's words, digits
/// and calendar, and reads them back.
///
///     const auto formatter = std::make_shared<NSDateFormatter>();
///     formatter->setDateFormat("EEEE, d. MMMM yyyy");
///     formatter->stringFromDate(date);   // "Freitag, 1. März 2024" in Germany
///
/// Reading is strict: a text is read only if writing its date gives the same text again.
///
/// Thread: one at a time, reading and writing included: it keeps what it prepared. Lifetime: keeps
/// its locale and time zone.
class RVF_EXPORT NSDateFormatter : public NSFormatter {
 public:
  NSDateFormatter();
  ~NSDateFormatter() override;

  static Class classObject();
  Class isa() const override;

  /// Empty until it is set; then every date is written as the empty text.
  const std::string& dateFormat() const noexcept;
  /// A malformed pattern raises `NSInvalidArgumentException` when it is first used.
  void setDateFormat(std::string_view pattern);
  /// The one that is set, else the current one, which is followed when it changes.
  Ref<NSLocale> locale() const;
  void setLocale(Ref<NSLocale> locale);
  /// The one that is set, else the default one of the moment.
  Ref<NSTimeZone> timeZone() const;
  /// Without one, the default zone of the moment when the formatter is first used counts, until
  /// another property is set.
  void setTimeZone(Ref<NSTimeZone> zone);

  /// What the pattern leaves out is cut off, never rounded: the second of a date is the whole one
  /// before it. Absent for a date that is absent, no number, or more than 600,000 years away.
  std::optional<std::string> stringFromDate(const Ref<NSDate>& date);
  /// Absent for what is no such text.
  Ref<NSDate> dateFromString(std::string_view text);

  /// Absent for what is no date.
  std::optional<std::string> stringForObjectValue(const id& value) override;
  bool getObjectValue(id* object, std::string_view forString,
                      std::string* errorDescription = nullptr) override;

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace rvf
