// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <future>
#include <string>
#include <thread>

#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/RunLoop/NSThread.h"

namespace rvf {

/// A thread that serves its run loop until it is told to finish. It has gone when this has.
class ServingThread final {
 public:
  ServingThread() {
    std::promise<Ref<NSThread>> serving;
    auto thread = serving.get_future();
    worker_ = std::thread([serving = std::move(serving)]() mutable {
      const auto loop = NSRunLoop::currentRunLoop();
      loop->performBlock([&] { serving.set_value(NSThread::currentThread()); });
      loop->run();
    });
    thread_ = thread.get();
  }
  ServingThread(const ServingThread&) = delete;
  ServingThread& operator=(const ServingThread&) = delete;
  ~ServingThread() { finish(); }

  const Ref<NSThread>& thread() const { return thread_; }
  NSRunLoop& loop() const { return *thread_->runLoop(); }

  void finish() {
    if (!worker_.joinable()) return;
    loop().stop();
    worker_.join();
  }

 private:
  std::thread worker_;
  Ref<NSThread> thread_;
};

}  // namespace rvf
