// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/DaemonBrowse.h"

#include <optional>
#include <utility>

#include "Platform/Network/AvahiDaemon/AvahiNames.h"
#include "Platform/Network/ServiceNames.h"

namespace rvf {
namespace {

constexpr const char* kLocalDomain = "local.";
/// Anybody on the network may name domains, and each costs a browser of the 1024 that the daemon
/// grants.
constexpr std::size_t kMostDomains = 16;

struct ServiceItem {
  ServiceIdentity identity;
  ServiceLink link;
};

/// The type is the one that was asked for, because what the network shows may differ in case; of a
/// subtype it is the type itself.
std::optional<ServiceItem> serviceItemFrom(sd_bus_message& item, const std::string& type) {
  int interfaceIndex = 0;
  int protocol = 0;
  const char* name = nullptr;
  const char* seenType = nullptr;
  const char* domain = nullptr;
  if (sd_bus_message_read(&item, "iisss", &interfaceIndex, &protocol, &name, &seenType, &domain) <
      0) {
    return std::nullopt;
  }
  const bool isSubtype = type.find("._sub.") != std::string::npos;
  return ServiceItem{{name, isSubtype ? withFinalDot(seenType) : type, withFinalDot(domain)},
                     linkFrom(interfaceIndex, protocol)};
}

struct DomainItem {
  std::pair<int, int> source;
  std::string name;
};

std::optional<DomainItem> domainItemFrom(sd_bus_message& item) {
  int interfaceIndex = 0;
  int protocol = 0;
  const char* domain = nullptr;
  if (sd_bus_message_read(&item, "iis", &interfaceIndex, &protocol, &domain) < 0) {
    return std::nullopt;
  }
  std::string name = withFinalDot(domain);
  if (name.empty()) return std::nullopt;
  return DomainItem{{interfaceIndex, protocol}, std::move(name)};
}

}  // namespace

DaemonBrowse::DaemonBrowse(const std::string& type, const std::string& domain, BrowseEvents events)
    : type_(withFinalDot(type)), domain_(withFinalDot(domain)), events_(std::move(events)) {}

bool DaemonBrowse::isAskable() const {
  return isSendable(type_) && isServiceType(type_) && isDomain(domain_);
}

void DaemonBrowse::begin() {
  browseDomain(domain_.empty() ? kLocalDomain : domain_);
  if (!domain_.empty()) return;
  DaemonBrowser::Events events;  // without `failed`: the local domain is browsed all the same
  events.added = whileAlive([this](sd_bus_message& item) { domainAdded(item); });
  events.removed = whileAlive([this](sd_bus_message& item) { domainRemoved(item); });
  domains_ = DaemonBrowser::ofDomains(daemon(), std::move(events));
}

void DaemonBrowse::drop() {
  domains_.reset();
  searched_.clear();
}

void DaemonBrowse::interrupted() {
  if (events_.interrupted) events_.interrupted();
}

void DaemonBrowse::reportFailure(NSNetServicesError error) {
  if (events_.failed) events_.failed(error);
}

void DaemonBrowse::browseDomain(const std::string& name) {
  DaemonBrowser::Events events;
  events.added = whileAlive([this, name](sd_bus_message& item) { itemAdded(name, item); });
  events.removed = whileAlive([this, name](sd_bus_message& item) { itemRemoved(name, item); });
  if (searched_.empty()) {  // a domain that comes later neither settles nor fails the search
    events.settled = whileAlive([this] {
      if (events_.settled) events_.settled();
    });
    events.failed = whileAlive([this](NSNetServicesError error) { fail(error); });
  }
  searched_[name].browser =
      DaemonBrowser::ofServices(daemon(), type_, withoutFinalDot(name), std::move(events));
}

void DaemonBrowse::domainAdded(sd_bus_message& message) {
  const auto item = domainItemFrom(message);
  if (!item) return;
  if (!searched_.contains(item->name)) {
    if (searched_.size() == kMostDomains) return;
    browseDomain(item->name);
  }
  searched_[item->name].sources.insert(item->source);
}

void DaemonBrowse::domainRemoved(sd_bus_message& message) {
  const auto item = domainItemFrom(message);
  const auto known = item ? searched_.find(item->name) : searched_.end();
  if (known == searched_.end()) return;
  known->second.sources.erase(item->source);
  if (known->second.sources.empty() && item->name != kLocalDomain) dropDomain(item->name);
}

/// The daemon reports nothing more of it: so what was found there is removed here.
void DaemonBrowse::dropDomain(const std::string& name) {
  const auto dropped = searched_.extract(name);
  for (const auto& [identity, link] : dropped.mapped().found) {
    if (!isEnded() && events_.removed) events_.removed(identity, link);
  }
}

void DaemonBrowse::itemAdded(const std::string& domain, sd_bus_message& message) {
  const auto item = serviceItemFrom(message, type_);
  if (!item) return;
  searched_[domain].found.emplace(item->identity, item->link);
  if (events_.found) events_.found(item->identity, item->link);
}

void DaemonBrowse::itemRemoved(const std::string& domain, sd_bus_message& message) {
  const auto item = serviceItemFrom(message, type_);
  if (!item) return;
  searched_[domain].found.erase({item->identity, item->link});
  if (events_.removed) events_.removed(item->identity, item->link);
}

}  // namespace rvf
