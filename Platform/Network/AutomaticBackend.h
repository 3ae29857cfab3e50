// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Network/ServiceDiscoveryBackend.h"

namespace rvf {

class DaemonProbe;

/// DNS-SD through the Avahi daemon where one is on the system bus, else through the stack in this
/// process.
///
/// The first activity asks the bus, for a quarter of a second at most; activities wait until it
/// has answered. Without a bus, a daemon or an answer the stack is taken.
///
/// The choice holds for the life of this back end, whoever comes or goes:
/// - A daemon that appears later is not changed over to: both answer for this machine side by
///   side, while a change would take back and announce anew all that is published.
/// - A daemon that goes away is waited for. It goes to be restarted, within seconds; and an
///   administrator who stops it for good means this machine to be silent. The other way of
///   speaking would make every registration leave and come twice.
/// Back ends live as long as their thread has activities, so the question is asked anew when all
/// of them have ended.
///
/// Thread: that of its activities. Lifetime: who starts activities keeps it as long as they last;
/// owns the back end that it chose.
class RVF_EXPORT AutomaticBackend final : public ServiceDiscoveryBackend {
 public:
  using Factory = std::function<std::unique_ptr<ServiceDiscoveryBackend>()>;

  AutomaticBackend(Factory daemon, Factory embedded);
  ~AutomaticBackend() override;

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
  class Request;
  template <class Activity>
  class DeferredActivity;
  class DeferredPublication;

  void start(const std::shared_ptr<Request>& request);
  void choose(bool isDaemonThere);

  Factory daemon_;
  Factory embedded_;
  std::unique_ptr<DaemonProbe> probe_;
  std::unique_ptr<ServiceDiscoveryBackend> chosen_;
  std::vector<std::weak_ptr<Request>> waiting_;
};

}  // namespace rvf
