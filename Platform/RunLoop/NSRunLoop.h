// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Export.h"
#include "Platform/RunLoop/RunLoopClock.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

inline constexpr std::string_view NSDefaultRunLoopMode = "kCFRunLoopDefaultMode";
/// Stands for the set of common modes, the default mode among them.
inline constexpr std::string_view NSRunLoopCommonModes = "kCFRunLoopCommonModes";

/// Names of modes in which an item runs.
using RunLoopModes = std::vector<std::string>;

/// A running timer or descriptor watch. Destroying it ends it: its block is not called any more,
/// also when it is destroyed while a turn is under way or inside the block itself.
///
/// Thread: that of its loop, also for destroying it. Lifetime: owned by whoever scheduled it; may
/// be destroyed in its own block.
class RVF_EXPORT RunLoopSource {
 public:
  RunLoopSource() = default;
  RunLoopSource(const RunLoopSource&) = delete;
  RunLoopSource& operator=(const RunLoopSource&) = delete;
  virtual ~RunLoopSource();
};

/// What a descriptor is watched for, and what it was found ready for. A hang-up or an error is
/// always reported, whatever was asked for.
///
/// Thread: any, a plain value. Lifetime: refers to nothing.
struct DescriptorEvents {
  bool readable = false;
  bool writable = false;
  bool hangUp = false;
  bool error = false;
};

/// The event loop of one thread: timers, descriptors and posted blocks, each in its modes.
///
/// There is one for each thread, made on first use. Nothing is delivered unless its thread runs
/// it, in a mode that the item is in; an item of another mode waits, in its place, and does not
/// hold back others. Everything is called on the loop's thread, outside of any lock and inside a
/// release scope of its own, so callbacks may run the loop again (nested), add and remove
/// anything, and throw: an exception leaves the run call, and the loop stays usable.
///
/// Delays are measured on the loop's clock, the monotonic one unless it is replaced, and are never
/// shortened. Items posted from one
/// thread run in the order posted; timers of equal time run in the order scheduled; no order is
/// promised between the two kinds.
///
/// Thread: its own; any may call `performInModes`, `performBlock`, `stop`, `wakeUp` and `clock`.
/// Lifetime: closed when its thread ends. What waits then, or is posted later to a loop that
/// somebody still holds, is dropped unrun.
class RVF_EXPORT NSRunLoop final : public NSObject {
 public:
  using Block = std::function<void()>;
  using DescriptorBlock = std::function<void(DescriptorEvents)>;
  using Clock = std::chrono::steady_clock;

  /// The calling thread's.
  static Ref<NSRunLoop> currentRunLoop();
  /// The loop of the process's initial thread, from any thread.
  static Ref<NSRunLoop> mainRunLoop();

  ~NSRunLoop() override;
  static Class classObject();
  Class isa() const override;

  // Items

  /// Queues a block. Any thread; wakes the loop. Never runs inside this call. An empty list of
  /// modes drops the block.
  void performInModes(const RunLoopModes& modes, Block block);
  /// Queues a block in the common modes. Any thread.
  void performBlock(Block&& block);
  void performBlock(const Block& block) { performBlock(Block(block)); }

  /// Calls `block` once after `delaySeconds` (0 or less: on a later turn).
  [[nodiscard]] std::unique_ptr<RunLoopSource> scheduleTimer(double delaySeconds,
                                                             const RunLoopModes& modes,
                                                             Block block);
  /// Calls `block` while the descriptor is ready, once a turn. Several watches may share a
  /// descriptor. Raises `NSInvalidArgumentException` for a descriptor that cannot be polled. End
  /// the watch before closing the descriptor.
  [[nodiscard]] std::unique_ptr<RunLoopSource> watchDescriptor(int descriptor,
                                                               DescriptorEvents wanted,
                                                               const RunLoopModes& modes,
                                                               DescriptorBlock block);
  /// The same for a block that is never called off: it lives until it has run, or the loop is gone.
  void performAfterDelay(double delaySeconds, const RunLoopModes& modes, Block block);
  /// The same with a time of the loop's clock.
  void performAtTime(Clock::time_point time, const RunLoopModes& modes, Block block);
  /// Adds a mode to the set that `NSRunLoopCommonModes` stands for.
  void addCommonMode(std::string_view mode);

  // Running

  /// The mode that runs now, innermost; absent when the loop does not run.
  std::optional<std::string> currentMode() const;
  /// Runs one mode until one batch of callouts was made, the date is reached, or `stop` was
  /// called. False, at once, if the mode has nothing attached.
  bool runMode(std::string_view mode, Clock::time_point limit);
  /// Runs the default mode until the date is reached or `stop` was called. Waits also while
  /// nothing is attached.
  void runUntilDate(Clock::time_point limit);
  /// Runs the default mode until `stop` was called.
  void run();
  /// Ends the innermost run call as soon as the callout under way returns. Any thread.
  void stop();
  /// Makes a waiting loop take one turn. Any thread.
  void wakeUp();

  // Driven by a host's loop: watch the descriptor for reading, wait no longer than the time-out,
  // then take a turn. Neither turns another loop nor blocks.

  /// Becomes readable when a turn has something to do. Owned by the loop.
  int pollableDescriptor();
  /// How long the host may wait, rounded up to whole milliseconds; absent: for ever. Ask before
  /// every wait: this also makes the descriptor notice what has been added.
  std::optional<std::chrono::milliseconds> nextTimeout(
      std::string_view mode = NSDefaultRunLoopMode);
  /// One turn that does not wait. Answers whether anything was called.
  bool turn(std::string_view mode = NSDefaultRunLoopMode);

  // Time

  /// When the next timer of this mode is due, on the loop's clock; absent if there is none.
  std::optional<Clock::time_point> nextDeadline(std::string_view mode = NSDefaultRunLoopMode) const;
  /// Any thread.
  std::shared_ptr<RunLoopClock> clock() const;
  /// Replaces the clock, for tests; absent brings the monotonic one back. Timers that are running
  /// keep what is left of their delay.
  void setClock(std::shared_ptr<RunLoopClock> clock);

 private:
  class Core;
  struct Private {};

 public:
  explicit NSRunLoop(Private);

 private:
  friend class NSThread;
  void close();

  std::shared_ptr<Core> core_;
};

}  // namespace rvf
