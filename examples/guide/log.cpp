// SPDX-License-Identifier: Apache-2.0
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include "RVFoundation/CoreServices/RVFLogger.h"

using namespace rvf;

namespace {

/// A syslog socket in a folder of its own, so that the example leaves no line in the machine's log.
class Syslog final {
 public:
  Syslog() {
    if (!::mkdtemp(folder_.data())) return;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(static_cast<char*>(address.sun_path), path().c_str(), path().size() + 1);
    isOpen_ = ::bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }
  Syslog(const Syslog&) = delete;
  Syslog& operator=(const Syslog&) = delete;
  ~Syslog() {
    ::close(descriptor_);
    ::unlink(path().c_str());
    ::rmdir(folder_.c_str());
  }

  bool isOpen() const noexcept { return isOpen_; }
  std::string path() const { return folder_ + "/log"; }

  /// The next message without its time and sender: "<134>… till[1]: text" as "<134> text".
  std::string nextMessage() const {
    std::array<char, 1024> bytes{};
    const auto length = ::recv(descriptor_, bytes.data(), bytes.size(), 0);
    const std::string line(bytes.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    return line.substr(0, line.find('>') + 1) + line.substr(line.find("]: ") + 2);
  }

 private:
  std::string folder_ = "/tmp/guide-log-XXXXXX";
  const int descriptor_ = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  bool isOpen_ = false;
};

}  // namespace

int main() {
  const Syslog syslog;
  if (!syslog.isOpen()) return 1;
  const SystemLogSockets sockets{"/nonexistent", syslog.path()};

  const auto logger = std::make_shared<RVFLogger>();
  logger->startLoggingUsingName("till", "local0", 0, sockets);
  logger->setTresholdLevel(6);
  logger->logOfLevel(6, "%d %% discount on %@", 5, "tea");
  logger->logOfLevel(7, "%d lines", 40);  // held back
  logger->logOfLevel(4, "drawer open");
  std::cout << syslog.nextMessage() << '\n' << syslog.nextMessage() << '\n';

  logger->startLoggingUsingName("till", "local0", 0, {"/nonexistent", "/nonexistent"});
  std::cout << (logger->logOfLevel(4, "drawer open") ? "written" : "no log") << '\n';
}
