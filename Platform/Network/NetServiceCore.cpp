// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NetServiceCore.h"

#include <algorithm>
#include <utility>

#include "Platform/Network/NSNetServicesError.h"
#include "Platform/Network/ServiceDiscovery.h"
#include "Platform/Network/ServiceNames.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Text/Text.h"

namespace rvf {
namespace {

/// Changes what `announced` says has changed, and tells observers once everything has.
void announceChanges(NSObject& object, std::vector<std::string_view> announced,
                     const std::function<void()>& change) {
  if (announced.empty()) return change();
  const std::string_view key = announced.back();
  announced.pop_back();
  announceChange(object, key, [&] { announceChanges(object, std::move(announced), change); });
}

}  // namespace

NSNetService::Core::Core(NSNetService& owner) : owner_(owner) {}

void NSNetService::Core::deliver(Topic topic, Report report, std::function<void(Core&)> prepare) {
  const std::weak_ptr<NSObject> weakOwner = owner_.weak_from_this();
  queue_.add(topic, [weakOwner, report = std::move(report), prepare = std::move(prepare)](bool) {
    const auto service = std::static_pointer_cast<NSNetService>(weakOwner.lock());
    if (!service) return;
    if (prepare) prepare(*service->core_);
    if (!report) return;
    if (const auto target = service->delegate()) report(*target, service);
  });
}

/// By itself: an observer may stop the service, and then no report may follow.
void NSNetService::Core::deliverChange(Topic topic, std::function<void(Core&)> change) {
  deliver(topic, nullptr, std::move(change));
}

NSNetService::Core::Report NSNetService::Core::failureReport(NSNetServicesError error,
                                                             Operation failed) {
  return [error, failed](auto& target, const auto& service) {
    failed == Operation::publishing
        ? target.netServiceDidNotPublish(service, failureDictionary(error))
        : target.netServiceDidNotResolve(service, failureDictionary(error));
  };
}

/// Reports that an operation did not start; one that is under way goes on.
void NSNetService::Core::refuse(NSNetServicesError error, Operation refused) {
  deliver(kOperationTopic, failureReport(error, refused));
}

/// Reports that the operation under way failed. It stays stoppable until then.
void NSNetService::Core::endOperation(NSNetServicesError error, Operation failed) {
  deliver(kOperationTopic, failureReport(error, failed), [](Core& core) {
    core.operation_ = Operation::none;
    core.publication_.reset();
    core.operationBackend_.reset();
  });
}

void NSNetService::Core::resolve(double timeoutSeconds) {
  if (operation_ != Operation::none) {
    return refuse(NSNetServicesError::activityInProgress, Operation::resolving);
  }
  if (identity.name.empty() || !isValidUtf8(identity.name) || !isServiceType(identity.type)) {
    return refuse(NSNetServicesError::badArgument, Operation::resolving);
  }
  auto backend = ServiceDiscovery::backendOfThisThread();
  resolution_ = backend->resolve(
      identity,
      {[this](const std::string& host, std::uint16_t foundPort) { located(host, foundPort); },
       [this](const SocketAddressBytes& address) { addressFound(address); },
       [this](NSNetServicesError error) { endResolving(error); }});
  beginOperation(Operation::resolving, std::move(backend));
  found_ = {hostName, port, {}};
  locationIsQueued_ = growthIsQueued_ = false;
  deliver(kOperationTopic,
          [](auto& target, const auto& service) { target.netServiceWillResolve(service); });
  if (timeoutSeconds > 0) {
    timeout_ = NSRunLoop::currentRunLoop()->scheduleTimer(
        timeoutSeconds, {std::string(NSRunLoopCommonModes)},
        [this] { endResolving(NSNetServicesError::timeout); });
  }
  // Last, because observers may stop or drop the service.
  if (!addresses.empty()) announceChange(owner_, "addresses", [this] { addresses.clear(); });
}

/// Once its activity has been made, because that may throw.
void NSNetService::Core::beginOperation(Operation operation,
                                        std::shared_ptr<ServiceDiscoveryBackend> backend) {
  operation_ = operation;
  operationBackend_ = std::move(backend);
}

void NSNetService::Core::located(const std::string& host, std::uint16_t foundPort) {
  const std::string foundHost = withFinalDot(host);
  if (found_.hostName == foundHost && found_.port == foundPort) return;
  // The service has moved: what was known of its former place would lead astray.
  found_ = {foundHost, foundPort, {}};
  noteLocation();
}

/// Addresses that come together are reported together, so that the first report is not needlessly
/// poor.
void NSNetService::Core::addressFound(const SocketAddressBytes& address) {
  const auto isKnown = [&](const Ref<NSData>& known) {
    return std::ranges::equal(known->bytes(), address);
  };
  if (std::ranges::any_of(found_.addresses, isKnown)) return;
  found_.addresses.push_back(std::make_shared<NSData>(address));
  timeout_.reset();
  noteLocation();
  if (std::exchange(growthIsQueued_, true)) return;
  deliver(kOperationTopic,
          [](auto& target, const auto& service) { target.netServiceDidResolveAddress(service); });
}

void NSNetService::Core::noteLocation() {
  if (std::exchange(locationIsQueued_, true)) return;
  deliverChange(kOperationTopic, [](Core& core) { core.adoptLocation(); });
}

/// What is found from now on is not in the report that is queued already.
void NSNetService::Core::adoptLocation() {
  locationIsQueued_ = growthIsQueued_ = false;
  std::vector<std::string_view> changed;
  if (hostName != found_.hostName) changed.emplace_back("hostName");
  if (port != found_.port) changed.emplace_back("port");
  if (addresses != found_.addresses) changed.emplace_back("addresses");
  announceChanges(owner_, std::move(changed), [this] {
    hostName = found_.hostName;
    port = found_.port;
    addresses = found_.addresses;
  });
}

void NSNetService::Core::endResolving(NSNetServicesError error) {
  timeout_.reset();
  resolution_.reset();
  if (found_.addresses.empty()) endOperation(error, Operation::resolving);
}

void NSNetService::Core::startMonitoring() {
  if (monitoring_) return;
  monitoredRecord_ = nullptr;
  monitoringBackend_ = ServiceDiscovery::backendOfThisThread();
  monitoring_ = monitoringBackend_->watchTXTRecord(
      identity, {[this](std::vector<std::byte> record) { recordUpdated(std::move(record)); },
                 [](NSNetServicesError) {}});
}

void NSNetService::Core::stopMonitoring() {
  queue_.drop(kMonitoringTopic);
  monitoring_.reset();
  monitoringBackend_.reset();
}

void NSNetService::Core::recordUpdated(std::vector<std::byte> record) {
  auto data = std::make_shared<NSData>(std::move(record));
  if (objectsAreEqual(data, monitoredRecord_)) return;  // seen on another link
  monitoredRecord_ = data;
  deliverChange(kMonitoringTopic, [data](Core& core) {
    announceChange(core.owner_, "TXTRecordData", [&] { core.txtRecord = data; });
  });
  deliver(kMonitoringTopic, [data](auto& target, const auto& service) {
    target.netServiceDidUpdateTXTRecordData(service, data);
  });
}

Publication NSNetService::Core::publicationWanted() const {
  Publication publication;
  publication.identity = identity;
  publication.port = *port;
  if (txtRecord) publication.txtRecord.assign(txtRecord->bytes().begin(), txtRecord->bytes().end());
  publication.isUnique = nameIsUnique;
  publication.lifetimeSeconds = recordLifetime;
  return publication;
}

void NSNetService::Core::publish() {
  if (operation_ != Operation::none) {
    return refuse(NSNetServicesError::activityInProgress, Operation::publishing);
  }
  if (!port || !isValidUtf8(identity.name) || !isServiceType(identity.type)) {
    return refuse(NSNetServicesError::badArgument, Operation::publishing);
  }
  auto backend = ServiceDiscovery::backendOfThisThread();
  publication_ = std::make_unique<ServicePublication>(
      backend, publicationWanted(),
      ServicePublication::Events{
          [this](const std::string& name) { published(name); },
          [this](NSNetServicesError error) { endOperation(error, Operation::publishing); }});
  beginOperation(Operation::publishing, std::move(backend));
  deliver(kOperationTopic,
          [](auto& target, const auto& service) { target.netServiceWillPublish(service); });
}

void NSNetService::Core::published(const std::string& name) {
  deliverChange(kOperationTopic, [name](Core& core) {
    if (core.identity.name == name) return;
    announceChange(core.owner_, "name", [&] { core.identity.name = name; });
  });
  deliver(kOperationTopic,
          [](auto& target, const auto& service) { target.netServiceDidPublish(service); });
}

void NSNetService::Core::setTXTRecord(Ref<NSData> data) {
  txtRecord = std::move(data);
  if (publication_) publication_->updateTXTRecord(publicationWanted().txtRecord);
}

void NSNetService::Core::stop() {
  if (operation_ == Operation::none) return;
  operation_ = Operation::none;
  queue_.drop(kOperationTopic);
  timeout_.reset();
  resolution_.reset();
  publication_.reset();
  operationBackend_.reset();
  const auto service = refTo(&owner_);
  if (const auto target = service->delegate()) target->netServiceDidStop(service);
}

}  // namespace rvf
