// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Platform/Network/AvahiDaemon/AvahiDaemon.h"
#include "Platform/Network/NSNetServicesError.h"

namespace rvf {

/// An object that the daemon keeps for us: a browser or an entry group. Destroying it frees the
/// daemon's, also when the daemon has yet to answer that it made one.
class DaemonObject final {
 public:
  struct Events {
    /// The daemon has made it. It is silent until it is told to start.
    std::function<void()> made;
    AvahiDaemon::Handler signal;
    std::function<void(NSNetServicesError)> failed;
  };

  /// `make` is the server's call that answers the path of the new object. The daemon outlives it.
  DaemonObject(AvahiDaemon& daemon, const char* interface, BusMessage make, Events events);
  DaemonObject(const DaemonObject&) = delete;
  DaemonObject& operator=(const DaemonObject&) = delete;
  ~DaemonObject();

  /// A call to it, once it is made.
  template <class... Arguments>
  BusMessage newCall(const char* member, const char* types, Arguments... arguments) const {
    return core_->daemon.newCall(core_->path, core_->interface, member, types, arguments...);
  }
  BusMessage newCall(const char* member) const;
  /// Makes the call; an error answer is reported as failure.
  void send(BusMessage call);

 private:
  struct Core {
    AvahiDaemon& daemon;
    std::uint64_t generation;
    const char* interface;
    std::string path;
    Events events;
    bool isWanted = true;
  };

  static void madeAnswered(const std::shared_ptr<Core>& core, sd_bus_message& reply);
  static void free(const Core& core);

  std::shared_ptr<Core> core_;
};

}  // namespace rvf
