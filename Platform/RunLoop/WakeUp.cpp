// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/WakeUp.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace rvf {

WakeUp::WakeUp() : descriptor_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
  if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
}

WakeUp::~WakeUp() {
  ::close(descriptor_);
}

void WakeUp::send() noexcept {
  // Fails only when the counter is full, and then it is readable anyway.
  static_cast<void>(::eventfd_write(descriptor_, 1));
}

void WakeUp::receive() noexcept {
  eventfd_t count = 0;
  static_cast<void>(::eventfd_read(descriptor_, &count));
}

}  // namespace rvf
