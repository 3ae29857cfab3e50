// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "Platform/Export.h"
#include "Platform/Numbers/NSNumberFormatter.h"

namespace rvf {

/// A number of seconds as a decimal number of hours, which another formatter writes: 5400 is "1.5"
/// where that shows one decimal.
///
/// Thread: any may write, as far as the other formatter is for any, and replace that meanwhile; the
/// rest as `NSNumberFormatter`. Lifetime: keeps the other formatter.
class RVF_EXPORT RVFSecondsToHoursFormatter : public NSNumberFormatter {
 public:
  static Class classObject();
  Class isa() const override;

  /// Writes the hours; absent by default. May be read and set on any thread.
  Ref<NSFormatter> decimalFormatter() const;
  void setDecimalFormatter(Ref<NSFormatter> formatter);

  /// What `decimalFormatter` makes of the hours; absent without one. What is no number counts as 0
  /// seconds.
  std::optional<std::string> stringForObjectValue(const id& value) override;

 private:
  mutable std::mutex mutex_;
  Ref<NSFormatter> decimalFormatter_;
};

}  // namespace rvf
