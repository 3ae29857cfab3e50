// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/SystemLogClient.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "Platform/System/JournalServer.h"
#include "Platform/System/SyslogServer.h"
#include "Platform/Text/NSLog.h"

namespace rvf {
namespace {

constexpr int kMostSevere = 0;
constexpr int kLeastSevere = 7;
constexpr int kMaskOfNewClient = 0x3f;  // up to notice

std::string withSinglePercentSigns(std::string_view format) {
  std::string text;
  text.reserve(format.size());
  for (std::size_t i = 0; i < format.size(); ++i) {
    text += format[i];
    if (format.substr(i, 2) == "%%") ++i;
  }
  return text;
}

}  // namespace

SystemLogClient::SystemLogClient(std::string name, std::string facility, std::uint32_t options,
                                 SystemLogSockets sockets)
    : name_(std::move(name)),
      facility_(std::move(facility)),
      sockets_(std::move(sockets)),
      isCopied_((options & ASL_OPT_STDERR) != 0),
      mask_(kMaskOfNewClient) {
  connect();
}

int SystemLogClient::setFilter(int mask) noexcept {
  return std::exchange(mask_, mask);
}

bool SystemLogClient::log(int level, std::string_view format) {
  const int severity = std::clamp(level, kMostSevere, kLeastSevere);
  const bool isAdmitted = (mask_ & (1 << severity)) != 0;
  if (!isAdmitted && !isCopied_) return true;
  const std::string text = withSinglePercentSigns(format);
  if (isCopied_) copyToStandardError(text);
  if (!isAdmitted) return true;
  const LogDelivery delivery = deliver({name_, facility_, severity, text});
  return delivery == LogDelivery::taken || (delivery == LogDelivery::serverGone && isCopied_);
}

void SystemLogClient::connect() {
  server_ = JournalServer::listeningAt(sockets_.journal);
  if (!server_) server_ = SyslogServer::listeningAt(sockets_.syslog);
}

LogDelivery SystemLogClient::deliver(const LogMessage& message) {
  LogDelivery delivery = server_ ? server_->send(message) : LogDelivery::serverGone;
  if (delivery == LogDelivery::serverGone) {
    connect();  // it was restarted, or another has taken its place
    delivery = server_ ? server_->send(message) : LogDelivery::serverGone;
  }
  return delivery;
}

void SystemLogClient::copyToStandardError(std::string_view text) const {
  logLine(name_ + "[" + std::to_string(::getpid()) + "]: " + std::string(text));
}

}  // namespace rvf
