// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>

namespace rvf {

/// What an object has yet to tell its delegate. Each delivery is made by a block of its own on the
/// run loop of the thread that adds it, in the common modes and in the order added, so a delivery
/// may run the loop again, add, drop, throw, and destroy the queue.
class DeliveryQueue final {
 public:
  /// Called with whether more deliveries of the same topic are waiting.
  using Delivery = std::function<void(bool moreComing)>;

  DeliveryQueue();
  ~DeliveryQueue();
  DeliveryQueue(const DeliveryQueue&) = delete;
  DeliveryQueue& operator=(const DeliveryQueue&) = delete;

  void add(int topic, Delivery delivery);
  /// Forgets what waits of one topic, or everything.
  void drop(int topic);
  void dropAll();

 private:
  struct State;
  static void deliverNext(const std::weak_ptr<State>& weakState);
  std::shared_ptr<State> state_;
};

}  // namespace rvf
