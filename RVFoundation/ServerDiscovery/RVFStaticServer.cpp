// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/RVFStaticServer.h"

#include <netdb.h>
#include <sys/socket.h>

#include <exception>
#include <map>
#include <utility>

#include "Platform/Locale/NSBundle.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/System/UUID.h"
#include "Platform/Text/Text.h"
#include "Platform/Values/NSString.h"
#include "RVFoundation/BackgroundExecution/NSObject-RVFExtensions.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&RVFStaticServer::classObject);

constexpr std::string_view kDefaultPort = "9630";
constexpr std::string_view kStringTable = "RVFStaticServer";
constexpr std::string_view kAddressKey = "serverAddress";
constexpr std::string_view kDescriptionKey = "serverDescription";
constexpr std::string_view kIdKey = "serverId";

std::optional<std::string> textOf(const id& value) {
  return value ? std::optional(value->description()) : std::nullopt;
}

/// Shared by all records, of which there may be thousands.
struct RecordKeys {
  id address = box(kAddressKey);
  id description = box(kDescriptionKey);
  id serverId = box(kIdKey);
};

const RecordKeys& recordKeys() {
  static const RecordKeys kKeys;
  return kKeys;
}

/// No property list holds anything but UTF-8, and one bad text must not keep a whole list from
/// being saved.
void store(const std::optional<std::string>& text, const id& key, NSMutableDictionary& record) {
  if (text) record.setObject(box(isValidUtf8(*text) ? *text : wellFormedUtf8(*text)), key);
}

std::string_view withoutBrackets(std::string_view host) {
  if (host.size() > 1 && host.starts_with('[') && host.ends_with(']')) {
    return host.substr(1, host.size() - 2);
  }
  return host;
}

/// Texts of our own for resolver codes that users meet; the resolver's own serve for the rest.
struct ResolverTexts {
  std::map<int, std::string> descriptions;
  std::map<int, std::string> suggestions;
};

const ResolverTexts& resolverTexts() {
  static const ResolverTexts kTexts = [] {
    const Ref<NSBundle> bundle = NSBundle::bundleForClass(RVFStaticServer::classObject());
    return ResolverTexts{
        {{EAI_NONAME, bundle->localizedStringForKey("An error occurred while attempting to resolve "
                                                    "the selected Quillmarsh Server.",
                                                    kStringTable)}},
        {{EAI_NONAME, bundle->localizedStringForKey("Please check your network connection, or "
                                                    "select another server.",
                                                    kStringTable)}}};
  }();
  return kTexts;
}

}  // namespace

RVFServerAddressParts RVFSplitServerAddress(std::string_view address) noexcept {
  const std::size_t bracket = address.find(']');
  const std::size_t searchStart = bracket == std::string_view::npos ? 0 : bracket + 1;
  const std::size_t colon = address.rfind(':');
  if (colon == std::string_view::npos || colon < searchStart) return {address, kDefaultPort};
  return {address.substr(0, colon), address.substr(colon + 1)};
}

void RVFStaticServer::setNewServerId() {
  setServerId(newUUIDText());
}

void RVFStaticServer::readDataDictionary(const NSDictionary& record) {
  setServerAddress(textOf(record.objectForKey(kAddressKey)));
  setServerDescription(textOf(record.objectForKey(kDescriptionKey)));
  setServerId(textOf(record.objectForKey(kIdKey)));
}

Class RVFStaticServer::classObject() {
  static const Class kClass =
      ClassBuilder<RVFStaticServer>("RVFStaticServer", NSObject::classObject())
          .property("serverAddress", "T@\"NSString\",C,N,V_serverAddress")
          .property("serverDescription", "T@\"NSString\",C,N,V_serverDescription")
          .property("serverId", "T@\"NSString\",C,N,V_serverId")
          .property("completion", "T@?,C,N,V_completion")
          .ivar<&RVFStaticServer::serverAddress_>("_serverAddress")
          .ivar<&RVFStaticServer::serverDescription_>("_serverDescription")
          .ivar<&RVFStaticServer::serverId_>("_serverId")
          .ivar<&RVFStaticServer::completion_>("_completion")
          .ivar<&RVFStaticServer::cancelResolving_>("cancelResolving")
          .method<&RVFStaticServer::serverAddress>("serverAddress")
          .method<&RVFStaticServer::setServerAddress>("setServerAddress:")
          .method<&RVFStaticServer::serverDescription>("serverDescription")
          .method<&RVFStaticServer::setServerDescription>("setServerDescription:")
          .method<&RVFStaticServer::serverId>("serverId")
          .method<&RVFStaticServer::setServerId>("setServerId:")
          .method<&RVFStaticServer::completion>("completion")
          .method<&RVFStaticServer::setCompletion>("setCompletion:")
          .method<&RVFStaticServer::resolveUsingCompletion>("resolveUsingCompletion:")
          .method<&RVFStaticServer::resolveAddressForHost>("resolveAddressForHost:andPort:")
          .method<&RVFStaticServer::displayName>("displayName")
          .method(
              "keyPathsForValuesAffectingDisplayName",
              dependentKeyImplementation<&RVFStaticServer::keyPathsForValuesAffectingDisplayName>())
          .method<&RVFStaticServer::dataDictionary>("dataDictionary")
          .method<&RVFStaticServer::stopResolving>("stopResolving")
          .registered();
  return kClass;
}

