// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/MainQueue.h"

#include <deque>
#include <mutex>
#include <string>
#include <utility>

#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/RunLoop/NSThread.h"
#include "Platform/Runtime/NSAutoreleasePool.h"

namespace rvf {
namespace {

class SerialQueue final {
 public:
  /// Never destroyed: threads may still add to it while the process exits.
  static SerialQueue& shared() {
    static SerialQueue& kQueue = *new SerialQueue;
    return kQueue;
  }

  void add(MainQueue::Block block) {
    {
      const std::lock_guard lock(mutex_);
      blocks_.push_back(std::move(block));
      if (std::exchange(isRequested_, true)) return;
    }
    NSRunLoop::mainRunLoop()->performBlock([this] { drain(); });
  }

 private:
  /// Under way from the request to the end of the batch, so that an inner run starts no second one.
  class Drain final {
   public:
    explicit Drain(SerialQueue& queue) : queue_(queue) {}
    Drain(const Drain&) = delete;
    Drain& operator=(const Drain&) = delete;
    ~Drain() { queue_.finishBatch(); }

   private:
    SerialQueue& queue_;
  };

  void drain() {
    const Drain drain(*this);
    for (std::size_t left = size(); left > 0; --left) {
      const NSAutoreleasePool pool;
      takeFirst()();
    }
  }

  std::size_t size() {
    const std::lock_guard lock(mutex_);
    return blocks_.size();
  }

  MainQueue::Block takeFirst() {
    const std::lock_guard lock(mutex_);
    MainQueue::Block block = std::move(blocks_.front());
    blocks_.pop_front();
    return block;
  }

  /// Blocks that came meanwhile, or that an exception has left, get a turn of their own.
  void finishBatch() {
    {
      const std::lock_guard lock(mutex_);
      isRequested_ = !blocks_.empty();
      if (!isRequested_) return;
    }
    NSRunLoop::mainRunLoop()->performBlock([this] { drain(); });
  }

  std::mutex mutex_;
  std::deque<MainQueue::Block> blocks_;  // guarded by mutex_
  bool isRequested_ = false;             // guarded by mutex_; a drain is posted or under way
};

NSRunLoop::Clock::time_point timeAfter(std::chrono::nanoseconds delay) {
  using TimePoint = NSRunLoop::Clock::time_point;
  const TimePoint now = NSRunLoop::mainRunLoop()->clock()->now();
  if (delay <= std::chrono::nanoseconds::zero()) return now;
  return delay < TimePoint::max() - now ? now + delay : TimePoint::max();
}

void addAtTime(NSRunLoop::Clock::time_point time, MainQueue::Block block) {
  static const RunLoopModes kCommonModes{std::string(NSRunLoopCommonModes)};
  NSRunLoop::mainRunLoop()->performAtTime(
      time, kCommonModes, [block = std::move(block)] { SerialQueue::shared().add(block); });
}

}  // namespace

void MainQueue::dispatch_async(Block block) {
  SerialQueue::shared().add(std::move(block));
}

void MainQueue::dispatch_after(std::chrono::nanoseconds delay, Block block) {
  const auto time = timeAfter(delay);
  if (NSThread::isMainThread()) return addAtTime(time, std::move(block));
  NSRunLoop::mainRunLoop()->performBlock(
      [time, block = std::move(block)] { addAtTime(time, block); });
}

}  // namespace rvf
