// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <unordered_map>

#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

struct BusMessageUnref {
  void operator()(sd_bus_message* message) const noexcept { sd_bus_message_unref(message); }
};
using BusMessage = std::unique_ptr<sd_bus_message, BusMessageUnref>;

/// A connection to the system bus, driven by the run loop of the thread that opened it, in the
/// common modes.
///
/// Nothing blocks: connecting, authenticating and every call go on while the loop turns. Calls
/// may be made at once; they are sent as soon as the bus lets us in, and wait for their reply
/// without a time limit, so a stopped peer is waited for as long as it exists.
///
/// sd-bus only carries the messages: no callback is ever registered with it. Handlers are called
/// after it has returned, so they may throw, run the loop again, or close the connection.
class SystemBus final : public std::enable_shared_from_this<SystemBus> {
 public:
  using Handler = std::function<void(sd_bus_message& message)>;

  struct Events {
    /// A signal arrived, whoever sent it.
    Handler signal;
    /// The bus is gone; nothing more follows. Never called before `open` has returned.
    std::function<void()> lost;
  };

  /// Connects to the address in `DBUS_SYSTEM_BUS_ADDRESS`, else to the usual one. Null if there
  /// is nobody at the address.
  static std::shared_ptr<SystemBus> open(Events events);
  ~SystemBus();

  /// A method call to be filled in and passed to `send`; null when memory or the name are bad.
  BusMessage newCall(const char* destination, const char* path, const char* interface,
                     const char* member) const;
  /// Sends a call; `reply` gets the answer, an error reply too, on a later turn. Dropped when the
  /// bus goes. Calls are sent in order, so many at a time as the bus allows to be unanswered.
  /// Without a handler no reply is asked for, and the call overtakes those that wait.
  void send(BusMessage message, Handler reply);
  /// Drops the connection, and with it the calls that the bus has not taken yet. No handler is
  /// called any more.
  void close() noexcept;

 private:
  struct Closer {
    void operator()(sd_bus* bus) const noexcept { sd_bus_close_unref(bus); }
  };

  explicit SystemBus(Events events);

  int connect();
  enum class Progress { none, some, broken };
  struct Call {
    BusMessage message;
    Handler reply;
  };

  void pump(DescriptorEvents ready);
  Progress receive();
  void dispatch();
  void reportLoss();
  void deliver(sd_bus_message& message);
  void transmit(Call call);
  void transmitWaiting();
  void rearm();
  void rearmDescriptor();
  void rearmTimer();

  Events events_;
  std::unique_ptr<sd_bus, Closer> bus_;
  std::deque<BusMessage> inbox_;
  std::unordered_map<std::uint64_t, Handler> replies_;  ///< by the serial number of the call
  std::deque<Call> waiting_;
  std::unique_ptr<RunLoopSource> watch_;
  std::unique_ptr<RunLoopSource> timer_;
  int watchedDescriptor_ = -1;
  int watchedEvents_ = 0;
  bool isLost_ = false;
};

}  // namespace rvf
