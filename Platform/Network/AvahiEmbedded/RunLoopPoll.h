// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <avahi-common/watch.h>

#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

/// Lets Avahi's stack wait on a run loop, in its common modes. Avahi may free its watches and
/// time-outs inside their own callbacks. It states time-outs by the wall clock; they are waited
/// for on the loop's clock, so a step of the wall clock goes unnoticed here.
///
/// Must outlive the stack that uses it.
class RunLoopPoll final {
 public:
  explicit RunLoopPoll(Ref<NSRunLoop> loop);
  RunLoopPoll(const RunLoopPoll&) = delete;
  RunLoopPoll& operator=(const RunLoopPoll&) = delete;

  const AvahiPoll* api() const noexcept { return &api_; }
  NSRunLoop& loop() const noexcept { return *loop_; }

 private:
  Ref<NSRunLoop> loop_;
  AvahiPoll api_;
};

}  // namespace rvf
