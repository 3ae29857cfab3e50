// SPDX-License-Identifier: Apache-2.0
#include "tests/network/ProbeSession.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <iostream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "Platform/Network/NSNetServicesError.h"
#include "Platform/Network/SocketAddress.h"
#include "Platform/Values/NSNull.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"
#include "tests/network/SteppedClock.h"

namespace rvf::network {
namespace {

using Json = ProbeSession::Json;

double monotonicMilliseconds() {
  using Milliseconds = std::chrono::duration<double, std::milli>;
  return Milliseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

long codeOf(const Ref<NSDictionary>& failure) {
  const auto code =
      std::dynamic_pointer_cast<NSNumber>(failure->objectForKey(NSNetServicesErrorCode));
  return code ? code->integerValue() : 0;
}

/// Entries are texts; null is a key without "=".
Ref<NSData> recordOf(const Json& entries) {
  NSDictionary::Entries values;
  for (const auto& [key, value] : entries.items()) {
    id boxed = NSNull::null();
    if (!value.is_null()) boxed = NSString::stringWithString(value.get<std::string>());
    values[NSString::stringWithString(key)] = std::move(boxed);
  }
  return NSNetService::dataFromTXTRecordDictionary(std::make_shared<NSDictionary>(values));
}

Json entriesOf(const Ref<NSData>& record) {
  Json entries = Json::object();
  const auto decoded = NSNetService::dictionaryFromTXTRecordData(record);
  if (!decoded) return nullptr;
  for (const auto& [key, value] : decoded->entries()) {
    const auto data = std::dynamic_pointer_cast<NSData>(value);
    entries[*unboxText(key)] = data ? Json(data->characters()) : Json(nullptr);
  }
  return entries;
}

Json addressesOf(const NSNetService& service) {
  Json addresses = Json::array();
  for (const auto& block : service.addresses()) {
    const auto address = SocketAddress::fromDataBlock(block);
    if (!address) throw std::runtime_error("an address block that holds no address");
    addresses.push_back({{"address", address->addressText()},
                         {"port", address->port()},
                         {"scope", address->scope()}});
  }
  return addresses;
}

}  // namespace

void ProbeSession::perform(const Json& command) {
  const std::string action = command.at("do");
  if (action == "browse") return browse(command);
  if (action == "stopBrowsing") return browser_->stop();
  if (action == "publish") return publish(command);
  if (action == "setTXT") return service(command)->setTXTRecordData(recordOf(command.at("txt")));
  if (action == "resolve") return service(command)->resolveWithTimeout(command.at("timeout"));
  if (action == "monitor") return service(command)->startMonitoring();
  if (action == "stopMonitoring") return service(command)->stopMonitoring();
  if (action == "stop") return service(command)->stop();
  if (action == "holdPort") return holdPort(command.at("port"));
  if (action == "observe") return notifications_.observe(command.at("name"));
  if (action == "endObserving") return notifications_.endObserving(command.at("name"));
  if (action == "post") {
    return notifications_.post(command.at("name"), command.at("count"), command.at("again"));
  }
  if (action == "countDescriptors") return notifications_.countDescriptors();
  if (action == "stepClock") return stepWallClock(std::chrono::seconds(command.at("seconds")));
  if (action == "sync") return write({{"event", "synced"}, {"number", command.at("number")}});
  throw std::invalid_argument("unknown command " + action);
}

void ProbeSession::browse(const Json& command) {
  browser_->setDelegate(weak_from_this());
  browser_->searchForServicesOfType(command.at("type").get<std::string>(),
                                    command.at("domain").get<std::string>());
}

Ref<NSNetService> ProbeSession::service(const Json& command) {
  auto& service = services_[command.at("service")];
  if (service) return service;
  const std::string domain = command.value("domain", "local.");
  const std::string type = command.at("type");
  const std::string name = command.at("name");
  service = command.contains("port")
                ? NSNetService::initWithDomain(domain, type, name, command.at("port"))
                : NSNetService::initWithDomain(domain, type, name);
  service->setDelegate(weak_from_this());
  return service;
}

void ProbeSession::publish(const Json& command) {
  const auto published = service(command);
  if (command.contains("txt")) published->setTXTRecordData(recordOf(command.at("txt")));
  published->setNameIsUnique(command.value("unique", false));
  if (command.contains("lifetime")) published->setRecordLifetime(command.at("lifetime"));
  published->publish();
}

/// Takes a UDP port for itself alone, of both families, until the program ends.
void ProbeSession::holdPort(std::uint16_t port) {
  sockaddr_in6 address{};
  address.sin6_family = AF_INET6;
  address.sin6_port = htons(port);
  const int descriptor = ::socket(AF_INET6, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::system_error(errno, std::generic_category(), "holding a port");
  }
  write({{"event", "holding"}});
}

void ProbeSession::write(Json event) {
  event["ms"] = monotonicMilliseconds();
  std::cout << event.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
}

void ProbeSession::report(const char* event, const Ref<NSNetService>& service, Json more) {
  more["event"] = event;
  more["name"] = service->name();
  for (const auto& [label, labelled] : services_) {
    if (labelled == service) more["service"] = label;
  }
  write(std::move(more));
}

void ProbeSession::netServiceWillResolve(const Ref<NSNetService>& service) {
  report("willResolve", service);
}

void ProbeSession::netServiceDidResolveAddress(const Ref<NSNetService>& service) {
  report("resolved", service,
         {{"host", service->hostName().value_or("")},
          {"port", service->port()},
          {"addresses", addressesOf(*service)}});
}

void ProbeSession::netServiceDidNotResolve(const Ref<NSNetService>& service,
                                           const Ref<NSDictionary>& errorDict) {
  report("didNotResolve", service, {{"code", codeOf(errorDict)}});
}

void ProbeSession::netServiceDidStop(const Ref<NSNetService>& service) {
  report("stopped", service);
}

void ProbeSession::netServiceDidUpdateTXTRecordData(const Ref<NSNetService>& service,
                                                    const Ref<NSData>& data) {
  report("txt", service, {{"entries", entriesOf(data)}});
}

void ProbeSession::netServiceWillPublish(const Ref<NSNetService>& service) {
  report("willPublish", service);
}

void ProbeSession::netServiceDidPublish(const Ref<NSNetService>& service) {
  report("published", service);
}

void ProbeSession::netServiceDidNotPublish(const Ref<NSNetService>& service,
                                           const Ref<NSDictionary>& errorDict) {
  report("didNotPublish", service, {{"code", codeOf(errorDict)}});
}

void ProbeSession::netServiceBrowserWillSearch(const Ref<NSNetServiceBrowser>&) {
  write({{"event", "willSearch"}});
}

void ProbeSession::netServiceBrowserDidNotSearch(const Ref<NSNetServiceBrowser>&,
                                                 const Ref<NSDictionary>& errorDict) {
  write({{"event", "didNotSearch"}, {"code", codeOf(errorDict)}});
}

void ProbeSession::netServiceBrowserDidStopSearch(const Ref<NSNetServiceBrowser>&) {
  write({{"event", "stoppedSearch"}});
}

void ProbeSession::netServiceBrowserDidFindService(const Ref<NSNetServiceBrowser>&,
                                                   const Ref<NSNetService>& service,
                                                   bool moreComing) {
  report("found", service,
         {{"type", service->type()}, {"domain", service->domain()}, {"more", moreComing}});
}

void ProbeSession::netServiceBrowserDidRemoveService(const Ref<NSNetServiceBrowser>&,
                                                     const Ref<NSNetService>& service,
                                                     bool moreComing) {
  report("removed", service,
         {{"type", service->type()}, {"domain", service->domain()}, {"more", moreComing}});
}

}  // namespace rvf::network
