// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/System/LogServer.h"
#include "Platform/System/LogSocket.h"

namespace rvf {

/// journald, spoken to in its own protocol (https://systemd.io/JOURNAL_NATIVE_PROTOCOL): one
/// datagram a message, and for messages too long for that a sealed file in memory.
class JournalServer final : public LogServer {
 public:
  /// Null if nobody listens there.
  static std::unique_ptr<LogServer> listeningAt(const std::string& path);

  explicit JournalServer(LogSocket&& socket) : socket_(std::move(socket)) {}

  LogDelivery send(const LogMessage& message) override;

 private:
  int sendAsFile(std::string_view entry) const;

  const LogSocket socket_;
};

}  // namespace rvf
