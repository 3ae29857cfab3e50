// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "Platform/Export.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

class EmbeddedStack;

/// DNS-SD by a multicast DNS stack inside this process (libavahi-core), on the run loop of the
/// thread that makes it. Needs no daemon and no bus, lives beside a daemon, and answers and finds
/// only while its run loop turns. Browses and publishes in "local." only.
class RVF_EXPORT AvahiEmbeddedBackend final : public ServiceDiscoveryBackend {
 public:
  AvahiEmbeddedBackend();
  ~AvahiEmbeddedBackend() override;

  std::unique_ptr<DiscoveryActivity> browse(const std::string& type, const std::string& domain,
                                            BrowseEvents events) override;
  std::unique_ptr<DiscoveryActivity> watchTXTRecord(const ServiceIdentity& identity,
                                                    TXTRecordEvents events) override;
  std::unique_ptr<DiscoveryActivity> resolve(const ServiceIdentity& identity,
                                             ResolveEvents events) override;
  std::unique_ptr<PublishActivity> publish(const Publication& publication,
                                           PublishEvents events) override;
  bool isResponding() const override;
  std::string defaultServiceName() override;

 private:
  std::shared_ptr<EmbeddedStack> stack_;
};

}  // namespace rvf
