// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/RVFQMServerServiceBrowser.h"

#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSArray.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFQMServerServiceBrowser::classObject);

constexpr std::string_view kDemoKey = "demo";
constexpr std::string_view kDefaultDomains;

/// The list as an object, for messages and key-value coding.
Ref<NSArray> servicesOf(NSObject& self, SEL) {
  return NSArray::arrayWithObjects(static_cast<RVFQMServerServiceBrowser&>(self).services());
}

}  // namespace

Ref<RVFQMServerServiceBrowser> RVFQMServerServiceBrowser::serviceBrowser() {
  return std::make_shared<RVFQMServerServiceBrowser>();
}

RVFQMServerServiceBrowser::RVFQMServerServiceBrowser()
    : serviceType_(RVFQuillMarshServerServiceType) {}

RVFQMServerServiceBrowser::~RVFQMServerServiceBrowser() {
  cleanupNetServices();
  if (browser_) browser_->setDelegate({});
}

Class RVFQMServerServiceBrowser::classObject() {
  static const Class kClass =
      ClassBuilder<RVFQMServerServiceBrowser>("RVFQMServerServiceBrowser", NSObject::classObject())
          .property("serviceType", "T@\"NSString\",C,N,V_serviceType")
          .property("serviceListChangedHandler", "T@?,C,N,V_serviceListChangedHandler")
          .property("services", "T@\"NSArray\",R,N")
          .ivar<&RVFQMServerServiceBrowser::browser_>("_browser")
          .ivar<&RVFQMServerServiceBrowser::serviceType_>("_serviceType")
          .ivar<&RVFQMServerServiceBrowser::serviceListChangedHandler_>(
              "_serviceListChangedHandler")
          .ivar("_servicesByName", "@")
          .method<&RVFQMServerServiceBrowser::serviceType>("serviceType")
          .method<&RVFQMServerServiceBrowser::setServiceType>("setServiceType:")
          .method<&RVFQMServerServiceBrowser::serviceListChangedHandler>(
              "serviceListChangedHandler")
          .method<&RVFQMServerServiceBrowser::setServiceListChangedHandler>(
              "setServiceListChangedHandler:")
          .method("services", IMP(&servicesOf))
          .method<&RVFQMServerServiceBrowser::startBrowsingWithServiceListChangedHandler>(
              "startBrowsingWithServiceListChangedHandler:")
          .method<&RVFQMServerServiceBrowser::netServiceBrowserDidFindService>(
              "netServiceBrowser:didFindService:moreComing:")
          .method<&RVFQMServerServiceBrowser::netServiceBrowserDidRemoveService>(
              "netServiceBrowser:didRemoveService:moreComing:")
          .method<&RVFQMServerServiceBrowser::stop>("stop")
          .method<&RVFQMServerServiceBrowser::serviceForName>("serviceForName:")
          .method<&RVFQMServerServiceBrowser::cleanupNetServices>("cleanupNetServices")
          .registered();
  return kClass;
}

Class RVFQMServerServiceBrowser::isa() const {
  return classObject();
}

void RVFQMServerServiceBrowser::setServiceType(std::string serviceType) {
  announceChange(*this, "serviceType", [&] { serviceType_ = std::move(serviceType); });
}

void RVFQMServerServiceBrowser::setServiceListChangedHandler(ServiceListChangedHandler handler) {
  announceChange(*this, "serviceListChangedHandler",
                 [&] { serviceListChangedHandler_ = std::move(handler); });
}

std::vector<Ref<RVFQMServerService>> RVFQMServerServiceBrowser::services() const {
  std::vector<Ref<RVFQMServerService>> services;
  services.reserve(servicesByName_.size());
  for (const auto& [name, service] : servicesByName_)
    services.push_back(service);
  return services;
}

void RVFQMServerServiceBrowser::startBrowsingWithServiceListChangedHandler(
    ServiceListChangedHandler handler) {
  setServiceListChangedHandler(std::move(handler));
  browser_ = NSNetServiceBrowser::browser();
  browser_->setDelegate(refTo(this));
  browser_->searchForServicesOfType(RVFQuillMarshServerServiceType, kDefaultDomains);
}

void RVFQMServerServiceBrowser::stop() {
  const auto self = refTo(this);
  setServiceListChangedHandler(nullptr);
  if (browser_) {
    browser_->setDelegate({});
    browser_->stop();
    browser_ = nullptr;
  }
  cleanupNetServices();
  announceChange(*this, "services", [&] { servicesByName_.clear(); });
}

Ref<RVFQMServerService> RVFQMServerServiceBrowser::serviceForName(std::string_view name) {
  if (const auto known = servicesByName_.find(name); known != servicesByName_.end()) {
    return known->second;
  }
  const auto service = std::make_shared<RVFQMServerService>();
  announceChange(*this, "services", [&] { servicesByName_.emplace(name, service); });
  service->setServiceChangedHandler([self = refTo(this), weakService = std::weak_ptr(service)] {
    const auto changed = weakService.lock();
    if (changed && changed->isLoaded()) self->reportChangeOf(changed);
  });
  return service;
}

void RVFQMServerServiceBrowser::reportChangeOf(const Ref<RVFQMServerService>& service) {
  const ServiceListChangedHandler handler = serviceListChangedHandler_;
  if (!handler) {
    NSException::raise(NSInternalInconsistencyException,
                       "a server changed while browsing without a handler");
  }
  handler(nullptr, nullptr, service);
}

void RVFQMServerServiceBrowser::cleanupNetServices() {
  for (const Ref<RVFQMServerService>& service : services()) {
    service->setServiceChangedHandler(nullptr);
    service->stop();
  }
}

bool RVFQMServerServiceBrowser::serviceContainsDemo(bool* isDemo,
                                                    const Ref<NSData>& forTXTRecordData) {
  if (!forTXTRecordData || forTXTRecordData->empty()) return false;
  const auto record = NSNetService::dictionaryFromTXTRecordData(forTXTRecordData);
  const auto value =
      record ? std::dynamic_pointer_cast<NSData>(record->objectForKey(kDemoKey)) : nullptr;
  const bool hasText = value && isValidUtf8(value->characters());
  if (isDemo) *isDemo = hasText && boolValueOfText(value->characters());
  return hasText;
}

void RVFQMServerServiceBrowser::netServiceBrowserDidFindService(
    const Ref<NSNetServiceBrowser>& /*browser*/, const Ref<NSNetService>& service,
    bool /*moreComing*/) {
  const auto self = refTo(this);
  const auto server = serviceForName(service->name());
  server->addNetService(service);
  const ServiceListChangedHandler handler = serviceListChangedHandler_;
  if (!handler) return;
  if (server->netServices().size() == 1) {
    handler(server, nullptr, nullptr);
  } else {
    handler(nullptr, nullptr, server);
  }
}

void RVFQMServerServiceBrowser::netServiceBrowserDidRemoveService(
    const Ref<NSNetServiceBrowser>& /*browser*/, const Ref<NSNetService>& service,
    bool /*moreComing*/) {
  const auto self = refTo(this);
  const std::string name = service->name();
  const auto server = serviceForName(name);
  server->removeNetService(service);
  if (!server->netServices().empty()) return;
  server->setServiceChangedHandler(nullptr);
  announceChange(*this, "services", [&] { servicesByName_.erase(name); });
  if (const ServiceListChangedHandler handler = serviceListChangedHandler_) {
    handler(nullptr, server, nullptr);
  }
}

}  // namespace rvf
