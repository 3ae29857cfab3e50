// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>

namespace rvf {

/// A file descriptor that is closed with its owner; -1 holds none.
class Descriptor final {
 public:
  explicit Descriptor(int descriptor) noexcept : descriptor_(descriptor) {}
  ~Descriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const noexcept { return descriptor_; }
  explicit operator bool() const noexcept { return descriptor_ >= 0; }

 private:
  int descriptor_;
};

}  // namespace rvf
