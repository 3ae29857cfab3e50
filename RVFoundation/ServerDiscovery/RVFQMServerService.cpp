// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/RVFQMServerService.h"

#include <algorithm>
#include <utility>

#include "Platform/Locale/NSBundle.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Format.h"
#include "Platform/Values/NSArray.h"
#include "RVFoundation/ServerDiscovery/RVFQMServerServiceBrowser.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFQMServerService::classObject);

constexpr std::string_view kLocalDomain = "local.";

bool isLocal(const NSNetService& service) {
  return service.domain() == kLocalDomain;
}

RVFQMServerService::DomainSuffixes& domainSuffixes() {
  static RVFQMServerService::DomainSuffixes suffixes = {"btmm.quillmarsh.example.",
                                                        "roaming.quillmarsh.example."};
  return suffixes;
}

/// The list as an object, for messages and key-value coding.
Ref<NSArray> netServicesOf(NSObject& self, SEL) {
  return NSArray::arrayWithObjects(static_cast<RVFQMServerService&>(self).netServices());
}

}  // namespace

Class RVFQMServerService::classObject() {
  static const Class kClass =
      ClassBuilder<RVFQMServerService>("RVFQMServerService", NSObject::classObject())
          .property("netServices", "T@\"NSArray\",R,N,V_netServices")
          .property("mainService", "T@\"NSNetService\",&,N,V_mainService")
          .property("isDemo", "Tc,N,V_isDemo")
          .property("isLoaded", "Tc,N,V_isLoaded")
          .property("serviceChangedHandler", "T@?,C,N,V_serviceChangedHandler")
          .property("isUsingBackToMyMac", "Tc,R,N")
          .property("name", "T@\"NSString\",R,N")
          .ivar("_netServices", "@")
          .ivar<&RVFQMServerService::mainService_>("_mainService")
          .ivar<&RVFQMServerService::serviceChangedHandler_>("_serviceChangedHandler")
          .ivar<&RVFQMServerService::isDemo_>("_isDemo")
          .ivar<&RVFQMServerService::isLoaded_>("_isLoaded")
          .method("netServices", IMP(&netServicesOf))
          .method<&RVFQMServerService::serviceChangedHandler>("serviceChangedHandler")
          .method<&RVFQMServerService::setServiceChangedHandler>("setServiceChangedHandler:")
          .method<&RVFQMServerService::netServiceDidUpdateTXTRecordData>(
              "netService:didUpdateTXTRecordData:")
          .method<&RVFQMServerService::mainService>("mainService")
          .method<&RVFQMServerService::setMainService>("setMainService:")
          .method<&RVFQMServerService::isDemo>("isDemo")
          .method<&RVFQMServerService::setIsDemo>("setIsDemo:")
          .method<&RVFQMServerService::isLoaded>("isLoaded")
          .method<&RVFQMServerService::setIsLoaded>("setIsLoaded:")
          .method<&RVFQMServerService::isUsingBackToMyMac>("isUsingBackToMyMac")
          .method<&RVFQMServerService::name>("name")
          .method("keyPathsForValuesAffectingIsUsingBackToMyMac",
                  dependentKeyImplementation<
                      &RVFQMServerService::keyPathsForValuesAffectingIsUsingBackToMyMac>())
          .method("keyPathsForValuesAffectingName",
                  dependentKeyImplementation<&RVFQMServerService::keyPathsForValuesAffectingName>())
          .method<&RVFQMServerService::addNetService>("addNetService:")
          .method<&RVFQMServerService::removeNetService>("removeNetService:")
          .method<&RVFQMServerService::stop>("stop")
          .registered();
  return kClass;
}

Class RVFQMServerService::isa() const {
  return classObject();
}

void RVFQMServerService::setMainService(Ref<NSNetService> service) {
  announceChange(*this, "mainService", [&] { mainService_ = std::move(service); });
}

void RVFQMServerService::setIsDemo(bool isDemo) {
  announceChange(*this, "isDemo", [&] { isDemo_ = isDemo; });
}

void RVFQMServerService::setIsLoaded(bool isLoaded) {
  announceChange(*this, "isLoaded", [&] { isLoaded_ = isLoaded; });
}

