// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {

/// Marks a method as running on this thread for as long as the mark lives. `send` sets one around
/// every method it calls, so "which implementation is running" has an exact answer that does not
/// depend on return addresses.
class RVF_EXPORT RunningMethod final {
 public:
  explicit RunningMethod(const Method& method) noexcept;
  ~RunningMethod();
  RunningMethod(const RunningMethod&) = delete;
  RunningMethod& operator=(const RunningMethod&) = delete;

  /// The innermost mark of this thread, or null.
  static const RunningMethod* innermost() noexcept;

  const Method& method() const noexcept { return method_; }
  /// The mark around this one, or null.
  const RunningMethod* enclosing() const noexcept { return enclosing_; }

 private:
  const Method& method_;
  const RunningMethod* enclosing_;
};

}  // namespace rvf
