// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace rvf {

/// What a log server is told. Refers to texts that live as long as the call.
struct LogMessage {
  std::string_view sender;
  std::string_view facility;
  int level;
  std::string_view text;
};

enum class LogDelivery {
  taken,
  refused,     ///< the server is there, and does not take this message
  serverGone,  ///< nobody listens any more at the other end of this connection
};

/// A connection to a server of the system log.
class LogServer {
 public:
  LogServer() = default;
  LogServer(const LogServer&) = delete;
  LogServer& operator=(const LogServer&) = delete;
  virtual ~LogServer() = default;

  virtual LogDelivery send(const LogMessage& message) = 0;
};

}  // namespace rvf
