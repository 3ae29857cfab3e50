// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// A moment: seconds since the reference date, 2001-01-01 00:00 UTC, negative before it. Leap
/// seconds are not counted (POSIX time).
///
/// Thread: any; immutable. The clock may be asked on any thread. Lifetime: a replaced clock goes
/// when nobody is asking it any more.
class RVF_EXPORT NSDate final : public NSObject {
 public:
  /// Answers seconds since the reference date. Called on any thread.
  using Clock = std::function<double()>;

  explicit NSDate(double secondsSinceReferenceDate) : seconds_(secondsSinceReferenceDate) {}

  /// Now.
  static Ref<NSDate> date();
  static Ref<NSDate> dateWithTimeIntervalSinceReferenceDate(double seconds);
  /// Seconds since 1970-01-01 00:00 UTC.
  static Ref<NSDate> dateWithTimeIntervalSince1970(double seconds);
  /// Replaces the clock that says what now is, for the whole process; none brings the system's
  /// back. Thread-safe.
  static void setClock(Clock clock);

  static Class classObject();
  Class isa() const override;

  /// Seconds, negative before the date that they count from.
  double timeIntervalSinceReferenceDate() const noexcept { return seconds_; }
  double timeIntervalSince1970() const noexcept;

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;

 private:
  double seconds_;
};

}  // namespace rvf
