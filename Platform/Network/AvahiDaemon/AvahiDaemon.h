// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Network/AvahiDaemon/SystemBus.h"
#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

class DaemonActivity;

/// What can be asked of the daemon.
enum class DaemonState {
  absent,       ///< no bus, no daemon, or one that is still starting
  registering,  ///< lookups; its host name is being settled, so nothing can be published
  running,      ///< everything
};

/// The machine's Avahi daemon as one thread sees it, over one bus connection that all activities
/// of the thread share (`org.freedesktop.Avahi.Server2`). The connection is made for the first of
/// them and goes with the last.
///
/// A daemon or a bus that goes away is waited for, for as long as there are activities, and each
/// of them is told of every change of state. Calls go to the daemon's unique bus name: they can
/// neither start an installed daemon nor reach another one than they were meant for.
class AvahiDaemon final : public std::enable_shared_from_this<AvahiDaemon> {
 public:
  using Handler = SystemBus::Handler;

  static constexpr const char* kServerPath = "/";
  static constexpr const char* kServerInterface = "org.freedesktop.Avahi.Server2";

  static std::shared_ptr<AvahiDaemon> forCurrentThread();
  ~AvahiDaemon();

  DaemonState state() const noexcept { return state_; }
  /// Counts the daemons: what one has made means nothing to the next.
  std::uint64_t generation() const noexcept { return generation_; }
  /// Tells the activity of every change from now on, for as long as it exists.
  void addActivity(std::weak_ptr<DaemonActivity> activity);

  /// A call to the daemon with its arguments, types as `sd_bus_message_append` takes them. Texts
  /// must be sendable. Null if there is no daemon.
  template <class... Arguments>
  BusMessage newCall(const std::string& path, const char* interface, const char* member,
                     const char* types, Arguments... arguments) const {
    BusMessage call = newCall(path, interface, member);
    if (call) sd_bus_message_append(call.get(), types, arguments...);
    return call;
  }
  BusMessage newCall(const std::string& path, const char* interface, const char* member) const;

  /// Makes the call. `reply` gets the daemon's answer, or its error; it is dropped when the daemon
  /// goes before. Without it no answer is asked for.
  void send(BusMessage call, Handler reply = nullptr);

  /// Hands the signals of one of the daemon's objects to `handler` until `unroute`.
  void route(const std::string& path, Handler handler);
  void unroute(const std::string& path);

 private:
  AvahiDaemon() = default;

  void connect();
  void busLost();
  void busSend(BusMessage call, void (AvahiDaemon::*reply)(sd_bus_message&));
  void addMatch(const char* rule);
  void askForOwner();
  void matchAdded(sd_bus_message& reply);
  void ownerAnswered(sd_bus_message& reply);
  void ownerChanged(sd_bus_message& signal);
  void setOwner(std::string owner);
  void serverStateAnswered(sd_bus_message& reply);
  void serverStateChanged(int serverState);
  void signalArrived(sd_bus_message& signal);
  void distrust();
  void retryLater(void (AvahiDaemon::*attempt)());
  void enter(DaemonState state);

  DaemonState state_ = DaemonState::absent;
  std::shared_ptr<SystemBus> bus_;
  std::string owner_;  ///< the daemon's unique bus name; empty: none
  std::uint64_t generation_ = 0;
  std::vector<std::weak_ptr<DaemonActivity>> activities_;
  std::map<std::string, std::shared_ptr<Handler>, std::less<>> routes_;
  std::unique_ptr<RunLoopSource> retry_;
  double retryDelaySeconds_ = 0;
};

}  // namespace rvf
