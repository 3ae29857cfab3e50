// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <uv.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/RunLoop/DescriptorTable.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/RunLoop/PostQueue.h"
#include "Platform/RunLoop/RunLoopClock.h"
#include "Platform/RunLoop/TimerQueue.h"
#include "Platform/RunLoop/WakeUp.h"

namespace rvf {

/// What is behind a run loop: one libuv loop and what is attached to it.
///
/// libuv's loop must not be entered twice and its callbacks must not throw, so they only record
/// what is ready. Everything is called from here, after `uv_run` has returned. Hence a callout
/// may run the loop again and may throw.
class NSRunLoop::Core final : public std::enable_shared_from_this<NSRunLoop::Core> {
 public:
  using TimePoint = RunLoopClock::TimePoint;

  Core();
  Core(const Core&) = delete;
  Core& operator=(const Core&) = delete;
  ~Core();

  // Any thread
  void post(Block&& block) {
    if (posts_.add(std::move(block))) wakeUp();
  }
  void post(ItemModes&& modes, Block&& block);
  void stop();
  void wakeUp();
  std::shared_ptr<RunLoopClock> clock() const;

  // The loop's thread
  std::unique_ptr<RunLoopSource> schedule(TimePoint deadline, ItemModes modes, Block block);
  void scheduleForGood(TimePoint deadline, ItemModes modes, Block block);
  std::unique_ptr<RunLoopSource> watch(int descriptor, DescriptorEvents wanted,
                                       const RunLoopModes& modes, DescriptorBlock block);
  void addCommonMode(std::string_view mode);
  void setClock(std::shared_ptr<RunLoopClock> clock);

  std::optional<std::string> currentMode() const;
  bool runMode(std::string_view mode, TimePoint limit);
  void runUntilDate(TimePoint limit);
  bool turn(std::string_view mode);

  int pollableDescriptor();
  std::optional<std::chrono::milliseconds> nextTimeout(std::string_view mode);
  std::optional<TimePoint> nextDeadline(std::string_view mode) const;

  /// Drops whatever is attached and closes the libuv loop. The core remains, refusing everything.
  void close();

 private:
  class RunCall;
  class TimerToken;
  class WatchToken;

  RunningMode running(std::string_view mode) const;
  bool hasAnything(const RunningMode& mode) const;
  TimePoint now() const { return clock_->now(); }
  bool takeTurn(std::string_view mode, std::optional<TimePoint> waitLimit);
  bool poll(const RunningMode& mode, std::optional<TimePoint> waitLimit);
  void pollWaiting(std::chrono::nanoseconds duration);
  bool callOut(std::string_view mode);
  bool callPosts(const RunningMode& mode);
  bool callTimers(std::string_view mode, std::uint64_t end);
  bool callWatches(std::string_view mode);
  void leaveOutermostRun();
  void tellHost();

  uv_loop_t loop_{};
  uv_poll_t wakePoll_{};
  uv_timer_t timer_{};
  WakeUp wakeUp_;  // outlives the loop: other threads may still send
  PostQueue posts_;
  TimerQueue timers_;
  DescriptorTable descriptors_{loop_};
  std::vector<std::string> commonModes_{std::string(NSDefaultRunLoopMode)};
  std::vector<std::string> runModes_;  // of the run calls under way, innermost last
  bool isHosted_ = false;
  bool isClosed_ = false;
  std::atomic<bool> isRunning_{false};
  std::atomic<bool> stopRequested_{false};
  mutable std::mutex clockMutex_;
  std::shared_ptr<RunLoopClock> clock_ = RunLoopClock::monotonicClock();
};

}  // namespace rvf
