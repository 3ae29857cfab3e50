// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "Platform/Network/AvahiDaemon/DaemonActivity.h"
#include "Platform/Network/AvahiDaemon/DaemonBrowser.h"

namespace rvf {

/// The search for registrations of one type, in one domain or in all browsing domains that the
/// daemon knows of, "local" always among them; of these the first sixteen. What was found in a
/// domain is removed with it.
class DaemonBrowse final : public DaemonActivity {
 public:
  DaemonBrowse(const std::string& type, const std::string& domain, BrowseEvents events);

 private:
  bool isAskable() const override;
  void begin() override;
  void drop() override;
  void interrupted() override;
  void reportFailure(NSNetServicesError error) override;

  /// The interface and protocol that show something.
  using Source = std::pair<int, int>;
  struct Domain {
    std::set<Source> sources;  ///< that name it as a browsing domain
    std::set<std::pair<ServiceIdentity, ServiceLink>> found;
    std::unique_ptr<DaemonBrowser> browser;
  };

  void browseDomain(const std::string& name);
  void domainAdded(sd_bus_message& item);
  void domainRemoved(sd_bus_message& item);
  void dropDomain(const std::string& name);
  void itemAdded(const std::string& domain, sd_bus_message& item);
  void itemRemoved(const std::string& domain, sd_bus_message& item);

  std::string type_;
  std::string domain_;  ///< empty: all browsing domains
  BrowseEvents events_;
  std::unique_ptr<DaemonBrowser> domains_;
  std::map<std::string, Domain> searched_;  ///< by name
};

}  // namespace rvf
