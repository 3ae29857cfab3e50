// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "Platform/System/LogServer.h"
#include "Platform/System/LogSocket.h"

namespace rvf {

/// The syslog socket, spoken to as the C library does: "<PRIORITY>TIME SENDER[PID]: TEXT"
/// (RFC 3164 without a host name), one datagram a line, or, where the server listens for a stream,
/// each line ended by a NUL. A NUL within a line is written "#000".
class SyslogServer final : public LogServer {
 public:
  /// Null if nobody listens there.
  static std::unique_ptr<LogServer> listeningAt(const std::string& path);

  SyslogServer(LogSocket&& socket, bool isStream)
      : socket_(std::move(socket)), isStream_(isStream) {}

  LogDelivery send(const LogMessage& message) override;

 private:
  const LogSocket socket_;
  const bool isStream_;
};

}  // namespace rvf
