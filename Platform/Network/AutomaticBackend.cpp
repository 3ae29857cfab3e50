// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AutomaticBackend.h"

#include <utility>

#include "Platform/Network/AvahiDaemon/DaemonProbe.h"
#include "Platform/Network/HostName.h"

namespace rvf {

/// Something to be started with the back end that will be chosen.
class AutomaticBackend::Request {
 public:
  using Start = std::function<void(ServiceDiscoveryBackend&)>;

  explicit Request(Start start) : start_(std::move(start)) {}

  void startWith(ServiceDiscoveryBackend& backend) { start_(backend); }

 private:
  Start start_;
};

/// The activity of the chosen back end, absent before the choice.
template <class Activity>
class AutomaticBackend::DeferredActivity : public Activity {
 public:
  using Make = std::function<std::unique_ptr<Activity>(ServiceDiscoveryBackend&)>;

  explicit DeferredActivity(Make make)
      : request_(std::make_shared<Request>(
            [this, make = std::move(make)](auto& backend) { activity_ = make(backend); })) {}

  const std::shared_ptr<Request>& request() const { return request_; }

 protected:
  Activity* activity() { return activity_.get(); }

 private:
  std::shared_ptr<Request> request_;  ///< held by nobody else
  std::unique_ptr<Activity> activity_;
};

class AutomaticBackend::DeferredPublication final : public DeferredActivity<PublishActivity> {
 public:
  DeferredPublication(Publication publication, PublishEvents events)
      : DeferredActivity([this, events = std::move(events)](auto& backend) {
          return backend.publish(publication_, events);
        }),
        publication_(std::move(publication)) {}

  void updateTXTRecord(std::vector<std::byte> txtRecord) override {
    publication_.txtRecord = std::move(txtRecord);
    if (activity() != nullptr) activity()->updateTXTRecord(publication_.txtRecord);
  }

 private:
  Publication publication_;
};

AutomaticBackend::AutomaticBackend(Factory daemon, Factory embedded)
    : daemon_(std::move(daemon)), embedded_(std::move(embedded)) {}

AutomaticBackend::~AutomaticBackend() = default;

std::unique_ptr<DiscoveryActivity> AutomaticBackend::browse(const std::string& type,
                                                            const std::string& domain,
                                                            BrowseEvents events) {
  auto activity = std::make_unique<DeferredActivity<DiscoveryActivity>>(
      [type, domain, events = std::move(events)](auto& backend) {
        return backend.browse(type, domain, events);
      });
  start(activity->request());
  return activity;
}

std::unique_ptr<DiscoveryActivity> AutomaticBackend::watchTXTRecord(const ServiceIdentity& identity,
                                                                    TXTRecordEvents events) {
  auto activity = std::make_unique<DeferredActivity<DiscoveryActivity>>(
      [identity, events = std::move(events)](auto& backend) {
        return backend.watchTXTRecord(identity, events);
      });
  start(activity->request());
  return activity;
}

std::unique_ptr<DiscoveryActivity> AutomaticBackend::resolve(const ServiceIdentity& identity,
                                                             ResolveEvents events) {
  auto activity = std::make_unique<DeferredActivity<DiscoveryActivity>>(
      [identity, events = std::move(events)](auto& backend) {
        return backend.resolve(identity, events);
      });
  start(activity->request());
  return activity;
}

std::unique_ptr<PublishActivity> AutomaticBackend::publish(const Publication& publication,
                                                           PublishEvents events) {
  auto activity = std::make_unique<DeferredPublication>(publication, std::move(events));
  start(activity->request());
  return activity;
}

bool AutomaticBackend::isResponding() const {
  return chosen_ && chosen_->isResponding();
}

std::string AutomaticBackend::defaultServiceName() {
  return computerName();
}

void AutomaticBackend::start(const std::shared_ptr<Request>& request) {
  if (chosen_) return request->startWith(*chosen_);
  waiting_.push_back(request);
  if (!probe_) {
    probe_ = std::make_unique<DaemonProbe>([this](bool isDaemonThere) { choose(isDaemonThere); });
  }
}

void AutomaticBackend::choose(bool isDaemonThere) {
  chosen_ = isDaemonThere ? daemon_() : embedded_();
  probe_.reset();
  for (const auto& weak : std::exchange(waiting_, {})) {
    if (const auto request = weak.lock()) request->startWith(*chosen_);
  }
}

}  // namespace rvf
