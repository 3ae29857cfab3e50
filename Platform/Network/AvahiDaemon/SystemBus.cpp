// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/SystemBus.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <string>
#include <utility>

#include "Platform/Runtime/ScopeExit.h"

namespace rvf {
namespace {

constexpr const char* kUsualAddress = "unix:path=/run/dbus/system_bus_socket";
/// Messages taken in one turn, so that a flood leaves room for the loop's other items.
constexpr std::size_t kBatchSize = 64;
/// The bus refuses further calls of a connection that waits for 128 replies.
constexpr std::size_t kMostUnanswered = 96;

const char* systemBusAddress() {
  const char* const address = secure_getenv("DBUS_SYSTEM_BUS_ADDRESS");
  return address != nullptr && *address != '\0' ? address : kUsualAddress;
}

/// The delay until a moment on the monotonic clock, in seconds.
double secondsUntil(std::uint64_t monotonicMicroseconds) {
  const auto moment =
      std::chrono::steady_clock::time_point(std::chrono::microseconds(monotonicMicroseconds));
  return std::chrono::duration<double>(moment - std::chrono::steady_clock::now()).count();
}

}  // namespace

std::shared_ptr<SystemBus> SystemBus::open(Events events) {
  std::shared_ptr<SystemBus> bus(new SystemBus(std::move(events)));
  if (bus->connect() < 0) return nullptr;
  bus->rearm();
  return bus;
}

SystemBus::SystemBus(Events events) : events_(std::move(events)) {}

SystemBus::~SystemBus() {
  close();
}

int SystemBus::connect() {
  sd_bus* bus = nullptr;
  int result = sd_bus_new(&bus);
  if (result < 0) return result;
  bus_.reset(bus);
  if ((result = sd_bus_set_address(bus, systemBusAddress())) < 0) return result;
  if ((result = sd_bus_set_bus_client(bus, 1)) < 0) return result;
  if ((result = sd_bus_set_trusted(bus, 0)) < 0) return result;
  if ((result = sd_bus_negotiate_fds(bus, 0)) < 0) return result;
  return sd_bus_start(bus);
}

void SystemBus::close() noexcept {
  watch_.reset();
  timer_.reset();
  bus_.reset();
}

BusMessage SystemBus::newCall(const char* destination, const char* path, const char* interface,
                              const char* member) const {
  sd_bus_message* message = nullptr;
  if (!bus_) return nullptr;
  sd_bus_message_new_method_call(bus_.get(), &message, destination, path, interface, member);
  return BusMessage(message);
}

void SystemBus::send(BusMessage message, Handler reply) {
  if (!bus_ || isLost_) return;
  Call call{std::move(message), std::move(reply)};
  if (call.reply) {
    waiting_.push_back(std::move(call));
    transmitWaiting();
  } else {
    transmit(std::move(call));
  }
  rearm();
}

void SystemBus::transmitWaiting() {
  while (!waiting_.empty() && replies_.size() < kMostUnanswered) {
    Call call = std::move(waiting_.front());
    waiting_.pop_front();
    transmit(std::move(call));
  }
}

void SystemBus::transmit(Call call) {
  std::uint64_t serial = 0;
  const int result =
      call.message ? sd_bus_send(bus_.get(), call.message.get(), call.reply ? &serial : nullptr)
                   : -ENOMEM;
  if (result < 0) {
    isLost_ = true;  // a full queue, or a connection that just broke
  } else if (call.reply) {
    replies_.emplace(serial, std::move(call.reply));
  }
}

/// A hang-up that sd-bus takes no notice of would be reported for ever: it is a loss too.
void SystemBus::pump(DescriptorEvents ready) {
  const auto self = shared_from_this();  // a handler may drop the last reference
  const ScopeExit rearmed([this] { rearm(); });
  const Progress progress = isLost_ ? Progress::broken : receive();
  const bool hungUp = ready.hangUp || ready.error;
  isLost_ = progress == Progress::broken || (hungUp && progress == Progress::none);
  rearm();  // now, because a handler may run the loop again
  dispatch();
  if (bus_ && isLost_ && inbox_.empty()) reportLoss();
}

void SystemBus::reportLoss() {
  close();
  replies_.clear();
  waiting_.clear();
  const auto lost = events_.lost;
  if (lost) lost();
}

/// Takes a batch of messages in.
SystemBus::Progress SystemBus::receive() {
  Progress progress = Progress::none;
  for (std::size_t count = 0; count < kBatchSize; ++count) {
    sd_bus_message* message = nullptr;
    const int result = sd_bus_process(bus_.get(), &message);
    if (message != nullptr) inbox_.emplace_back(message);
    if (result < 0) return Progress::broken;
    if (result == 0) break;
    progress = Progress::some;
  }
  return progress;
}

void SystemBus::dispatch() {
  while (bus_ && !inbox_.empty()) {
    const BusMessage message = std::move(inbox_.front());
    inbox_.pop_front();
    deliver(*message);
  }
}

void SystemBus::deliver(sd_bus_message& message) {
  std::uint64_t serial = 0;
  if (sd_bus_message_get_reply_cookie(&message, &serial) >= 0) {
    auto reply = replies_.extract(serial);
    transmitWaiting();
    if (reply) reply.mapped()(message);
  } else if (sd_bus_message_is_signal(&message, nullptr, nullptr) > 0) {
    const Handler signal = events_.signal;
    if (signal) signal(message);
  } else {
    sd_bus_reply_method_errorf(&message, SD_BUS_ERROR_UNKNOWN_METHOD, "No such method");
  }
}

void SystemBus::rearm() {
  if (!bus_) return;
  rearmDescriptor();
  rearmTimer();
}

/// Before the bus is ready sd-bus may try one address after the other, and a new descriptor may
/// bear the number of the one before: the watch is made anew each time.
void SystemBus::rearmDescriptor() {
  const int descriptor = sd_bus_get_fd(bus_.get());
  const int events = sd_bus_get_events(bus_.get());
  if (isLost_ || descriptor < 0 || events < 0) {
    watch_.reset();
    isLost_ = true;
    return;
  }
  const bool isReady = sd_bus_is_ready(bus_.get()) > 0;
  if (watch_ && isReady && descriptor == watchedDescriptor_ && events == watchedEvents_) return;
  watch_.reset();
  DescriptorEvents wanted;
  wanted.readable = (events & POLLIN) != 0;
  wanted.writable = (events & POLLOUT) != 0;
  watch_ = NSRunLoop::currentRunLoop()->watchDescriptor(
      descriptor, wanted, {std::string(NSRunLoopCommonModes)},
      [this](DescriptorEvents ready) { pump(ready); });
  watchedDescriptor_ = descriptor;
  watchedEvents_ = events;
}

/// The time-outs of the way in, and what was read already but not handed over.
void SystemBus::rearmTimer() {
  std::uint64_t moment = UINT64_MAX;
  timer_.reset();
  if (isLost_ || !inbox_.empty()) {
    moment = 0;
  } else if (sd_bus_get_timeout(bus_.get(), &moment) < 0 || moment == UINT64_MAX) {
    return;
  }
  timer_ = NSRunLoop::currentRunLoop()->scheduleTimer(std::max(0.0, secondsUntil(moment)),
                                                      {std::string(NSRunLoopCommonModes)},
                                                      [this] { pump({}); });
}

}  // namespace rvf
