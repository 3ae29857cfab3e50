// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/JournalServer.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>

#include "Platform/Runtime/ScopeExit.h"
#include "Platform/System/LogFacility.h"

namespace rvf {
namespace {

/// A value of several lines is preceded by its length instead of "=".
void appendField(std::string& entry, std::string_view name, std::string_view value) {
  entry += name;
  if (value.find('\n') == std::string_view::npos) {
    entry += '=';
  } else {
    entry += '\n';
    for (std::uint64_t shift = 0; shift < 64; shift += 8)
      entry += static_cast<char>(std::uint64_t{value.size()} >> shift & 0xff);
  }
  entry += value;
  entry += '\n';
}

std::string entryOf(const LogMessage& message) {
  std::string entry;
  entry.reserve(message.text.size() + message.sender.size() + message.facility.size() + 128);
  appendField(entry, "MESSAGE", message.text);
  appendField(entry, "PRIORITY", std::to_string(message.level));
  appendField(entry, "SYSLOG_IDENTIFIER", message.sender);
  if (const auto facility = logFacilityNumber(message.facility)) {
    appendField(entry, "SYSLOG_FACILITY", std::to_string(*facility));
  } else {
    appendField(entry, "FACILITY", message.facility);
  }
  return entry;
}

bool writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) return false;
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

std::unique_ptr<LogServer> JournalServer::listeningAt(const std::string& path) {
  auto socket = LogSocket::connectedTo(path, SOCK_DGRAM);
  return socket ? std::make_unique<JournalServer>(std::move(*socket)) : nullptr;
}

LogDelivery JournalServer::send(const LogMessage& message) {
  const std::string entry = entryOf(message);
  int error = socket_.send(entry);
  if (error == EMSGSIZE || error == ENOBUFS) error = sendAsFile(entry);
  return logDelivery(error);
}

int JournalServer::sendAsFile(std::string_view entry) const {
  const int file = ::memfd_create("journal entry", MFD_CLOEXEC | MFD_ALLOW_SEALING);
  if (file < 0) return ENOMEM;
  const ScopeExit closed([file] { ::close(file); });
  // journald maps the file, so it takes none that could still change.
  constexpr int kSeals = F_SEAL_SEAL | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE;
  if (!writeAll(file, entry) || ::fcntl(file, F_ADD_SEALS, kSeals) != 0) return ENOMEM;
  return socket_.sendDescriptor(file);
}

}  // namespace rvf
