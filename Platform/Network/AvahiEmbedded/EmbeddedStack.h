// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Platform/Network/AvahiEmbedded/AvahiHandles.h"
#include "Platform/Network/AvahiEmbedded/ClockStepWatch.h"
#include "Platform/Network/AvahiEmbedded/HostAddresses.h"
#include "Platform/Network/AvahiEmbedded/HostRecords.h"
#include "Platform/Network/AvahiEmbedded/RunLoopPoll.h"
#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

/// One multicast DNS stack (libavahi-core) on the run loop of the thread that makes it.
///
/// The stack has a host name of its own, which no other can have, so it lives beside a daemon and
/// other stacks on the same machine without conflicts. When it fails, cannot start, or the wall
/// clock is set, on which its timers depend, it is made anew and its clients with it.
class EmbeddedStack final {
 public:
  /// Something that uses the server as long as there is one.
  class Client {
   public:
    virtual void attach(AvahiServer& server) = 0;
    /// The server is about to go. Whatever came from it must be freed.
    virtual void detach() = 0;

   protected:
    ~Client() = default;
  };

  EmbeddedStack();
  ~EmbeddedStack();
  EmbeddedStack(const EmbeddedStack&) = delete;
  EmbeddedStack& operator=(const EmbeddedStack&) = delete;

  /// Attaches the client at once if the server runs. Clients remove themselves before they end.
  void add(Client& client);
  void remove(Client& client);

  /// False while it waits to start again.
  bool isRunning() const noexcept { return server_ != nullptr; }
  /// The host that publications point to, "NAME.local", without a final dot.
  const std::string& hostName() const noexcept { return hostName_; }

 private:
  static void serverStateChanged(AvahiServer* server, AvahiServerState state, void* stack) noexcept;
  void start();
  void end();
  void restart();
  void startLater();

  std::string hostLabel_;
  std::string hostName_;
  RunLoopPoll poll_;
  std::vector<Client*> clients_;
  double retrySeconds_;
  std::unique_ptr<RunLoopSource> retryTimer_;
  AvahiHandle<AvahiServer> server_;
  std::unique_ptr<HostRecords> hostRecords_;
  ClockStepWatch clockWatch_;
  HostAddressWatch addressWatch_;
};

}  // namespace rvf
