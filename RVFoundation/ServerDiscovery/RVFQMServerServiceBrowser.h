// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Network/NSNetServiceBrowser.h"
#include "Platform/Runtime/NSObject.h"
#include "RVFoundation/ServerDiscovery/RVFQMServerService.h"

namespace rvf {

/// The DNS-SD service type of Quillmarsh servers.
inline constexpr std::string_view RVFQuillMarshServerServiceType = "_quillmarsh._tcp";

/// Finds the Quillmarsh servers of the network and groups their registrations by name.
///
///     const auto browser = RVFQMServerServiceBrowser::serviceBrowser();
///     browser->startBrowsingWithServiceListChangedHandler(
///         [](const auto& added, const auto& removed, const auto& changed) { … });
///
/// A server is reported as added before its TXT record was read; a changed report follows once it
/// is loaded. Belongs to the thread that starts browsing, whose run loop must run. The handler may
/// stop the browser. Stop it before letting it go: while servers are known it keeps itself alive.
///
/// Thread: the one that starts browsing. Lifetime: keeps itself while servers are known: `stop` it.
/// After `stop`, also within the handler, nothing is reported.
class RVF_EXPORT RVFQMServerServiceBrowser final : public NSObject,
                                                   public NSNetServiceBrowserDelegate {
 public:
  /// Exactly one of the three is present in each call.
  using ServiceListChangedHandler = std::function<void(const Ref<RVFQMServerService>& added,
                                                       const Ref<RVFQMServerService>& removed,
                                                       const Ref<RVFQMServerService>& changed)>;

  /// A new one, which does not browse yet.
  static Ref<RVFQMServerServiceBrowser> serviceBrowser();

  RVFQMServerServiceBrowser();
  ~RVFQMServerServiceBrowser() override;

  static Class classObject();
  Class isa() const override;

  /// "_quillmarsh._tcp" at first. Setting it has no effect on the search.
  const std::string& serviceType() const noexcept { return serviceType_; }
  void setServiceType(std::string serviceType);
  const ServiceListChangedHandler& serviceListChangedHandler() const noexcept {
    return serviceListChangedHandler_;
  }
  void setServiceListChangedHandler(ServiceListChangedHandler handler);
  /// The servers known now, in no defined order.
  std::vector<Ref<RVFQMServerService>> services() const;

  /// Searches all default browsing domains. Stop a running search first. A search that the
  /// platform cannot start reports nothing: the `isResponding` of its back end tells.
  void startBrowsingWithServiceListChangedHandler(ServiceListChangedHandler handler);
  /// Ends the search and forgets all servers; no report arrives afterwards.
  void stop();

  /// The server of this name, made and registered if there is none.
  Ref<RVFQMServerService> serviceForName(std::string_view name);
  /// Stops all known servers and takes their changed handlers away; they stay known.
  void cleanupNetServices();

  /// Whether a TXT record has a readable "demo" entry, and its boolean reading (false if there is
  /// none). An absent or empty record answers false and leaves `isDemo`, which may be null, alone.
  static bool serviceContainsDemo(bool* isDemo, const Ref<NSData>& forTXTRecordData);

  void netServiceBrowserDidFindService(const Ref<NSNetServiceBrowser>& browser,
                                       const Ref<NSNetService>& service, bool moreComing) override;
  void netServiceBrowserDidRemoveService(const Ref<NSNetServiceBrowser>& browser,
                                         const Ref<NSNetService>& service,
                                         bool moreComing) override;

 private:
  void reportChangeOf(const Ref<RVFQMServerService>& service);

  Ref<NSNetServiceBrowser> browser_;
  std::string serviceType_;
  ServiceListChangedHandler serviceListChangedHandler_;
  std::map<std::string, Ref<RVFQMServerService>, std::less<>> servicesByName_;
};

}  // namespace rvf
