// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "Platform/Network/NSNetService.h"
#include "Platform/Network/NSNetServiceBrowser.h"
#include "tests/network/NotificationSession.h"

namespace rvf::network {

/// What a probe has under way: one browser, and services by the labels that the commands give
/// them. Every callback is written as one line, with the milliseconds of the monotonic clock.
class ProbeSession final : public NSNetServiceDelegate,
                           public NSNetServiceBrowserDelegate,
                           public std::enable_shared_from_this<ProbeSession> {
 public:
  using Json = nlohmann::json;

  void perform(const Json& command);

 private:
  void browse(const Json& command);
  void publish(const Json& command);
  void holdPort(std::uint16_t port);
  /// The labelled service, made from the command if there is none.
  Ref<NSNetService> service(const Json& command);
  void write(Json event);
  void report(const char* event, const Ref<NSNetService>& service, Json more = Json::object());

  void netServiceWillResolve(const Ref<NSNetService>& service) override;
  void netServiceDidResolveAddress(const Ref<NSNetService>& service) override;
  void netServiceDidNotResolve(const Ref<NSNetService>& service,
                               const Ref<NSDictionary>& errorDict) override;
  void netServiceDidStop(const Ref<NSNetService>& service) override;
  void netServiceDidUpdateTXTRecordData(const Ref<NSNetService>& service,
                                        const Ref<NSData>& data) override;
  void netServiceWillPublish(const Ref<NSNetService>& service) override;
  void netServiceDidPublish(const Ref<NSNetService>& service) override;
  void netServiceDidNotPublish(const Ref<NSNetService>& service,
                               const Ref<NSDictionary>& errorDict) override;

  void netServiceBrowserWillSearch(const Ref<NSNetServiceBrowser>& browser) override;
  void netServiceBrowserDidNotSearch(const Ref<NSNetServiceBrowser>& browser,
                                     const Ref<NSDictionary>& errorDict) override;
  void netServiceBrowserDidStopSearch(const Ref<NSNetServiceBrowser>& browser) override;
  void netServiceBrowserDidFindService(const Ref<NSNetServiceBrowser>& browser,
                                       const Ref<NSNetService>& service, bool moreComing) override;
  void netServiceBrowserDidRemoveService(const Ref<NSNetServiceBrowser>& browser,
                                         const Ref<NSNetService>& service,
                                         bool moreComing) override;

  Ref<NSNetServiceBrowser> browser_ = NSNetServiceBrowser::browser();
  std::map<std::string, Ref<NSNetService>> services_;
  NotificationSession notifications_{[this](Json event) { write(std::move(event)); }};
};

}  // namespace rvf::network
