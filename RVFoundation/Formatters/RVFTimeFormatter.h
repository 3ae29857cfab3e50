// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "Platform/Export.h"
#include "Platform/Numbers/NSNumberFormatter.h"

namespace rvf {

/// Elapsed time. A number of seconds is written as hours and minutes, a moment as the hours,
/// minutes and seconds since then. Parts of a unit are cut off; hours do not wrap at 24.
///
///     formatter->stringForObjectValue(box(3725));   // "01:02"
///     formatter->stringForObjectValue(openedAt);    // "01:02:05"
///
/// Reads nothing back.
///
/// Thread: one at a time. Lifetime: keeps its locale and number formatter.
class RVF_EXPORT RVFTimeFormatter : public NSFormatter {
 public:
  static Class classObject();
  Class isa() const override;

  /// The locale of `formatter`, absent by default. The texts of this class have the digits of the
  /// user's current locale, whatever this is.
  const Ref<NSLocale>& locale() const noexcept { return locale_; }
  void setLocale(Ref<NSLocale> locale);
  /// Writes numbers of at least two digits in `locale`, if that is set by the first call, which
  /// makes it. For callers that write parts of a time themselves; this class does not use it.
  const Ref<NSNumberFormatter>& formatter();

  /// An absent value counts as 0 seconds.
  std::optional<std::string> stringForObjectValue(const id& value) override;
  /// Whatever is neither a moment nor a number counts as 0 seconds; so does NaN. Hours and minutes
  /// that no 32-bit integer holds become the nearest one that does. A moment in the future gives
  /// negative parts, each with its sign.
  std::string timeInSecondsMinutesAndHoursFromObject(const id& value);

 private:
  Ref<NSLocale> locale_;
  Ref<NSNumberFormatter> formatter_;
};

}  // namespace rvf
