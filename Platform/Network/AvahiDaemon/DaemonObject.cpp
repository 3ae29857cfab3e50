// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/DaemonObject.h"

#include <utility>

#include "Platform/Network/AvahiDaemon/AvahiError.h"

namespace rvf {
namespace {

/// Answers whether the reply is an error, and reports it.
bool reportError(sd_bus_message& reply, const DaemonObject::Events& events) {
  if (sd_bus_message_is_method_error(&reply, nullptr) <= 0) return false;
  const sd_bus_error* const error = sd_bus_message_get_error(&reply);
  const auto failed = events.failed;
  if (failed) failed(errorForAvahiName(error->name));
  return true;
}

}  // namespace

DaemonObject::DaemonObject(AvahiDaemon& daemon, const char* interface, BusMessage make,
                           Events events)
    : core_(std::make_shared<Core>(
          Core{daemon, daemon.generation(), interface, "", std::move(events)})) {
  daemon.send(std::move(make),
              [core = core_](sd_bus_message& reply) { madeAnswered(core, reply); });
}

DaemonObject::~DaemonObject() {
  core_->isWanted = false;
  core_->events = {};
  if (core_->path.empty() || core_->generation != core_->daemon.generation()) return;
  core_->daemon.unroute(core_->path);
  free(*core_);
}

void DaemonObject::free(const Core& core) {
  core.daemon.send(core.daemon.newCall(core.path, core.interface, "Free"));
}

void DaemonObject::madeAnswered(const std::shared_ptr<Core>& core, sd_bus_message& reply) {
  const Events events = core->events;
  if (reportError(reply, events)) return;
  const char* path = nullptr;
  if (sd_bus_message_read(&reply, "o", &path) < 0) return;
  core->path = path;
  if (!core->isWanted) return free(*core);
  core->daemon.route(core->path, events.signal);
  if (events.made) events.made();
}

BusMessage DaemonObject::newCall(const char* member) const {
  return core_->daemon.newCall(core_->path, core_->interface, member);
}

void DaemonObject::send(BusMessage call) {
  core_->daemon.send(std::move(call), [weak = std::weak_ptr(core_)](sd_bus_message& reply) {
    const auto core = weak.lock();
    if (!core || !core->isWanted) return;
    const Events events = core->events;
    reportError(reply, events);
  });
}

}  // namespace rvf
