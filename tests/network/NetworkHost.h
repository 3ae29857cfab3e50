// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "tests/network/Process.h"

namespace rvf::network {

/// A host of its own: a network namespace, and on request a private system bus with an Avahi
/// daemon. It and everything that runs in it end with their owner.
///
/// Making one takes root and the programs of iproute2, for the daemon also dbus-daemon and
/// avahi-daemon; without them it throws, saying what is missing.
class NetworkHost {
 public:
  /// `label` tells the hosts of one test apart: "a", "b".
  explicit NetworkHost(const std::string& label);
  ~NetworkHost();
  NetworkHost(const NetworkHost&) = delete;
  NetworkHost& operator=(const NetworkHost&) = delete;

  /// Joins two hosts by a link, named alike on both sides: `10.99.SUBNET.1/24` on this side and
  /// `10.99.SUBNET.2/24` on the other, and link-local IPv6 addresses.
  void connect(NetworkHost& other, int subnet);
  /// "v0" for subnet 0.
  static std::string linkName(int subnet) { return "v" + std::to_string(subnet); }
  void setLink(const std::string& name, bool isUp);
  /// With the length of its prefix: "fd99::1/64".
  void addAddress(const std::string& link, const std::string& address);
  void removeAddress(const std::string& link, const std::string& address);
  int interfaceIndex(const std::string& link) const;

  /// A domain that the daemon, started afterwards, tells everybody to browse besides "local".
  void setBrowseDomain(const std::string& domain) { browseDomain_ = domain; }
  /// Starts a bus that nobody is on.
  void startBus();
  /// Starts the daemon, and the bus if there is none, and returns when the daemon answers.
  void startDaemon();
  /// The two halves of that, for starting several daemons at a time.
  void launchDaemon();
  void awaitDaemon();
  /// Ends the daemon with this signal; its bus stays.
  void endDaemon(int signal);
  /// Ends the bus, and with it the daemon.
  void endBus(int signal);
  /// Sends a signal that does not end it, `SIGSTOP` or `SIGCONT`.
  void signalDaemon(int signal) { daemon_->kill(signal); }
  void signalBus(int signal) { bus_->kill(signal); }
  bool hasDaemon() const { return daemon_ != nullptr; }

  /// What the daemon has written so far.
  std::string daemonLog() const;

  /// The arguments of a program, as needed to run it inside the host, and its environment there.
  Arguments inside(const Arguments& program) const;
  Environment environment() const;
  /// A file that goes with the host.
  std::filesystem::path file(const std::string& name) const { return folder_ / name; }

 private:
  void configureLink(int subnet, int side);

  std::string name_;
  std::string browseDomain_;
  std::filesystem::path folder_;
  std::unique_ptr<Process> bus_;
  std::unique_ptr<Process> daemon_;
};

}  // namespace rvf::network
