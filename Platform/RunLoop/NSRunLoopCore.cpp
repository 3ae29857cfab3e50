// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/NSRunLoopCore.h"

#include <unistd.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "Platform/Runtime/NSAutoreleasePool.h"

namespace rvf {
namespace {

void check(int status) {
  if (status == 0) return;
  throw std::system_error(-status, std::generic_category(), "a run loop cannot be made");
}

std::chrono::milliseconds roundedUp(std::chrono::nanoseconds duration) {
  return std::chrono::ceil<std::chrono::milliseconds>(
      std::max(duration, std::chrono::nanoseconds::zero()));
}

}  // namespace

class NSRunLoop::Core::TimerToken final : public RunLoopSource {
 public:
  TimerToken(std::weak_ptr<Core> core, std::uint64_t number)
      : core_(std::move(core)), number_(number) {}
  ~TimerToken() override {
    if (const auto core = core_.lock()) core->timers_.withdraw(number_);
  }

 private:
  std::weak_ptr<Core> core_;
  std::uint64_t number_;
};

class NSRunLoop::Core::WatchToken final : public RunLoopSource {
 public:
  WatchToken(std::weak_ptr<Core> core, std::shared_ptr<DescriptorTable::Watch> watch)
      : core_(std::move(core)), watch_(std::move(watch)) {}
  ~WatchToken() override {
    if (const auto core = core_.lock()) core->descriptors_.remove(watch_);
  }

 private:
  std::weak_ptr<Core> core_;
  std::shared_ptr<DescriptorTable::Watch> watch_;
};

/// One run call under way: its mode, and what is to happen when it ends, however it ends.
class NSRunLoop::Core::RunCall final {
 public:
  RunCall(Core& core, std::string_view mode) : core_(core), mode_(mode) {
    core_.runModes_.push_back(mode_);
    core_.isRunning_ = true;
  }
  RunCall(const RunCall&) = delete;
  RunCall& operator=(const RunCall&) = delete;
  ~RunCall() {
    core_.stopRequested_ = false;
    core_.runModes_.pop_back();
    if (core_.runModes_.empty()) core_.leaveOutermostRun();
  }

  const std::string& mode() const { return mode_; }
  bool isStopped() const { return core_.stopRequested_; }

