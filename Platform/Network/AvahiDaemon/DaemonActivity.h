// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "Platform/Network/AvahiDaemon/AvahiDaemon.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

/// What all that is done with the daemon has in common: it begins when the daemon can do it, loses
/// everything when the daemon goes, begins again when it is back, and never calls out after its
/// end.
class DaemonActivity : public std::enable_shared_from_this<DaemonActivity> {
 public:
  DaemonActivity(const DaemonActivity&) = delete;
  DaemonActivity& operator=(const DaemonActivity&) = delete;
  virtual ~DaemonActivity();

  /// Begins now or when the daemon is there. Nothing is reported before it returns.
  void start();
  /// Ends it for ever; the daemon forgets about it.
  void end();
  /// The daemon came, went, or can do more or less than before.
  void daemonChanged();

 protected:
  DaemonActivity();

  AvahiDaemon& daemon() { return *daemon_; }
  bool isEnded() const noexcept { return !daemon_; }

  /// The handler, wrapped so that it is skipped after the end, and this object survives it.
  template <class Handler>
  auto whileAlive(Handler handler) {
    return [weak = weak_from_this(), handler = std::move(handler)](auto&&... arguments) {
      const auto self = weak.lock();
      if (self && !self->isEnded()) handler(std::forward<decltype(arguments)>(arguments)...);
    };
  }

  /// Ends the activity and reports why.
  void fail(NSNetServicesError error);
  /// The same on a later turn of the run loop.
  void failLater(NSNetServicesError error);

  /// Whether the request can be sent to the daemon at all.
  virtual bool isAskable() const = 0;
  virtual bool canWork(DaemonState state) const;
  /// Makes the daemon's objects. Called anew after every `drop`.
  virtual void begin() = 0;
  /// Frees the daemon's objects, which are gone if the daemon is.
  virtual void drop() = 0;
  /// The daemon was lost, after `drop`.
  virtual void interrupted();
  virtual void reportFailure(NSNetServicesError error) = 0;

 private:
  std::shared_ptr<AvahiDaemon> daemon_;  ///< absent: ended
  bool isWorking_ = false;
  std::uint64_t generation_ = 0;  ///< of the daemon that it works with
};

/// Keeps an activity going for as long as its handle exists.
template <class Handle, class Activity>
class DaemonHandle : public Handle {
 public:
  explicit DaemonHandle(std::shared_ptr<Activity> activity) : activity_(std::move(activity)) {
    activity_->start();
  }
  DaemonHandle(const DaemonHandle&) = delete;
  DaemonHandle& operator=(const DaemonHandle&) = delete;
  ~DaemonHandle() override { activity_->end(); }

 protected:
  Activity& activity() { return *activity_; }

 private:
  std::shared_ptr<Activity> activity_;
};

}  // namespace rvf
