// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <csignal>
#include <functional>
#include <initializer_list>
#include <memory>

#include "Platform/RunLoop/NSRunLoop.h"

/// Turns signals into run-loop callouts: while one lives, the signals are blocked for the calling
/// thread (and threads that it starts) and `block` is called for each, with its number. Make it
/// before any thread is started. Destroying it brings the thread's former signal mask back.
class SignalWatch final {
 public:
  SignalWatch(std::initializer_list<int> signals, std::function<void(int)> block);
  ~SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;

 private:
  sigset_t formerMask_{};
  int descriptor_;
  std::unique_ptr<rvf::RunLoopSource> source_;
};
