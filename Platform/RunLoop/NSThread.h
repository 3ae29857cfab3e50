// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <pthread.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

class NSRunLoop;

/// A thread of the process: started here, or any other thread from the moment that it first asks
/// for itself or its run loop. There is one object for each thread, so threads are compared by
/// identity. It may outlive its thread, and then tells so.
///
/// Thread: any. Lifetime: may be held after the thread has ended; the thread keeps itself while it
/// runs.
class RVF_EXPORT NSThread final : public NSObject {
 public:
  using Block = std::function<void()>;

  /// The calling thread's.
  static Ref<NSThread> currentThread();
  /// The process's initial thread, whoever asks first.
  static Ref<NSThread> mainThread();
  static bool isMainThread();

  /// Starts a thread that calls `block` and ends. The thread opens no release scope: what is
  /// handed over outside of the block's own scopes lives until the thread ends. An exception that
  /// leaves the block ends the process. Raises `NSGenericException` if the system has no more
  /// threads.
  static Ref<NSThread> detachNewThread(Block block);

  ~NSThread() override;
  static Class classObject();
  Class isa() const override;

  /// The name given, else the one that the system shows.
  std::string name() const;
  /// Names the thread. The system shows the first 15 bytes, cut between characters.
  void setName(std::string_view name);

  /// True from the thread's start, which may be later than `detachNewThread`, to its end.
  bool isExecuting() const;
  bool isCurrentThread() const noexcept;
  /// True once the thread serves nothing any more.
  bool isFinished() const { return state_ == State::kFinished; }

  /// The thread's loop, made on first use. Other threads may post to it, stop it and wake it up.
  /// The loop of a finished thread drops what is posted.
  const Ref<NSRunLoop>& runLoop() {
    if (!hasRunLoop_) makeRunLoop();
    return runLoop_;
  }

 private:
  enum class State { kStarting, kExecuting, kFinished };
  struct Private {};
  struct Entry;

 public:
  NSThread(Private, State state);

 private:
  static Ref<NSThread> make(State state);
  void begin();
  void end();
  void showName() const;
  void makeRunLoop();

  mutable std::mutex mutex_;
  std::atomic<State> state_;             // changed under mutex_
  std::atomic<bool> hasRunLoop_{false};  // set under mutex_, together with runLoop_ and for good
  Ref<NSRunLoop> runLoop_;
  std::string name_;        // guarded by mutex_
  bool isEntered_ = false;  // guarded by mutex_: whether the thread runs and handle_ names it
  pthread_t handle_ = {};   // guarded by mutex_
};

}  // namespace rvf
