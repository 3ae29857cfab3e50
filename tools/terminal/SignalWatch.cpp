// SPDX-License-Identifier: Apache-2.0
#include "tools/terminal/SignalWatch.h"

#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

SignalWatch::SignalWatch(std::initializer_list<int> signals, std::function<void(int)> block) {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : signals)
    sigaddset(&set, signal);
  pthread_sigmask(SIG_BLOCK, &set, &formerMask_);
  descriptor_ = signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
  if (descriptor_ < 0) pthread_sigmask(SIG_SETMASK, &formerMask_, nullptr);
  if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "signalfd");
  rvf::DescriptorEvents readable;
  readable.readable = true;
  source_ = rvf::NSRunLoop::currentRunLoop()->watchDescriptor(
      descriptor_, readable, {std::string(rvf::NSRunLoopCommonModes)},
      [descriptor = descriptor_, block = std::move(block)](rvf::DescriptorEvents) {
        signalfd_siginfo info{};
        while (read(descriptor, &info, sizeof info) == sizeof info) {
          block(static_cast<int>(info.ssi_signo));
        }
      });
}

SignalWatch::~SignalWatch() {
  source_.reset();
  close(descriptor_);
  pthread_sigmask(SIG_SETMASK, &formerMask_, nullptr);
}
