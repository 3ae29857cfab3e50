// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/AvahiDaemon.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "Platform/Network/AvahiDaemon/AvahiError.h"
#include "Platform/Network/AvahiDaemon/DaemonActivity.h"

namespace rvf {
namespace {

constexpr const char* kDaemonName = "org.freedesktop.Avahi";
/// The daemon sends its state under its older interface only.
constexpr std::string_view kStateInterface = "org.freedesktop.Avahi.Server";
constexpr const char* kBusName = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";

constexpr const char* kOwnerRule =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
    "member='NameOwnerChanged',arg0='org.freedesktop.Avahi'";
constexpr const char* kStateRule =
    "type='signal',sender='org.freedesktop.Avahi',interface='org.freedesktop.Avahi.Server',"
    "member='StateChanged',path='/'";

constexpr double kFirstRetrySeconds = 0.25;
constexpr double kLongestRetrySeconds = 5;

/// `AvahiServerState` as it goes over the bus.
enum ServerState { kRegistering = 1, kRunning = 2, kCollision = 3 };

std::string_view text(const char* value) {
  return value == nullptr ? std::string_view() : std::string_view(value);
}

bool isError(sd_bus_message& reply) {
  return sd_bus_message_is_method_error(&reply, nullptr) > 0;
}

std::string_view errorName(sd_bus_message& reply) {
  const sd_bus_error* const error = sd_bus_message_get_error(&reply);
  return error == nullptr ? std::string_view() : text(error->name);
}

}  // namespace

std::shared_ptr<AvahiDaemon> AvahiDaemon::forCurrentThread() {
  static thread_local std::weak_ptr<AvahiDaemon> current;
  std::shared_ptr<AvahiDaemon> daemon = current.lock();
  if (!daemon) {
    daemon.reset(new AvahiDaemon);
    current = daemon;
    daemon->connect();
  }
  return daemon;
}

AvahiDaemon::~AvahiDaemon() {
  if (bus_) bus_->close();  // also when one of its handlers is running
}

void AvahiDaemon::addActivity(std::weak_ptr<DaemonActivity> activity) {
  std::erase_if(activities_, [](const auto& known) { return known.expired(); });
  activities_.push_back(std::move(activity));
}

// The bus

void AvahiDaemon::connect() {
  const std::weak_ptr<AvahiDaemon> weak = weak_from_this();
  SystemBus::Events events;
  events.signal = [weak](sd_bus_message& signal) {
    if (const auto self = weak.lock()) self->signalArrived(signal);
  };
  events.lost = [weak] {
    if (const auto self = weak.lock()) self->busLost();
  };
  bus_ = SystemBus::open(std::move(events));
  if (!bus_) return retryLater(&AvahiDaemon::connect);
  addMatch(kOwnerRule);
  addMatch(kStateRule);
  askForOwner();
}

void AvahiDaemon::busLost() {
  if (bus_) bus_->close();
  bus_.reset();
  retryLater(&AvahiDaemon::connect);
  setOwner("");
}

void AvahiDaemon::retryLater(void (AvahiDaemon::*attempt)()) {
  retryDelaySeconds_ = std::clamp(2 * retryDelaySeconds_, kFirstRetrySeconds, kLongestRetrySeconds);
  retry_ = NSRunLoop::currentRunLoop()->scheduleTimer(retryDelaySeconds_,
                                                      {std::string(NSRunLoopCommonModes)},
                                                      [this, attempt] { (this->*attempt)(); });
}

void AvahiDaemon::busSend(BusMessage call, void (AvahiDaemon::*reply)(sd_bus_message&)) {
  bus_->send(std::move(call), [weak = weak_from_this(), reply](sd_bus_message& message) {
    if (const auto self = weak.lock()) (self.get()->*reply)(message);
  });
}

void AvahiDaemon::addMatch(const char* rule) {
  BusMessage call = bus_->newCall(kBusName, kBusPath, kBusName, "AddMatch");
  if (call) sd_bus_message_append(call.get(), "s", rule);
  busSend(std::move(call), &AvahiDaemon::matchAdded);
}

/// Without its matches we would never hear of the daemon again.
void AvahiDaemon::matchAdded(sd_bus_message& reply) {
  if (isError(reply)) busLost();
}

// The daemon's owner and state

void AvahiDaemon::askForOwner() {
  if (!bus_) return;
  BusMessage call = bus_->newCall(kBusName, kBusPath, kBusName, "GetNameOwner");
  if (call) sd_bus_message_append(call.get(), "s", kDaemonName);
  busSend(std::move(call), &AvahiDaemon::ownerAnswered);
}

void AvahiDaemon::ownerAnswered(sd_bus_message& reply) {
  const char* owner = nullptr;
  if (!isError(reply)) sd_bus_message_read(&reply, "s", &owner);
  setOwner(std::string(text(owner)));
}

void AvahiDaemon::ownerChanged(sd_bus_message& signal) {
  const char* name = nullptr;
  const char* before = nullptr;
  const char* now = nullptr;
  if (sd_bus_message_read(&signal, "sss", &name, &before, &now) < 0) return;
  if (text(name) == kDaemonName) setOwner(std::string(text(now)));
}

void AvahiDaemon::setOwner(std::string owner) {
  if (owner == owner_) return;
  ++generation_;
  owner_ = std::move(owner);
  const bool isThere = !owner_.empty();
  if (isThere) {
    retry_.reset();
    send(newCall(kServerPath, kServerInterface, "GetState"),
         [this](sd_bus_message& reply) { serverStateAnswered(reply); });
  }
  enter(DaemonState::absent);
}

void AvahiDaemon::serverStateAnswered(sd_bus_message& reply) {
  int serverState = 0;
  if (isError(reply) || sd_bus_message_read(&reply, "i", &serverState) < 0) return distrust();
  retryDelaySeconds_ = 0;
  serverStateChanged(serverState);
}

/// A daemon that is starting has not joined its interfaces yet: a search would find nothing and
/// seem complete. One that settles its host name again goes on answering.
void AvahiDaemon::serverStateChanged(int serverState) {
  switch (serverState) {
    case kRunning:
      return enter(DaemonState::running);
    case kCollision:
      return enter(DaemonState::registering);
    case kRegistering:
      if (state_ != DaemonState::absent) enter(DaemonState::registering);
      return;
    default:
      return enter(DaemonState::absent);
  }
}

/// The daemon did not get a call though it should be there: starts over, as with a lost one.
void AvahiDaemon::distrust() {
  retryLater(&AvahiDaemon::askForOwner);
  setOwner("");
}

/// Every activity hears of the change, also when another one's handler throws: the first exception
/// goes on to the run loop afterwards.
void AvahiDaemon::enter(DaemonState state) {
  if (state == state_) return;
  state_ = state;
  if (state == DaemonState::absent) routes_.clear();
  std::exception_ptr thrown;
  const auto activities = activities_;
  for (const auto& weak : activities) {
    const auto activity = weak.lock();
    if (!activity) continue;
    try {
      activity->daemonChanged();
    } catch (...) {
      if (!thrown) thrown = std::current_exception();
    }
  }
  if (thrown) std::rethrow_exception(thrown);
}

// Calls and signals

BusMessage AvahiDaemon::newCall(const std::string& path, const char* interface,
                                const char* member) const {
  if (!bus_ || owner_.empty()) return nullptr;
  return bus_->newCall(owner_.c_str(), path.c_str(), interface, member);
}

void AvahiDaemon::send(BusMessage call, Handler reply) {
  if (!bus_ || owner_.empty()) return;
  if (!reply) return bus_->send(std::move(call), nullptr);
  bus_->send(std::move(call), [weak = weak_from_this(), generation = generation_,
                               reply = std::move(reply)](sd_bus_message& message) {
    const auto self = weak.lock();
    if (!self || generation != self->generation_) return;
    if (isError(message) && isTransportError(errorName(message))) return self->distrust();
    reply(message);
  });
}

void AvahiDaemon::route(const std::string& path, Handler handler) {
  routes_[path] = std::make_shared<Handler>(std::move(handler));
}

void AvahiDaemon::unroute(const std::string& path) {
  routes_.erase(path);
}

void AvahiDaemon::signalArrived(sd_bus_message& signal) {
  const std::string_view sender = text(sd_bus_message_get_sender(&signal));
  const std::string_view path = text(sd_bus_message_get_path(&signal));
  if (sender == kBusName) {
    if (sd_bus_message_is_signal(&signal, kBusName, "NameOwnerChanged") > 0) ownerChanged(signal);
  } else if (sender != owner_) {
    return;  // a former daemon's last words, or somebody else's
  } else if (text(sd_bus_message_get_interface(&signal)) == kStateInterface) {
    int serverState = 0;
    if (sd_bus_message_read(&signal, "i", &serverState) >= 0) serverStateChanged(serverState);
  } else if (const auto found = routes_.find(path); found != routes_.end()) {
    const auto handler = found->second;  // it may unroute itself
    (*handler)(signal);
  }
}

}  // namespace rvf
