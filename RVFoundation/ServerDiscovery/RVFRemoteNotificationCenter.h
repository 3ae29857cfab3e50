// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "Platform/Export.h"
#include "Platform/Network/CFSocket.h"
#include "Platform/Network/NSNetServiceBrowser.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Selector.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSMutableDictionary.h"

namespace rvf {

/// Sends signals without content, called notifications, between processes of one network.
///
/// A notification's name is a DNS-SD service type (RFC 6763): an underscore, a label, "._tcp".
/// Posting publishes a service of that type for ten seconds, under a name that no other has;
/// observing browses for the type, and each service found is one delivery. That it appeared is the
/// whole message: nothing is resolved, connected to or read. Who starts observing within the ten
/// seconds still receives it, and the own process receives its own posts.
///
///     const auto center = RVFRemoteNotificationCenter::defaultCenter();
///     center->addObserver(till, SEL("menuChanged"), "_menu-changed._tcp");
///     center->postNotificationName("_menu-changed._tcp");
///
/// Belongs to the thread that uses it first, usually the main thread, whose run loop must run:
/// deliveries come from it, and so does the end of a publication. Observers are not owned; one
/// that goes away without removing itself is skipped, and its browsers end when one of them finds
/// something next or any observer is added or removed: until then its names count as observed by
/// nobody, but are still browsed for. An action may add and remove observers, drop its own
/// observer, post, run the loop again, and throw.
///
/// Thread: the one that uses it first. Lifetime: observers are not kept; the default center lives
/// as long as the process.
class RVF_EXPORT RVFRemoteNotificationCenter final : public NSObject,
                                                     public NSNetServiceBrowserDelegate {
 public:
  /// The process's shared center. Thread-safe.
  static const Ref<RVFRemoteNotificationCenter>& defaultCenter();

  RVFRemoteNotificationCenter();
  ~RVFRemoteNotificationCenter() override;

  static Class classObject();
  Class isa() const override;

  /// Sends `selector`, an action without arguments, to the observer for each notification of this
  /// name. The name is not checked: a malformed one is never delivered. Raises
  /// `NSInvalidArgumentException` if anybody observes exactly this name already, and for an absent
  /// observer; nothing is changed then.
  void addObserver(const id& observer, SEL selector, std::string_view name);
  /// Ends everything that the object observes. One that observes nothing is fine.
  void removeObserver(const id& observer);

  /// Sends one notification: `startServiceForName`.
  void postNotificationName(std::string_view name);
  /// Publishes a service of this type for ten seconds. Every call is a notification of its own.
  /// Dropped silently where no socket can be had. A connection to the service is accepted and left
  /// alone, so each takes a descriptor for good.
  void startServiceForName(std::string_view name);
  /// Ends a publication: {"socket": `CFSocket`, "netService": `NSNetService`}.
  void stopServiceWithInfo(const Ref<NSDictionary>& info);

  /// What is observed, for those who debug: observers as `NSValue`s that do not own them, to names,
  /// to records {"selector": text, "observer": `NSValue`, "browser": `NSNetServiceBrowser`, "name":
  /// text}.
  const Ref<NSMutableDictionary>& observers() const noexcept { return observers_; }
  /// The same records by browser, again an `NSValue` that does not own it.
  const Ref<NSMutableDictionary>& netServiceBrowsers() const noexcept {
    return netServiceBrowsers_;
  }

  /// The callout of the publications' sockets. For an accept event it closes the number that `data`
  /// itself is, cut to 32 bits, which is no descriptor, so nothing is closed.
  static void acceptCallBack(const Ref<CFSocket>& socket, CFSocketCallBackType type,
                             const Ref<NSData>& address, const void* data, void* info);

  void netServiceBrowserDidFindService(const Ref<NSNetServiceBrowser>& browser,
                                       const Ref<NSNetService>& service, bool moreComing) override;
  /// Does nothing.
  void netServiceBrowserDidRemoveService(const Ref<NSNetServiceBrowser>& browser,
                                         const Ref<NSNetService>& service,
                                         bool moreComing) override;

 private:
  bool isObserved(std::string_view name) const;
  Ref<NSMutableDictionary> namesOf(const id& observerKey);
  void endObservationsOf(const id& observerKey);
  void endObservationsOfTheGone();
  Ref<CFSocket> listeningSocket();

  Ref<NSMutableDictionary> observers_ = NSMutableDictionary::dictionary();
  Ref<NSMutableDictionary> netServiceBrowsers_ = NSMutableDictionary::dictionary();
};

}  // namespace rvf
