// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <compare>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>

#include "Platform/RunLoop/ItemModes.h"
#include "Platform/RunLoop/RunLoopClock.h"

namespace rvf {

/// The one-shot timers of one loop, by deadline and then in the order scheduled. Belongs to the
/// loop's thread.
class TimerQueue final {
 public:
  using TimePoint = RunLoopClock::TimePoint;
  using Block = std::function<void()>;

  struct Key {
    TimePoint deadline;
    std::uint64_t sequence;
    friend auto operator<=>(const Key&, const Key&) = default;
  };

  /// Returns the timer's number, by which it is withdrawn.
  std::uint64_t add(TimePoint deadline, Block block, ItemModes modes);
  /// Does nothing if the timer has fired or was withdrawn.
  void withdraw(std::uint64_t sequence);

  std::optional<TimePoint> nearestDeadline(const RunningMode& mode) const;
  /// The number of the next timer: where a batch that starts now ends.
  std::uint64_t end() const { return nextSequence_; }
  /// Takes out the first timer of this mode that is due and numbered below `end`.
  std::optional<Block> takeDue(const RunningMode& mode, TimePoint now, std::uint64_t end);

  /// Moves every deadline, as when another clock starts to count.
  void shift(std::chrono::nanoseconds distance);
  void clear();

 private:
  struct Timer {
    Block block;
    ItemModes modes;
  };

  std::map<Key, Timer> timers_;
  std::map<std::uint64_t, TimePoint> deadlines_;  // by number
  std::uint64_t nextSequence_ = 0;
};

}  // namespace rvf
