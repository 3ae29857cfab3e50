// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/System/LogServer.h"

namespace rvf {

/// A connected socket of the file system. Waits at most a second for a server that is slow.
class LogSocket final {
 public:
  /// Connects, so that it is known whether anybody listens; absent if nobody does, or not with this
  /// type of socket.
  static std::optional<LogSocket> connectedTo(const std::string& path, int type);

  LogSocket(LogSocket&& other) noexcept;
  LogSocket& operator=(LogSocket&&) = delete;
  ~LogSocket();

  /// Sends all bytes. 0 or an `errno` value; ECONNRESET also for a stream that broke off within
  /// the bytes and is of no more use.
  int send(std::string_view bytes) const;
  /// Sends the other side a descriptor of its own for an open file. 0 or an `errno` value.
  int sendDescriptor(int file) const;

 private:
  explicit LogSocket(int descriptor) noexcept : descriptor_(descriptor) {}

  int descriptor_;
};

/// What the result of a send means for the message.
LogDelivery logDelivery(int error);

}  // namespace rvf
