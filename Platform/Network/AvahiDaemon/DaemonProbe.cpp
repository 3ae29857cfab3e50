// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/DaemonProbe.h"

#include <string>
#include <utility>

namespace rvf {

DaemonProbe::DaemonProbe(std::function<void(bool)> done) : done_(std::move(done)) {
  SystemBus::Events events;
  events.lost = [this] { answer(false); };
  bus_ = SystemBus::open(std::move(events));
  if (bus_) ask();
  timer_ = NSRunLoop::currentRunLoop()->scheduleTimer(
      bus_ ? kLimitSeconds : 0, {std::string(NSRunLoopCommonModes)}, [this] { answer(false); });
}

DaemonProbe::~DaemonProbe() {
  if (bus_) bus_->close();  // its handlers refer to this
}

void DaemonProbe::ask() {
  BusMessage call = bus_->newCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                  "org.freedesktop.DBus", "NameHasOwner");
  if (call) sd_bus_message_append(call.get(), "s", "org.freedesktop.Avahi");
  bus_->send(std::move(call), [this](sd_bus_message& reply) {
    int isThere = 0;
    if (sd_bus_message_is_method_error(&reply, nullptr) > 0 ||
        sd_bus_message_read(&reply, "b", &isThere) < 0) {
      isThere = 0;
    }
    answer(isThere != 0);
  });
}

void DaemonProbe::answer(bool isThere) {
  timer_.reset();
  if (bus_) bus_->close();
  const auto done = std::exchange(done_, nullptr);
  if (done) done(isThere);
}

}  // namespace rvf
