// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Network/NSNetService.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// One Quillmarsh server as browsing shows it: all DNS-SD registrations of its name, one of them
/// the main one, and the demo flag from their TXT records.
///
/// Made and filled by `RVFQMServerServiceBrowser`. Belongs to the thread that browses, the main
/// thread of a client. The registrations do not own it, although it is their delegate until their
/// TXT record has told the flag.
///
/// Thread: that of the browser. Lifetime: keeps its registrations; may be held after its removal,
/// and then hears nothing more.
class RVF_EXPORT RVFQMServerService final : public NSObject, public NSNetServiceDelegate {
 public:
  using ChangedHandler = std::function<void()>;
  using DomainSuffixes = std::array<std::string, 2>;

  static Class classObject();
  Class isa() const override;

  /// The registrations in the order they were added.
  const std::vector<Ref<NSNetService>>& netServices() const noexcept { return netServices_; }
  /// The registration to resolve: the first local one, else the first; absent if there is none.
  const Ref<NSNetService>& mainService() const noexcept { return mainService_; }
  void setMainService(Ref<NSNetService> service);
  /// Whether the server is a demo server; false until `isLoaded`.
  bool isDemo() const noexcept { return isDemo_; }
  void setIsDemo(bool isDemo);
  /// Whether a TXT record with a "demo" entry has been read. Never becomes false again.
  bool isLoaded() const noexcept { return isLoaded_; }
  void setIsLoaded(bool isLoaded);
  /// Called after a change that the browser does not see itself.
  const ChangedHandler& serviceChangedHandler() const noexcept { return serviceChangedHandler_; }
  void setServiceChangedHandler(ChangedHandler handler);

  /// Whether the main registration is in one of the wide-area domains.
  bool isUsingBackToMyMac() const;
  /// The main registration's name for display, marked if it is a wide-area one; absent without a
  /// main registration.
  std::optional<std::string> name() const;
  /// What `name` depends on: exactly "mainService".
  static std::set<std::string> keyPathsForValuesAffectingName();
  static std::set<std::string> keyPathsForValuesAffectingIsUsingBackToMyMac();

  /// The domain endings that make a registration a wide-area one. Set them before browsing, once
  /// for the process.
  static const DomainSuffixes& wideAreaDomainSuffixes();
  static void setWideAreaDomainSuffixes(DomainSuffixes suffixes);

  /// Takes a registration in, unless an equal one is held, and starts watching its TXT record. A
  /// local one ("local.") displaces a main registration that is not. Never calls the handler.
  void addNetService(const Ref<NSNetService>& service);
  /// Lets a registration go and chooses the main one anew if it was that. Calls the handler if
  /// registrations remain.
  void removeNetService(const Ref<NSNetService>& service);
  /// Ends the watching of TXT records that is still under way; the registrations stay.
  void stop();

  /// Reads the demo flag and, once there is one, stops watching that registration and calls the
  /// handler.
  void netServiceDidUpdateTXTRecordData(const Ref<NSNetService>& service,
                                        const Ref<NSData>& data) override;

 private:
  void chooseMainService();
  void stopWatching(NSNetService& service);
  void callChangedHandler();

  std::vector<Ref<NSNetService>> netServices_;
  Ref<NSNetService> mainService_;
  ChangedHandler serviceChangedHandler_;
  bool isDemo_ = false;
  bool isLoaded_ = false;
};

}  // namespace rvf
