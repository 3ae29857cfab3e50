// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "Platform/System/LogServer.h"
#include "Platform/System/SystemLog.h"

namespace rvf {

/// One sender of messages: its name, its mask and its connection to a log server.
class SystemLogClient final {
 public:
  /// Connects to the first server that listens.
  SystemLogClient(std::string name, std::string facility, std::uint32_t options,
                  SystemLogSockets sockets);
  SystemLogClient(const SystemLogClient&) = delete;
  SystemLogClient& operator=(const SystemLogClient&) = delete;

  /// Whether a message has anywhere to go.
  bool isReachable() const noexcept { return server_ || isCopied_; }
  /// Answers the mask before.
  int setFilter(int mask) noexcept;
  /// As `asl_log`; true for success.
  bool log(int level, std::string_view format);

 private:
  void connect();
  LogDelivery deliver(const LogMessage& message);
  void copyToStandardError(std::string_view text) const;

  const std::string name_;
  const std::string facility_;
  const SystemLogSockets sockets_;
  const bool isCopied_;  // to standard error
  int mask_;
  std::unique_ptr<LogServer> server_;  // null while none listens
};

}  // namespace rvf
