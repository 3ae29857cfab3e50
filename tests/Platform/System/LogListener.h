// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>

#include "Platform/System/SystemLog.h"

namespace rvf {

/// A folder for the sockets of a test.
class LogFolder final {
 public:
  LogFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "rvf-log-XXXXXX").string();
    EXPECT_NE(::mkdtemp(pattern.data()), nullptr);
    path_ = pattern;
  }
  LogFolder(const LogFolder&) = delete;
  LogFolder& operator=(const LogFolder&) = delete;
  ~LogFolder() { std::filesystem::remove_all(path_); }

  SystemLogSockets sockets() const { return {path_ + "/journal", path_ + "/log"}; }

 private:
  std::string path_;
};

/// A log server that reads nothing by itself: what was sent waits in its socket.
class LogListener final {
 public:
  explicit LogListener(const std::string& path, int type = SOCK_DGRAM)
      : path_(path), socket_(::socket(AF_UNIX, type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    EXPECT_EQ(::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    EXPECT_TRUE(type != SOCK_STREAM || ::listen(socket_, 8) == 0);
  }
  LogListener(const LogListener&) = delete;
  LogListener& operator=(const LogListener&) = delete;
  /// The socket's name goes too, unless it is abandoned.
  ~LogListener() {
    ::close(socket_);
    if (!isAbandoned_) ::unlink(path_.c_str());
  }

  /// Leaves the name behind, as a server does that crashes.
  void abandon() { isAbandoned_ = true; }

  /// The next datagram; absent if there is none. Of a datagram with a file, the file's contents.
  std::optional<std::string> receive() const { return receiveFrom(socket_); }

  /// What the next connection has sent by now; absent if nobody has connected.
  std::optional<std::string> receiveStream() {
    if (connection_ < 0) connection_ = ::accept4(socket_, nullptr, nullptr, SOCK_NONBLOCK);
    return connection_ < 0 ? std::nullopt : receiveFrom(connection_);
  }
  void endConnection() {
    ::close(connection_);
    connection_ = -1;
  }

 private:
  static std::optional<std::string> receiveFrom(int socket) {
    std::string bytes(1 << 20, '\0');
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    iovec place{bytes.data(), bytes.size()};
    msghdr message{};
    message.msg_iov = &place;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    const ssize_t size = ::recvmsg(socket, &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    if (size < 0) return std::nullopt;
    if (const cmsghdr* const header = CMSG_FIRSTHDR(&message)) return contentsOf(header);
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
  }

  static std::string contentsOf(const cmsghdr* header) {
    int file = -1;
    std::memcpy(&file, CMSG_DATA(header), sizeof(file));
    const int seals = ::fcntl(file, F_GET_SEALS);
    EXPECT_EQ(seals, F_SEAL_SEAL | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE);
    const auto size = static_cast<std::size_t>(::lseek(file, 0, SEEK_END));
    std::string contents(size, '\0');
    EXPECT_EQ(::pread(file, contents.data(), size, 0), static_cast<ssize_t>(size));
    ::close(file);
    return contents;
  }

  const std::string path_;
  const int socket_;
  int connection_ = -1;
  bool isAbandoned_ = false;
};

}  // namespace rvf
