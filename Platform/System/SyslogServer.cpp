// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/SyslogServer.h"

#include <fmt/format.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <string_view>

#include "Platform/System/LogFacility.h"

namespace rvf {
namespace {

constexpr int kUserFacility = 1;

/// As `strftime` writes "%b %e %T" in the C locale, which this process may have left.
std::string timeText(time_t time) {
  constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  tm local{};
  ::localtime_r(&time, &local);
  return fmt::format("{} {:2} {:02}:{:02}:{:02}", kMonths[static_cast<std::size_t>(local.tm_mon)],
                     local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

std::string withoutNULs(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  for (const char byte : text)
    byte == '\0' ? line += "#000" : line += byte;
  return line;
}

std::string lineOf(const LogMessage& message) {
  const int facility = logFacilityNumber(message.facility).value_or(kUserFacility);
  return withoutNULs(fmt::format("<{}>{} {}[{}]: {}", facility * 8 + message.level,
                                 timeText(::time(nullptr)), message.sender, ::getpid(),
                                 message.text));
}

}  // namespace

std::unique_ptr<LogServer> SyslogServer::listeningAt(const std::string& path) {
  for (const int type : {SOCK_DGRAM, SOCK_STREAM}) {
    if (auto socket = LogSocket::connectedTo(path, type)) {
      return std::make_unique<SyslogServer>(std::move(*socket), type == SOCK_STREAM);
    }
  }
  return nullptr;
}

LogDelivery SyslogServer::send(const LogMessage& message) {
  std::string line = lineOf(message);
  if (isStream_) line += '\0';
  return logDelivery(socket_.send(line));
}

}  // namespace rvf
