// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

/// The events of an activity on their way to its owner. Each is delivered by a block on the run
/// loop, in the order sent and never inside the sender's frames, so events may throw and destroy
/// anything, the activity included. What has not been delivered when the outbox ends is dropped.
template <class Events>
class EventOutbox final {
 public:
  explicit EventOutbox(Events events) : events_(std::make_shared<Events>(std::move(events))) {}

  template <class... Parameters, class... Arguments>
  void send(std::function<void(Parameters...)> Events::*event, Arguments... arguments) {
    later([events = events_.get(), event, ... arguments = std::move(arguments)] {
      if (events->*event) (events->*event)(arguments...);
    });
  }

  /// Runs the block in the events' order, if the outbox still exists then.
  void later(std::function<void()> block) {
    NSRunLoop::currentRunLoop()->performBlock(
        [weakEvents = std::weak_ptr<Events>(events_), block = std::move(block)] {
          if (const auto events = weakEvents.lock()) block();
        });
  }

 private:
  std::shared_ptr<Events> events_;
};

}  // namespace rvf
