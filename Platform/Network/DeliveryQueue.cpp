// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/DeliveryQueue.h"

#include <algorithm>
#include <deque>
#include <utility>

#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

struct DeliveryQueue::State {
  struct Entry {
    int topic;
    Delivery delivery;
  };
  std::deque<Entry> waiting;
};

DeliveryQueue::DeliveryQueue() : state_(std::make_shared<State>()) {}
DeliveryQueue::~DeliveryQueue() = default;

void DeliveryQueue::add(int topic, Delivery delivery) {
  state_->waiting.push_back({topic, std::move(delivery)});
  NSRunLoop::currentRunLoop()->performBlock(
      [state = std::weak_ptr<State>(state_)] { deliverNext(state); });
}

void DeliveryQueue::drop(int topic) {
  std::erase_if(state_->waiting, [topic](const auto& entry) { return entry.topic == topic; });
}

void DeliveryQueue::dropAll() {
  state_->waiting.clear();
}

/// A block whose own delivery was dropped makes a later one earlier, or finds nothing to do.
void DeliveryQueue::deliverNext(const std::weak_ptr<State>& weakState) {
  const auto state = weakState.lock();
  if (!state || state->waiting.empty()) return;
  const State::Entry entry = std::move(state->waiting.front());
  state->waiting.pop_front();
  const bool moreComing =
      std::any_of(state->waiting.begin(), state->waiting.end(),
                  [&](const auto& other) { return other.topic == entry.topic; });
  entry.delivery(moreComing);
}

}  // namespace rvf
