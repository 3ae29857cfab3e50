// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemonBackend.h"

#include <utility>

#include "Platform/Network/AvahiDaemon/DaemonBrowse.h"
#include "Platform/Network/AvahiDaemon/DaemonPublication.h"
#include "Platform/Network/AvahiDaemon/DaemonResolution.h"
#include "Platform/Network/AvahiDaemon/DaemonTXTRecordWatch.h"
#include "Platform/Network/HostName.h"

namespace rvf {
namespace {

class PublicationHandle final : public DaemonHandle<PublishActivity, DaemonPublication> {
 public:
  using DaemonHandle::DaemonHandle;

  void updateTXTRecord(std::vector<std::byte> txtRecord) override {
    activity().updateTXTRecord(std::move(txtRecord));
  }
};

template <class Activity, class... Arguments>
std::unique_ptr<DiscoveryActivity> started(Arguments&&... arguments) {
  return std::make_unique<DaemonHandle<DiscoveryActivity, Activity>>(
      std::make_shared<Activity>(std::forward<Arguments>(arguments)...));
}

}  // namespace

std::unique_ptr<DiscoveryActivity> AvahiDaemonBackend::browse(const std::string& type,
                                                              const std::string& domain,
                                                              BrowseEvents events) {
  return started<DaemonBrowse>(type, domain, std::move(events));
}

std::unique_ptr<DiscoveryActivity> AvahiDaemonBackend::watchTXTRecord(
    const ServiceIdentity& identity, TXTRecordEvents events) {
  return started<DaemonTXTRecordWatch>(identity, std::move(events));
}

std::unique_ptr<DiscoveryActivity> AvahiDaemonBackend::resolve(const ServiceIdentity& identity,
                                                               ResolveEvents events) {
  return started<DaemonResolution>(identity, std::move(events));
}

std::unique_ptr<PublishActivity> AvahiDaemonBackend::publish(const Publication& publication,
                                                             PublishEvents events) {
  return std::make_unique<PublicationHandle>(
      std::make_shared<DaemonPublication>(publication, std::move(events)));
}

bool AvahiDaemonBackend::isResponding() const {
  return AvahiDaemon::forCurrentThread()->state() != DaemonState::absent;
}

std::string AvahiDaemonBackend::defaultServiceName() {
  return computerName();
}

}  // namespace rvf
