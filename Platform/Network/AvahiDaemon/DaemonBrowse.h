// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <string>

#include "Platform/Network/AvahiDaemon/DaemonActivity.h"
#include "Platform/Network/AvahiDaemon/DaemonBrowser.h"

namespace rvf {

/// The search for registrations of one type, in one domain or in all browsing domains that the
/// daemon knows of, "local" always among them.
class DaemonBrowse final : public DaemonActivity {
 public:
  DaemonBrowse(const std::string& type, const std::string& domain, BrowseEvents events);

 private:
  bool isAskable() const override;
  void begin() override;
  void drop() override;
  void interrupted() override;
  void reportFailure(NSNetServicesError error) override;

  void browseDomain(const std::string& domain);
  void domainAdded(sd_bus_message& item);
  void itemAdded(sd_bus_message& item);
  void itemRemoved(sd_bus_message& item);

  std::string type_;
  std::string domain_;  ///< empty: all browsing domains
  BrowseEvents events_;
  std::unique_ptr<DaemonBrowser> domains_;
  std::map<std::string, std::unique_ptr<DaemonBrowser>> services_;  ///< by domain
};

}  // namespace rvf
