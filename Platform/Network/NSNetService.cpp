// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NSNetService.h"

#include <functional>
#include <utility>

#include "Platform/Network/NetServiceCore.h"
#include "Platform/Network/ServiceNames.h"
#include "Platform/Network/TXTRecord.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Values/NSArray.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSNetService::classObject);

/// The list as an object, for messages and key-value coding.
Ref<NSArray> addressesOf(NSObject& self, SEL) {
  return NSArray::arrayWithObjects(static_cast<NSNetService&>(self).addresses());
}

}  // namespace

NSNetServiceDelegate::~NSNetServiceDelegate() = default;
void NSNetServiceDelegate::netServiceWillResolve(const Ref<NSNetService>&) {}
void NSNetServiceDelegate::netServiceDidResolveAddress(const Ref<NSNetService>&) {}
void NSNetServiceDelegate::netServiceDidNotResolve(const Ref<NSNetService>&,
                                                   const Ref<NSDictionary>&) {}
void NSNetServiceDelegate::netServiceDidStop(const Ref<NSNetService>&) {}
void NSNetServiceDelegate::netServiceDidUpdateTXTRecordData(const Ref<NSNetService>&,
                                                            const Ref<NSData>&) {}
void NSNetServiceDelegate::netServiceWillPublish(const Ref<NSNetService>&) {}
void NSNetServiceDelegate::netServiceDidPublish(const Ref<NSNetService>&) {}
void NSNetServiceDelegate::netServiceDidNotPublish(const Ref<NSNetService>&,
                                                   const Ref<NSDictionary>&) {}

NSNetService::NSNetService(Private) : core_(std::make_shared<Core>(*this)) {}
NSNetService::~NSNetService() = default;

Ref<NSNetService> NSNetService::initWithDomain(std::string_view domain, std::string_view type,
                                               std::string_view name) {
  auto service = std::make_shared<NSNetService>(Private());
  service->core_->identity = {std::string(name), withFinalDot(type), withFinalDot(domain)};
  return service;
}

Ref<NSNetService> NSNetService::initWithDomain(std::string_view domain, std::string_view type,
                                               std::string_view name, std::uint16_t port) {
  auto service = initWithDomain(domain, type, name);
  service->core_->port = port;
  return service;
}

Class NSNetService::classObject() {
  static const Class kClass = ClassBuilder<NSNetService>("NSNetService", NSObject::classObject())
                                  .property("name", "T@\"NSString\",R,C,N")
                                  .property("type", "T@\"NSString\",R,C,N")
                                  .property("domain", "T@\"NSString\",R,C,N")
                                  .property("hostName", "T@\"NSString\",R,C,N")
                                  .property("port", "Ti,R,N")
                                  .property("addresses", "T@\"NSArray\",R,C,N")
                                  .property("TXTRecordData", "T@\"NSData\",C,N")
                                  .method<&NSNetService::name>("name")
                                  .method<&NSNetService::type>("type")
                                  .method<&NSNetService::domain>("domain")
                                  .method<&NSNetService::hostName>("hostName")
                                  .method<&NSNetService::port>("port")
                                  .method("addresses", IMP(&addressesOf))
                                  .method<&NSNetService::TXTRecordData>("TXTRecordData")
                                  .method<&NSNetService::setTXTRecordData>("setTXTRecordData:")
                                  .method<&NSNetService::resolveWithTimeout>("resolveWithTimeout:")
                                  .method<&NSNetService::startMonitoring>("startMonitoring")
                                  .method<&NSNetService::stopMonitoring>("stopMonitoring")
                                  .method<&NSNetService::publish>("publish")
                                  .method<&NSNetService::stop>("stop")
                                  .registered();
  return kClass;
}

Class NSNetService::isa() const {
  return classObject();
}

std::string NSNetService::name() const {
  return core_->identity.name;
}

std::string NSNetService::type() const {
  return core_->identity.type;
}

std::string NSNetService::domain() const {
  return core_->identity.domain;
}

int NSNetService::port() const {
  return core_->port ? *core_->port : -1;
}

std::optional<std::string> NSNetService::hostName() const {
  return core_->hostName;
}

std::vector<Ref<NSData>> NSNetService::addresses() const {
  return core_->addresses;
}

Ref<NSData> NSNetService::TXTRecordData() const {
  return core_->txtRecord;
}

void NSNetService::setTXTRecordData(Ref<NSData> data) {
  announceChange(*this, "TXTRecordData", [&] { core_->setTXTRecord(std::move(data)); });
}

void NSNetService::setNameIsUnique(bool isUnique) {
  core_->nameIsUnique = isUnique;
}

void NSNetService::setRecordLifetime(std::uint32_t seconds) {
  core_->recordLifetime = seconds;
}

std::shared_ptr<NSNetServiceDelegate> NSNetService::delegate() const {
  return core_->delegate.lock();
}

void NSNetService::setDelegate(std::weak_ptr<NSNetServiceDelegate> delegate) {
  core_->delegate = std::move(delegate);
}

void NSNetService::resolveWithTimeout(double seconds) {
  core_->resolve(seconds);
}

void NSNetService::startMonitoring() {
  core_->startMonitoring();
}

void NSNetService::stopMonitoring() {
  core_->stopMonitoring();
}

void NSNetService::publish() {
  core_->publish();
}

void NSNetService::stop() {
  core_->stop();
}

Ref<NSDictionary> NSNetService::dictionaryFromTXTRecordData(const Ref<NSData>& data) {
  return data && !data->empty() ? decodedTXTRecord(data->bytes()) : nullptr;
}

Ref<NSData> NSNetService::dataFromTXTRecordDictionary(const Ref<NSDictionary>& dictionary) {
  auto record = dictionary ? encodedTXTRecord(*dictionary) : std::nullopt;
  return record ? std::make_shared<NSData>(std::move(*record)) : nullptr;
}

bool NSNetService::isEqual(const NSObject* other) const {
  const auto* service = dynamic_cast<const NSNetService*>(other);
  return service && service->core_->identity == core_->identity;
}

std::size_t NSNetService::hash() const {
  const ServiceIdentity& identity = core_->identity;
  return std::hash<std::string>()(identity.name + '\0' + identity.type + '\0' + identity.domain);
}

std::string NSNetService::description() const {
  const ServiceIdentity& identity = core_->identity;
  return "<NSNetService " + identity.domain + " " + identity.type + " " + identity.name + " " +
         std::to_string(port()) + ">";
}

}  // namespace rvf
