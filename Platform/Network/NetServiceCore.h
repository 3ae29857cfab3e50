// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Network/DeliveryQueue.h"
#include "Platform/Network/NSNetService.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"
#include "Platform/Network/ServicePublication.h"
#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

/// What a service knows and has under way. The back end's events only take notes here; what reaches
/// the delegate and observers goes through the queue, so neither ever runs inside the back end. A
/// property changes at its turn, before the report of the same news.
class NSNetService::Core final {
 public:
  explicit Core(NSNetService& owner);

  ServiceIdentity identity;
  std::optional<std::uint16_t> port;
  std::optional<std::string> hostName;
  std::vector<Ref<NSData>> addresses;
  Ref<NSData> txtRecord;
  bool nameIsUnique = false;
  std::uint32_t recordLifetime = 120;
  std::weak_ptr<NSNetServiceDelegate> delegate;

  void setTXTRecord(Ref<NSData> data);
  void resolve(double timeoutSeconds);
  void startMonitoring();
  void stopMonitoring();
  void publish();
  void stop();

 private:
  /// What `stop` ends. It lasts until the delegate was told of its end, so that an operation ends
  /// with exactly one report.
  enum class Operation { none, resolving, publishing };
  enum Topic { kOperationTopic, kMonitoringTopic };
  using Report = std::function<void(NSNetServiceDelegate&, const Ref<NSNetService>&)>;
  /// Where the service is, as far as the back end has found out.
  struct Location {
    std::optional<std::string> hostName;
    std::optional<std::uint16_t> port;
    std::vector<Ref<NSData>> addresses;
  };

  /// Queues a report; `prepare` is run at its turn, with or without a delegate.
  void deliver(Topic topic, Report report, std::function<void(Core&)> prepare = nullptr);
  /// Queues a change of a property.
  void deliverChange(Topic topic, std::function<void(Core&)> change);
  static Report failureReport(NSNetServicesError error, Operation failed);
  void refuse(NSNetServicesError error, Operation refused);
  void located(const std::string& host, std::uint16_t foundPort);
  void addressFound(const SocketAddressBytes& address);
  void noteLocation();
  void adoptLocation();
  void endResolving(NSNetServicesError error);
  void beginOperation(Operation operation, std::shared_ptr<ServiceDiscoveryBackend> backend);
  void endOperation(NSNetServicesError error, Operation failed);
  void published(const std::string& name);
  void recordUpdated(std::vector<std::byte> record);
  Publication publicationWanted() const;

  NSNetService& owner_;
  DeliveryQueue queue_;
  Operation operation_ = Operation::none;
  Location found_;
  bool locationIsQueued_ = false;
  bool growthIsQueued_ = false;
  Ref<NSData> monitoredRecord_;

  std::shared_ptr<ServiceDiscoveryBackend> operationBackend_;
  std::unique_ptr<DiscoveryActivity> resolution_;
  std::unique_ptr<RunLoopSource> timeout_;
  std::unique_ptr<ServicePublication> publication_;
  std::shared_ptr<ServiceDiscoveryBackend> monitoringBackend_;
  std::unique_ptr<DiscoveryActivity> monitoring_;
};

}  // namespace rvf