void RVFQMServerService::setServiceChangedHandler(ChangedHandler handler) {
  announceChange(*this, "serviceChangedHandler",
                 [&] { serviceChangedHandler_ = std::move(handler); });
}

const RVFQMServerService::DomainSuffixes& RVFQMServerService::wideAreaDomainSuffixes() {
  return domainSuffixes();
}

void RVFQMServerService::setWideAreaDomainSuffixes(DomainSuffixes suffixes) {
  domainSuffixes() = std::move(suffixes);
}

bool RVFQMServerService::isUsingBackToMyMac() const {
  if (!mainService_) return false;
  const std::string domain = mainService_->domain();
  return std::ranges::any_of(wideAreaDomainSuffixes(), [&domain](const std::string& suffix) {
    return !suffix.empty() && domain.ends_with(suffix);
  });
}

std::optional<std::string> RVFQMServerService::name() const {
  if (!mainService_) return std::nullopt;
  if (!isUsingBackToMyMac()) return mainService_->name();
  const std::string format =
      NSBundle::bundleForClass(classObject())->localizedStringForKey("%@ (Back to My Mac)");
  return stringWithFormat(format, mainService_->name());
}

std::set<std::string> RVFQMServerService::keyPathsForValuesAffectingName() {
  return {"mainService"};
}

std::set<std::string> RVFQMServerService::keyPathsForValuesAffectingIsUsingBackToMyMac() {
  return {"mainService"};
}

void RVFQMServerService::addNetService(const Ref<NSNetService>& service) {
  if (!service) NSException::raise(NSInvalidArgumentException, "the added registration is absent");
  if (std::ranges::any_of(
          netServices_, [&service](const auto& held) { return objectsAreEqual(held, service); })) {
    return;
  }
  const auto self = refTo(this);
  const Ref<NSNetService> added = service;
  added->setDelegate(self);
  added->startMonitoring();
  announceChange(*this, "netServices", [&] { netServices_.push_back(added); });
  if (netServices_.size() == 1 || (isLocal(*added) && (!mainService_ || !isLocal(*mainService_)))) {
    setMainService(added);
  }
}

void RVFQMServerService::removeNetService(const Ref<NSNetService>& service) {
  const auto self = refTo(this);
  const Ref<NSNetService> removed = service;  // may be a reference into the list
  if (removed) stopWatching(*removed);
  const auto isRemoved = [&removed](const auto& held) { return objectsAreEqual(held, removed); };
  if (std::ranges::any_of(netServices_, isRemoved)) {
    announceChange(*this, "netServices", [&] { std::erase_if(netServices_, isRemoved); });
  }
  if (mainService_ && objectsAreEqual(mainService_, removed)) chooseMainService();
  if (!netServices_.empty()) callChangedHandler();
}

void RVFQMServerService::chooseMainService() {
  const auto local =
      std::ranges::find_if(netServices_, [](const auto& service) { return isLocal(*service); });
  if (local != netServices_.end()) {
    setMainService(*local);
  } else {
    setMainService(netServices_.empty() ? nullptr : netServices_.front());
  }
}

void RVFQMServerService::stop() {
  const auto services = netServices_;
  for (const Ref<NSNetService>& service : services)
    stopWatching(*service);
}

void RVFQMServerService::stopWatching(NSNetService& service) {
  if (service.delegate().get() != this) return;
  service.stopMonitoring();
  service.setDelegate({});
}

void RVFQMServerService::netServiceDidUpdateTXTRecordData(const Ref<NSNetService>& service,
                                                          const Ref<NSData>& data) {
  const auto self = refTo(this);
  bool isDemoServer = false;
  if (!RVFQMServerServiceBrowser::serviceContainsDemo(&isDemoServer, data)) return;
  setIsDemo(isDemoServer);
  setIsLoaded(true);
  service->stopMonitoring();
  service->setDelegate({});
  callChangedHandler();
}

void RVFQMServerService::callChangedHandler() {
  if (const ChangedHandler handler = serviceChangedHandler_) handler();
}

}  // namespace rvf
