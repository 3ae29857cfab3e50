// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Runtime/Selector.h"

namespace rvf {

class IMP;
class NSObject;

/// Marks a method as running on this thread for as long as the mark lives, which is on the stack.
/// Every call of an `IMP` sets one, so "which implementation is running" has an exact answer that
/// does not depend on return addresses. A direct C++ call of a member function sets none.
///
/// Thread: the one that made it, on its stack. Lifetime: the call that it marks.
class RVF_EXPORT RunningMethod final {
 public:
  /// Everything named here outlives the mark.
  RunningMethod(const IMP& implementation, const NSObject& receiver, SEL selector) noexcept
      : implementation_(implementation),
        receiver_(receiver),
        selector_(selector),
        innermost_(threadsInnermost()),
        enclosing_(innermost_) {
    innermost_ = this;
  }
  ~RunningMethod() { innermost_ = enclosing_; }
  RunningMethod(const RunningMethod&) = delete;
  RunningMethod& operator=(const RunningMethod&) = delete;

  /// The innermost mark of this thread, or null.
  static const RunningMethod* innermost() noexcept { return threadsInnermost(); }

  /// What was given, valid as long as the mark.
  const IMP& implementation() const noexcept { return implementation_; }
  const NSObject& receiver() const noexcept { return receiver_; }
  SEL selector() const noexcept { return selector_; }
  /// The mark around this one, or null.
  const RunningMethod* enclosing() const noexcept { return enclosing_; }

 private:
  static const RunningMethod*& threadsInnermost() noexcept;

  const IMP& implementation_;
  const NSObject& receiver_;
  SEL selector_;
  const RunningMethod*& innermost_;
  const RunningMethod* enclosing_;
};

}  // namespace rvf