Class RVFStaticServer::isa() const {
  return classObject();
}

void RVFStaticServer::setServerAddress(std::optional<std::string> address) {
  announceChange(*this, "serverAddress", [&] { serverAddress_ = std::move(address); });
}

void RVFStaticServer::setServerDescription(std::optional<std::string> description) {
  announceChange(*this, "serverDescription", [&] { serverDescription_ = std::move(description); });
}

void RVFStaticServer::setServerId(std::optional<std::string> serverId) {
  announceChange(*this, "serverId", [&] { serverId_ = std::move(serverId); });
}

void RVFStaticServer::setCompletion(Completion completion) {
  announceChange(*this, "completion", [&] { completion_ = std::move(completion); });
}

void RVFStaticServer::setNameLookup(NameLookup lookup) {
  nameLookup_ = std::move(lookup);
}

Ref<NSMutableDictionary> RVFStaticServer::dataDictionary() const {
  auto record = NSMutableDictionary::dictionary();
  store(serverAddress_, recordKeys().address, *record);
  store(serverDescription_, recordKeys().description, *record);
  store(serverId_, recordKeys().serverId, *record);
  return record;
}

std::string RVFStaticServer::displayName() const {
  if (serverDescription_ && !serverDescription_->empty()) return *serverDescription_;
  return serverAddress_.value_or("");
}

std::set<std::string> RVFStaticServer::keyPathsForValuesAffectingDisplayName() {
  return {"serverDescription", "serverAddress"};
}

bool RVFStaticServer::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const auto* server = dynamic_cast<const RVFStaticServer*>(other);
  return server && serverId_ && serverId_ == server->serverId_;
}

std::size_t RVFStaticServer::hash() const {
  return serverId_ ? box(*serverId_)->hash() : 0;
}

void RVFStaticServer::resolveUsingCompletion(Completion completion) {
  const auto self = refTo(this);
  callAndClearCompletion(std::nullopt, nullptr, true);
  setCompletion(std::move(completion));
  cancelResolving_ = false;
  const std::string address = serverAddress_.value_or("");
  const RVFServerAddressParts parts = RVFSplitServerAddress(address);
  try {
    RVF_performBlockInBackground(
        self, [self, host = std::string(parts.host), port = std::string(parts.port)] {
          self->resolveAddressForHost(host, port);
        });
  } catch (const NSException&) {  // the system has no thread left: whoever waits must be told
    // uncovered: a test would have to use up the threads of the system
    deliverLater({EAI_AGAIN, {}});
  }
}

/// The pending completion goes even if it throws: it has been called.
void RVFStaticServer::callAndClearCompletion(const std::optional<Addresses>& addresses,
                                             const Ref<NSError>& error, bool wasReplaced) {
  const Completion completion = completion_;
  if (!completion) return;
  const auto self = refTo(this);
  try {
    completion(self, addresses, error, wasReplaced);
  } catch (...) {
    completion_ = nullptr;  // untold: the exception is what there is to say
    throw;
  }
  setCompletion(nullptr);
}

void RVFStaticServer::stopResolving() {
  cancelResolving_ = true;
  callAndClearCompletion(std::nullopt, nullptr, false);
}

void RVFStaticServer::resolveAddressForHost(std::string_view host, std::string_view andPort) {
  NameLookupResult found;
  try {
    found = nameLookup_(std::string(withoutBrackets(host)), std::string(andPort));
  } catch (const std::exception&) {
    found = {EAI_FAIL, {}};
  }
  deliverLater(found);
}

void RVFStaticServer::deliverLater(const NameLookupResult& found) {
  Addresses addresses;
  for (const NameLookupEntry& entry : found.entries) {
    if (entry.family == AF_INET || entry.family == AF_INET6) addresses.push_back(entry.address);
  }
  Ref<NSError> error;
  if (found.code != 0) {
    error = netDBErrorForErrorCode(found.code);
  } else if (addresses.empty()) {
    error = netDBErrorForErrorCode(EAI_FAIL);
  }
  const auto self = refTo(this);
  RVF_performBlockOnMainThread(
      self, [self, addresses = std::move(addresses), error] { self->deliver(addresses, error); });
}

void RVFStaticServer::deliver(const Addresses& addresses, const Ref<NSError>& error) {
  callAndClearCompletion(addresses, error, false);
}

Ref<NSError> RVFStaticServer::netDBErrorForErrorCode(std::int32_t code) {
  const ResolverTexts& texts = resolverTexts();
  const auto description = texts.descriptions.find(code);
  auto userInfo = NSMutableDictionary::dictionary();
  userInfo->setObject(
      box(description == texts.descriptions.end() ? gai_strerror(code) : description->second),
      NSLocalizedDescriptionKey);
  if (const auto suggestion = texts.suggestions.find(code); suggestion != texts.suggestions.end()) {
    userInfo->setObject(box(suggestion->second), NSLocalizedRecoverySuggestionErrorKey);
  }
  return NSError::errorWithDomain(RVFNetDBErrorDomain, code, userInfo->copy());
}

}  // namespace rvf
