// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/RVFRemoteNotificationCenter.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <memory>
#include <string>

#include "Platform/Network/NSNetService.h"
#include "Platform/Network/SocketAddress.h"
#include "Platform/RunLoop/NSRunLoop.h"
#include "Platform/RunLoop/PerformSelector.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSString.h"
#include "Platform/Values/NSValue.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFRemoteNotificationCenter::classObject);

constexpr std::string_view kSelectorKey = "selector";
constexpr std::string_view kObserverKey = "observer";
constexpr std::string_view kBrowserKey = "browser";
constexpr std::string_view kNameKey = "name";
constexpr std::string_view kSocketKey = "socket";
constexpr std::string_view kNetServiceKey = "netService";

constexpr std::string_view kDefaultDomains;
constexpr std::string_view kDefaultName;
constexpr double kPublicationSeconds = 10;
/// What a poster that was killed leaves behind must not outlive what it would have published.
constexpr std::uint32_t kRecordLifetimeSeconds = 10;

template <class T>
Ref<T> entry(const Ref<NSDictionary>& record, std::string_view key) {
  return std::dynamic_pointer_cast<T>(record->objectForKey(key));
}

/// Absent if the object has gone.
id objectOf(const id& nonretained) {
  return std::static_pointer_cast<NSValue>(nonretained)->nonretainedObjectValue();
}

/// Any free port of every IPv4 address.
Ref<NSData> anyAddress() {
  return SocketAddress::withIPv4({0, 0, 0, 0}, 0).dataBlock();
}

Ref<NSNetService> publishedService(std::string_view type, std::uint16_t port) {
  auto service = NSNetService::initWithDomain(kDefaultDomains, type, kDefaultName, port);
  service->setNameIsUnique(true);
  service->setRecordLifetime(kRecordLifetimeSeconds);
  service->publish();
  return service;
}

}  // namespace

const Ref<RVFRemoteNotificationCenter>& RVFRemoteNotificationCenter::defaultCenter() {
  // Never destroyed: its browsers belong to a run loop that may end before static objects do.
  static const auto* const kCenter =
      new Ref<RVFRemoteNotificationCenter>(std::make_shared<RVFRemoteNotificationCenter>());
  return *kCenter;
}

RVFRemoteNotificationCenter::RVFRemoteNotificationCenter() = default;
RVFRemoteNotificationCenter::~RVFRemoteNotificationCenter() = default;

Class RVFRemoteNotificationCenter::classObject() {
  using Self = RVFRemoteNotificationCenter;
  static const Class kClass =
      ClassBuilder<Self>("RVFRemoteNotificationCenter", NSObject::classObject())
          .ivar<&Self::observers_>("_observers")
          .ivar<&Self::netServiceBrowsers_>("_netServiceBrowsers")
          .method<&Self::addObserver>("addObserver:selector:name:")
          .method<&Self::removeObserver>("removeObserver:")
          .method<&Self::postNotificationName>("postNotificationName:")
          .method<&Self::startServiceForName>("startServiceForName:")
          .method<&Self::stopServiceWithInfo>("stopServiceWithInfo:")
          .method<&Self::netServiceBrowserDidFindService>(
              "netServiceBrowser:didFindService:moreComing:")
          .method<&Self::netServiceBrowserDidRemoveService>(
              "netServiceBrowser:didRemoveService:moreComing:")
          .registered();
  return kClass;
}

Class RVFRemoteNotificationCenter::isa() const {
  return classObject();
}

// Observing

bool RVFRemoteNotificationCenter::isObserved(std::string_view name) const {
  for (const auto& [browser, record] : *netServiceBrowsers_) {
    const auto known = std::static_pointer_cast<NSDictionary>(record);
    if (known->textForKey(kNameKey) == name) return true;
  }
  return false;
}

Ref<NSMutableDictionary> RVFRemoteNotificationCenter::namesOf(const id& observerKey) {
  if (auto known = observers_->objectForKey(observerKey)) {
    return std::static_pointer_cast<NSMutableDictionary>(known);
  }
  auto names = NSMutableDictionary::dictionary();
  observers_->setObject(names, observerKey);
  return names;
}

void RVFRemoteNotificationCenter::addObserver(const id& observer, SEL selector,
                                              std::string_view name) {
  if (!observer) NSException::raise(NSInvalidArgumentException, "the observer is absent");
  endObservationsOfTheGone();
  if (isObserved(name)) {
    NSException::raise(NSInvalidArgumentException,
                       "Cannot add more than observers to the same name. Did you forget to remove "
                       "an observer ?");
  }
  const auto browser = NSNetServiceBrowser::browser();
  browser->setDelegate(refTo(this));
  browser->searchForServicesOfType(name, kDefaultDomains);
  const auto observerKey = NSValue::valueWithNonretainedObject(observer);
  const auto record = NSDictionary::dictionaryWithEntries({{kSelectorKey, box(selector.name())},
                                                           {kObserverKey, observerKey},
                                                           {kBrowserKey, browser},
                                                           {kNameKey, box(name)}});
  namesOf(observerKey)->setObject(record, name);
  netServiceBrowsers_->setObject(record, NSValue::valueWithNonretainedObject(browser));
}

