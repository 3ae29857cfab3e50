// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/TimerQueue.h"

#include <utility>

namespace rvf {

std::uint64_t TimerQueue::add(TimePoint deadline, Block block, ItemModes modes) {
  const std::uint64_t sequence = nextSequence_++;
  timers_.emplace(Key{deadline, sequence}, Timer{std::move(block), std::move(modes)});
  deadlines_.emplace(sequence, deadline);
  return sequence;
}

void TimerQueue::withdraw(std::uint64_t sequence) {
  const auto deadline = deadlines_.find(sequence);
  if (deadline == deadlines_.end()) return;
  // The block's destructor may reach this queue again: it runs when the maps are in order.
  const auto withdrawn = timers_.extract(Key{deadline->second, sequence});
  deadlines_.erase(deadline);
}

std::optional<TimerQueue::TimePoint> TimerQueue::nearestDeadline(const RunningMode& mode) const {
  for (const auto& [key, timer] : timers_) {
    if (timer.modes.match(mode)) return key.deadline;
  }
  return std::nullopt;
}

std::optional<TimerQueue::Block> TimerQueue::takeDue(const RunningMode& mode, TimePoint now,
                                                     std::uint64_t end) {
  for (auto timer = timers_.begin(); timer != timers_.end() && timer->first.deadline <= now;
       ++timer) {
    if (timer->first.sequence >= end || !timer->second.modes.match(mode)) continue;
    Block block = std::move(timer->second.block);
    deadlines_.erase(timer->first.sequence);
    timers_.erase(timer);
    return block;
  }
  return std::nullopt;
}

void TimerQueue::shift(std::chrono::nanoseconds distance) {
  std::map<Key, Timer> shifted;
  for (auto& [key, timer] : timers_) {
    const bool isForEver = key.deadline == TimePoint::max() ||
                           (distance.count() > 0 && key.deadline > TimePoint::max() - distance);
    const Key moved{isForEver ? TimePoint::max() : key.deadline + distance, key.sequence};
    deadlines_[key.sequence] = moved.deadline;
    shifted.emplace(moved, std::move(timer));
  }
  timers_ = std::move(shifted);
}

void TimerQueue::clear() {
  deadlines_.clear();
  const auto dropped = std::exchange(timers_, {});
}

}  // namespace rvf
