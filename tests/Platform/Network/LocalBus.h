// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace rvf {

/// Points this process to another system bus while it lives.
class BusAddress {
 public:
  explicit BusAddress(const std::string& address) {
    if (const char* const before = std::getenv(kName)) before_ = before;
    setenv(kName, address.c_str(), 1);
  }
  BusAddress(const BusAddress&) = delete;
  BusAddress& operator=(const BusAddress&) = delete;
  ~BusAddress() { before_.empty() ? unsetenv(kName) : setenv(kName, before_.c_str(), 1); }

 private:
  static constexpr const char* kName = "DBUS_SYSTEM_BUS_ADDRESS";
  std::string before_;
};

/// Somebody who listens at a bus address, lets callers in and says nothing.
class SilentBus {
 public:
  SilentBus() : path_(std::filesystem::temp_directory_path() / ("bus" + std::to_string(getpid()))) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path_.string().copy(address.sun_path, sizeof(address.sun_path) - 1);
    unlink(path_.c_str());
    bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    if (listen(socket_, 4) != 0) throw std::runtime_error("cannot listen at " + path_.string());
  }
  SilentBus(const SilentBus&) = delete;
  SilentBus& operator=(const SilentBus&) = delete;
  ~SilentBus() {
    close(socket_);
    unlink(path_.c_str());
  }
  int descriptor() const { return socket_; }
  std::string address() const { return "unix:path=" + path_.string(); }

 private:
  std::filesystem::path path_;
  int socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

}  // namespace rvf