void RVFRemoteNotificationCenter::removeObserver(const id& observer) {
  const auto self = refTo(this);
  endObservationsOfTheGone();
  endObservationsOf(NSValue::valueWithNonretainedObject(observer));
}

/// The maps are in order before a browser is stopped.
void RVFRemoteNotificationCenter::endObservationsOf(const id& observerKey) {
  const auto names = std::static_pointer_cast<NSDictionary>(observers_->objectForKey(observerKey));
  observers_->removeObjectForKey(observerKey);
  if (!names) return;
  for (const auto& [name, value] : names->entries()) {
    const auto record = std::static_pointer_cast<NSDictionary>(value);
    const auto browser = entry<NSNetServiceBrowser>(record, kBrowserKey);
    netServiceBrowsers_->removeObjectForKey(NSValue::valueWithNonretainedObject(browser));
    browser->stop();
  }
}

void RVFRemoteNotificationCenter::endObservationsOfTheGone() {
  const auto known = observers_->allKeys();
  for (const id& observerKey : *known) {
    if (!objectOf(observerKey)) endObservationsOf(observerKey);
  }
}

void RVFRemoteNotificationCenter::netServiceBrowserDidFindService(
    const Ref<NSNetServiceBrowser>& browser, const Ref<NSNetService>& /*service*/,
    bool /*moreComing*/) {
  const auto self = refTo(this);
  const auto record = std::static_pointer_cast<NSDictionary>(
      netServiceBrowsers_->objectForKey(NSValue::valueWithNonretainedObject(browser)));
  if (!record) return;
  const id observer = objectOf(record->objectForKey(kObserverKey));
  if (!observer) return endObservationsOfTheGone();
  send(observer, NSSelectorFromString(record->textForKey(kSelectorKey)));
}

void RVFRemoteNotificationCenter::netServiceBrowserDidRemoveService(const Ref<NSNetServiceBrowser>&,
                                                                    const Ref<NSNetService>&,
                                                                    bool) {}

// Posting

void RVFRemoteNotificationCenter::postNotificationName(std::string_view name) {
  startServiceForName(name);
}

/// Absent if the system has no socket or no port to give.
Ref<CFSocket> RVFRemoteNotificationCenter::listeningSocket() {
  CFSocketContext context;
  context.info = this;
  auto socket = CFSocketCreate(PF_INET, SOCK_STREAM, IPPROTO_TCP, kCFSocketAcceptCallBack,
                               &acceptCallBack, context);
  if (!socket) return nullptr;
  const int yes = 1;
  ::setsockopt(CFSocketGetNative(socket), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  return CFSocketSetAddress(socket, anyAddress()) == kCFSocketSuccess ? socket : nullptr;
}

void RVFRemoteNotificationCenter::startServiceForName(std::string_view name) {
  const auto socket = listeningSocket();
  if (!socket) return;
  const auto address = SocketAddress::fromDataBlock(CFSocketCopyAddress(socket));
  if (!address) return;
  CFRunLoopAddSource(NSRunLoop::currentRunLoop(), CFSocketCreateRunLoopSource(socket, 0),
                     NSRunLoopCommonModes);
  const auto service = publishedService(name, address->port());
  const auto info =
      NSDictionary::dictionaryWithEntries({{kSocketKey, socket}, {kNetServiceKey, service}});
  static const SEL kStop("stopServiceWithInfo:");
  performSelectorAfterDelay(refTo(this), kStop, info, kPublicationSeconds,
                            {std::string(NSDefaultRunLoopMode)});
}

void RVFRemoteNotificationCenter::stopServiceWithInfo(const Ref<NSDictionary>& info) {
  entry<NSNetService>(info, kNetServiceKey)->stop();
  CFSocketInvalidate(entry<CFSocket>(info, kSocketKey));
}

/// What is closed is `data` itself and not the descriptor that it points to: the accepted
/// connection stays open and is left alone. The platform keeps `data` away from numbers of
/// descriptors.
void RVFRemoteNotificationCenter::acceptCallBack(const Ref<CFSocket>& /*socket*/,
                                                 CFSocketCallBackType type,
                                                 const Ref<NSData>& /*address*/, const void* data,
                                                 void* /*info*/) {
  if (type != kCFSocketAcceptCallBack) return;
  ::close(static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(data)));
}

}  // namespace rvf
