// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace rvf {

/// A descriptor that any thread makes readable, to end the wait of an event loop.
///
/// libuv has the same as `uv_async_t`, whose receiver spins while a sender that was interrupted in
/// the middle has not gone on: on one processor, that is whenever the receiver has the higher
/// claim to it.
class WakeUp final {
 public:
  /// Throws `std::system_error` if the process has no descriptor left.
  WakeUp();
  WakeUp(const WakeUp&) = delete;
  WakeUp& operator=(const WakeUp&) = delete;
  ~WakeUp();

  /// Readable when it was sent since it was last received.
  int descriptor() const { return descriptor_; }
  /// Any thread.
  void send() noexcept;
  void receive() noexcept;

 private:
  int descriptor_;
};

}  // namespace rvf
