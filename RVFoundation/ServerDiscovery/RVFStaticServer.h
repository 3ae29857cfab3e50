// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Network/NameLookup.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSError.h"
#include "Platform/Values/NSMutableDictionary.h"

namespace rvf {

/// The domain of name resolution errors; their codes are those of `getaddrinfo`.
inline constexpr std::string_view RVFNetDBErrorDomain = "kCFStreamErrorDomainNetDB";

/// A hand-entered address, split.
///
/// Thread: any, a plain value. Lifetime: refers to the text that was split, which the caller keeps.
struct RVFServerAddressParts {
  std::string_view host;  ///< keeps its square brackets
  std::string_view port;  ///< a number or a service name, not checked; "9630" if none was given
};

/// Splits "host", "host:port", "[IPv6]" or "[IPv6]:port" at the last colon behind the first "]".
/// The parts point into `address`. Linear in its length; any text has a result.
RVF_EXPORT RVFServerAddressParts RVFSplitServerAddress(std::string_view address) noexcept;

/// A server that the user entered by hand as an address text, with a description and a stable
/// identity. Two are equal when their `serverId` texts are.
///
///     const auto server = RVFStaticServer::staticServerWithAddress("till.example:8080");
///     server->resolveUsingCompletion([](const auto&, const auto& addresses, const auto& error,
///                                       bool wasReplaced) { … });
///
/// Belongs to the main thread, whose run loop must run for a resolution to be delivered.
///
/// Thread: the main one; look-ups run on a thread of their own and are delivered on it. Lifetime: a
/// look-up under way keeps it, and its result goes to the completion that is pending by then, else
/// to nobody. A completion may drop it; one that is set within it is cleared with it.
class RVF_EXPORT RVFStaticServer : public NSObject {
 public:
  /// One data block a socket address, in the resolver's order. `SocketAddress` reads them,
  /// `RVF_CURLURLWithAddressData` makes the base URL.
  using Addresses = std::vector<Ref<NSData>>;
  /// The outcome of a resolution: the addresses found (empty beside an error, absent when it was
  /// abandoned), or why there are none. `wasReplaced` says that a newer resolution took its place.
  using Completion = std::function<void(const Ref<RVFStaticServer>& server,
                                        const std::optional<Addresses>& addresses,
                                        const Ref<NSError>& error, bool wasReplaced)>;

  /// A new server, of a subclass if one is named, with a fresh `serverId` and no description.
  template <std::derived_from<RVFStaticServer> Server = RVFStaticServer>
  static Ref<Server> staticServerWithAddress(std::string_view address) {
    auto server = std::make_shared<Server>();
    server->setServerAddress(std::string(address));
    server->setNewServerId();
    return server;
  }
  /// From a stored record, see `dataDictionary`. A missing entry leaves its property absent; an
  /// entry that is no text is read by its description.
  template <std::derived_from<RVFStaticServer> Server = RVFStaticServer>
  static Ref<Server> initWithDataDictionary(const Ref<NSDictionary>& dictionary) {
    auto server = std::make_shared<Server>();
    if (dictionary) server->readDataDictionary(*dictionary);
    return server;
  }

  static Class classObject();
  Class isa() const override;

  /// As typed, and checked only when it is resolved. Absent until set.
  const std::optional<std::string>& serverAddress() const noexcept { return serverAddress_; }
  void setServerAddress(std::optional<std::string> address);
  const std::optional<std::string>& serverDescription() const noexcept {
    return serverDescription_;
  }
  void setServerDescription(std::optional<std::string> description);
  /// 36 characters, upper-case hexadecimal with hyphens (RFC 9562).
  const std::optional<std::string>& serverId() const noexcept { return serverId_; }
  void setServerId(std::optional<std::string> serverId);
  /// The pending resolution's callback, or none.
  const Completion& completion() const noexcept { return completion_; }
  void setCompletion(Completion completion);

  /// A new record with the entries "serverAddress", "serverDescription" and "serverId", each only
  /// if its property is present. A byte that is no UTF-8 stands there as U+FFFD, so that every
  /// server can be stored; the property itself keeps it.
  Ref<NSMutableDictionary> dataDictionary() const;
  /// The description, or the address where that is absent or empty, or "".
  std::string displayName() const;
  static std::set<std::string> keyPathsForValuesAffectingDisplayName();

  /// Looks `serverAddress` up in the background and returns at once. The completion runs later on
  /// the main thread. A pending completion is called first, directly, as replaced. Whichever
  /// look-up finishes first is delivered to the completion that is pending then.
  void resolveUsingCompletion(Completion completion);
  /// Abandons the pending resolution: its completion is called directly with neither addresses
  /// nor error. The look-up itself runs to its end unnoticed.
  void stopResolving();
  /// The look-up itself; blocks, for background threads. Delivers on the main thread.
  void resolveAddressForHost(std::string_view host, std::string_view andPort);

  /// The error for a `getaddrinfo` code.
  static Ref<NSError> netDBErrorForErrorCode(std::int32_t code);

  /// How names are looked up: `lookUpName` unless replaced, before the first resolution. Called on
  /// background threads. One that throws counts as `EAI_FAIL`.
  void setNameLookup(NameLookup lookup);

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;

 private:
  void setNewServerId();
  void readDataDictionary(const NSDictionary& record);
  void callAndClearCompletion(const std::optional<Addresses>& addresses, const Ref<NSError>& error,
                              bool wasReplaced);
  void deliverLater(const NameLookupResult& found);
  void deliver(const Addresses& addresses, const Ref<NSError>& error);

  std::optional<std::string> serverAddress_;
  std::optional<std::string> serverDescription_;
  std::optional<std::string> serverId_;
  Completion completion_;
  NameLookup nameLookup_ = &lookUpName;
  bool cancelResolving_ = false;  // written only: dropping the completion is what cancels
};

}  // namespace rvf
