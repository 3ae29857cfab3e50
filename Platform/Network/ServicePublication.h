// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Network/NameClaim.h"
#include "Platform/Network/RenamePacer.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"
#include "Platform/RunLoop/NSRunLoop.h"

namespace rvf {

/// One publication from start to withdrawal (its destruction), renamed as often as its name turns
/// out to be taken, on the network or within this process. Its events may destroy it.
class ServicePublication final {
 public:
  struct Events {
    /// The records are announced under this name; said again after a later renaming.
    std::function<void(const std::string& name)> established;
    std::function<void(NSNetServicesError)> failed;
  };

  /// An empty name is the host's, made unique if the publication says that it is. Nothing is
  /// reported before the run loop turns.
  ServicePublication(std::shared_ptr<ServiceDiscoveryBackend> backend, Publication publication,
                     Events events);
  ~ServicePublication();
  ServicePublication(const ServicePublication&) = delete;
  ServicePublication& operator=(const ServicePublication&) = delete;

  void updateTXTRecord(std::vector<std::byte> txtRecord);

 private:
  std::string chosenName() const;
  void announce();
  void rename();
  void collided();
  void established();
  void failed(NSNetServicesError error);

  std::shared_ptr<ServiceDiscoveryBackend> backend_;
  Publication publication_;
  Events events_;
  NameClaim::Names names_;
  std::string reportedName_;
  RenamePacer pacer_;
  std::unique_ptr<NameClaim> claim_;
  std::unique_ptr<RunLoopSource> retryTimer_;
  std::unique_ptr<PublishActivity> activity_;
};

}  // namespace rvf