 private:
  Core& core_;
  std::string mode_;
};

NSRunLoop::Core::Core() {
  loop_.backend_fd = -1;
  const int status = uv_loop_init(&loop_);
  // libuv leaves it open when a later step fails.
  if (status != 0 && loop_.backend_fd >= 0) ::close(loop_.backend_fd);
  check(status);
  check(uv_timer_init(&loop_, &timer_));
  wakePoll_.data = &wakeUp_;
  check(uv_poll_init(&loop_, &wakePoll_, wakeUp_.descriptor()));
  check(uv_poll_start(&wakePoll_, UV_READABLE, [](uv_poll_t* poll, int, int) {
    static_cast<WakeUp*>(poll->data)->receive();
  }));
  // The wake-up reaches the pollable descriptor only from the first turn on.
  uv_run(&loop_, UV_RUN_NOWAIT);
}

NSRunLoop::Core::~Core() {
  close();
}

void NSRunLoop::Core::close() {
  if (std::exchange(isClosed_, true)) return;
  posts_.close();
  timers_.clear();
  descriptors_.close();
  uv_close(reinterpret_cast<uv_handle_t*>(&wakePoll_), nullptr);
  uv_close(reinterpret_cast<uv_handle_t*>(&timer_), nullptr);
  while (uv_loop_close(&loop_) == UV_EBUSY)
    uv_run(&loop_, UV_RUN_NOWAIT);
}

// Any thread

void NSRunLoop::Core::post(ItemModes&& modes, Block&& block) {
  if (posts_.add(std::move(block), std::move(modes))) wakeUp();
}

void NSRunLoop::Core::wakeUp() {
  wakeUp_.send();
}

void NSRunLoop::Core::stop() {
  if (!isRunning_) return;
  stopRequested_ = true;
  wakeUp();
}

std::shared_ptr<RunLoopClock> NSRunLoop::Core::clock() const {
  const std::lock_guard lock(clockMutex_);
  return clock_;
}

void NSRunLoop::Core::setClock(std::shared_ptr<RunLoopClock> clock) {
  if (!clock) clock = RunLoopClock::monotonicClock();
  timers_.shift(clock->now() - clock_->now());
  const std::lock_guard lock(clockMutex_);
  clock_.swap(clock);
}

// Items

std::unique_ptr<RunLoopSource> NSRunLoop::Core::schedule(TimePoint deadline, ItemModes modes,
                                                         Block block) {
  if (isClosed_) return std::make_unique<TimerToken>(std::weak_ptr<Core>(), 0);
  const std::uint64_t number = timers_.add(deadline, std::move(block), std::move(modes));
  tellHost();
  return std::make_unique<TimerToken>(weak_from_this(), number);
}

void NSRunLoop::Core::scheduleForGood(TimePoint deadline, ItemModes modes, Block block) {
  if (isClosed_) return;
  timers_.add(deadline, std::move(block), std::move(modes));
  tellHost();
}

std::unique_ptr<RunLoopSource> NSRunLoop::Core::watch(int descriptor, DescriptorEvents wanted,
                                                      const RunLoopModes& modes,
                                                      DescriptorBlock block) {
  if (isClosed_) return std::make_unique<WatchToken>(std::weak_ptr<Core>(), nullptr);
  auto watch = descriptors_.add(descriptor, wanted, modes, std::move(block));
  tellHost();
  return std::make_unique<WatchToken>(weak_from_this(), std::move(watch));
}

void NSRunLoop::Core::addCommonMode(std::string_view mode) {
  if (running(mode).isCommon) return;
  commonModes_.emplace_back(mode);
  descriptors_.invalidate();
}

/// A host that already waits must learn that there is something new to wait for.
void NSRunLoop::Core::tellHost() {
  if (isHosted_ && runModes_.empty()) wakeUp();
}

// Running

RunningMode NSRunLoop::Core::running(std::string_view mode) const {
  return {mode, std::find(commonModes_.begin(), commonModes_.end(), mode) != commonModes_.end()};
}

std::optional<std::string> NSRunLoop::Core::currentMode() const {
  if (runModes_.empty()) return std::nullopt;
  return runModes_.back();
}

bool NSRunLoop::Core::hasAnything(const RunningMode& mode) const {
  return posts_.hasBlock(mode) || timers_.nearestDeadline(mode) || descriptors_.hasWatch(mode);
}

bool NSRunLoop::Core::runMode(std::string_view mode, TimePoint limit) {
  const RunCall call(*this, mode);
  posts_.takeIncoming();
  if (isClosed_ || !hasAnything(running(mode))) return false;
  do {
    if (takeTurn(call.mode(), limit)) break;
  } while (!call.isStopped() && now() < limit);
  return true;
}

void NSRunLoop::Core::runUntilDate(TimePoint limit) {
  const RunCall call(*this, NSDefaultRunLoopMode);
  if (isClosed_) return;
  do {
    takeTurn(call.mode(), limit);
  } while (!call.isStopped() && now() < limit);
}

bool NSRunLoop::Core::turn(std::string_view mode) {
  const RunCall call(*this, mode);
  return !isClosed_ && takeTurn(call.mode(), std::nullopt);
}

bool NSRunLoop::Core::takeTurn(std::string_view mode, std::optional<TimePoint> waitLimit) {
  posts_.takeIncoming();
  if (poll(running(mode), waitLimit)) posts_.takeIncoming();
  return callOut(mode);
}

/// Answers whether it was prepared to wait.
bool NSRunLoop::Core::poll(const RunningMode& mode, std::optional<TimePoint> waitLimit) {
  descriptors_.enable(mode);
  if (waitLimit && !stopRequested_ && !posts_.hasBlock(mode)) {
    const TimePoint until =
        std::min(timers_.nearestDeadline(mode).value_or(*waitLimit), *waitLimit);
    const TimePoint start = now();
    if (until > start && posts_.prepareToWait()) {
      pollWaiting(until - start);
      return true;
    }
  }
  uv_run(&loop_, UV_RUN_NOWAIT);
  return false;
}

void NSRunLoop::Core::pollWaiting(std::chrono::nanoseconds duration) {
  uv_update_time(&loop_);
  // Should the time be up before libuv gets to wait, it would wait for ever; `uv_stop` prevents it.
  uv_timer_start(
      &timer_, [](uv_timer_t* timer) { uv_stop(timer->loop); },
      static_cast<std::uint64_t>(roundedUp(duration).count()), 0);
  uv_run(&loop_, UV_RUN_ONCE);
  uv_timer_stop(&timer_);
}

/// One batch: what is ready now, not what the callouts make ready.
bool NSRunLoop::Core::callOut(std::string_view mode) {
  const std::uint64_t timersEnd = timers_.end();
  bool called = callPosts(running(mode));
  called |= callTimers(mode, timersEnd);
  called |= callWatches(mode);
  return called;
}

bool NSRunLoop::Core::callPosts(const RunningMode& mode) {
  NSAutoreleasePool pool;  // drained after every callout, which is cheaper than opening another
  return posts_.callAll(
      mode, [this] { return stopRequested_.load(std::memory_order_relaxed); },
      [&pool] { pool.drain(); });
}

bool NSRunLoop::Core::callTimers(std::string_view mode, std::uint64_t end) {
  bool called = false;
  const TimePoint due = now();
  while (!stopRequested_) {
    const NSAutoreleasePool pool;
    const auto block = timers_.takeDue(running(mode), due, end);
    if (!block) break;
    called = true;
    (*block)();
  }
  return called;
}

bool NSRunLoop::Core::callWatches(std::string_view mode) {
  bool called = false;
  while (!stopRequested_ && descriptors_.hasReady()) {
    const NSAutoreleasePool pool;
    const auto [watch, events] = descriptors_.takeReady(running(mode));
    if (!watch) break;
    called = true;
    watch->block(events);
  }
  return called;
}

void NSRunLoop::Core::leaveOutermostRun() {
  isRunning_ = false;
  if (!isClosed_ && !posts_.prepareToWait()) wakeUp();
}

// Hosts

int NSRunLoop::Core::pollableDescriptor() {
  isHosted_ = true;
  return uv_backend_fd(&loop_);
}

std::optional<RunLoopClock::TimePoint> NSRunLoop::Core::nextDeadline(std::string_view mode) const {
  return timers_.nearestDeadline(running(mode));
}

std::optional<std::chrono::milliseconds> NSRunLoop::Core::nextTimeout(std::string_view mode) {
  isHosted_ = true;
  const RunningMode runningMode = running(mode);
  if (runModes_.empty()) {
    // Registers with the system what was added since the last turn.
    descriptors_.enable(runningMode);
    uv_run(&loop_, UV_RUN_NOWAIT);
    posts_.takeIncoming();
    if (!posts_.prepareToWait()) return std::chrono::milliseconds::zero();
  }
  if (descriptors_.hasReady() || posts_.hasBlock(runningMode)) {
    return std::chrono::milliseconds::zero();
  }
  const auto deadline = timers_.nearestDeadline(runningMode);
  if (!deadline || *deadline == TimePoint::max()) return std::nullopt;
  return roundedUp(*deadline - now());
}

}  // namespace rvf
