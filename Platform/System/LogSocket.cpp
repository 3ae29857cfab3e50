// SPDX-License-Identifier: Apache-2.0
#include "Platform/System/LogSocket.h"

#include <errno.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <utility>

namespace rvf {
namespace {

constexpr timeval kPatience{1, 0};

std::optional<sockaddr_un> socketAddress(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof(address.sun_path)) return std::nullopt;
  path.copy(address.sun_path, path.size());
  return address;
}

}  // namespace

std::optional<LogSocket> LogSocket::connectedTo(const std::string& path, int type) {
  const auto address = socketAddress(path);
  if (!address) return std::nullopt;
  LogSocket socket(::socket(AF_UNIX, type | SOCK_CLOEXEC, 0));
  if (socket.descriptor_ < 0) return std::nullopt;
  ::setsockopt(socket.descriptor_, SOL_SOCKET, SO_SNDTIMEO, &kPatience, sizeof(kPatience));
  const auto* const name = reinterpret_cast<const sockaddr*>(&*address);
  while (::connect(socket.descriptor_, name, sizeof(*address)) != 0)
    if (errno != EINTR) return std::nullopt;  // it is while a stream's server has no room yet
  return socket;
}

LogSocket::LogSocket(LogSocket&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

LogSocket::~LogSocket() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

int LogSocket::send(std::string_view bytes) const {
  const std::size_t size = bytes.size();
  while (!bytes.empty()) {
    const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    } else if (errno != EINTR) {
      return bytes.size() == size ? errno : ECONNRESET;
    }
  }
  return 0;
}

int LogSocket::sendDescriptor(int file) const {
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
  msghdr message{};
  message.msg_control = control.data();
  message.msg_controllen = control.size();
  cmsghdr* const header = CMSG_FIRSTHDR(&message);
  header->cmsg_level = SOL_SOCKET;
  header->cmsg_type = SCM_RIGHTS;
  header->cmsg_len = CMSG_LEN(sizeof(file));
  std::memcpy(CMSG_DATA(header), &file, sizeof(file));
  for (;;) {
    if (::sendmsg(descriptor_, &message, MSG_NOSIGNAL) >= 0) return 0;
    if (errno != EINTR) return errno;
  }
}

LogDelivery logDelivery(int error) {
  switch (error) {
    case 0:
      return LogDelivery::taken;
    case EAGAIN:
    case EMSGSIZE:
    case ENOBUFS:
    case ENOMEM:
      return LogDelivery::refused;
    default:
      return LogDelivery::serverGone;
  }
}

}  // namespace rvf
