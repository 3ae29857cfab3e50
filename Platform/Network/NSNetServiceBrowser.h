// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Network/NSNetService.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

class NSNetServiceBrowser;

/// What a browser tells its delegate, on the run loop of the thread that started the search.
/// Override what you need; the rest is skipped.
///
/// Thread: that of the search. Lifetime: not owned by the browser; may drop it, and itself, in any
/// of these.
class RVF_EXPORT NSNetServiceBrowserDelegate {
 public:
  virtual ~NSNetServiceBrowserDelegate();
  virtual void netServiceBrowserWillSearch(const Ref<NSNetServiceBrowser>& browser);
  virtual void netServiceBrowserDidNotSearch(const Ref<NSNetServiceBrowser>& browser,
                                             const Ref<NSDictionary>& errorDict);
  virtual void netServiceBrowserDidStopSearch(const Ref<NSNetServiceBrowser>& browser);
  virtual void netServiceBrowserDidFindService(const Ref<NSNetServiceBrowser>& browser,
                                               const Ref<NSNetService>& service, bool moreComing);
  virtual void netServiceBrowserDidRemoveService(const Ref<NSNetServiceBrowser>& browser,
                                                 const Ref<NSNetService>& service, bool moreComing);
};

/// Looks for DNS-SD registrations of one type.
///
/// One find for a name, type and domain, however many interfaces and protocols show it, and one
/// removal, with the same object, when the last of them is gone. A lost responder is found again by
/// itself. This process's own registrations are seen too. The delegate is not owned and is read
/// when a callback is delivered; after `stop` no find or removal arrives.
///
/// Thread: that of the search, which also lets the last reference go. Lifetime: its end ends the
/// search untold; services that it found may outlive it.
class RVF_EXPORT NSNetServiceBrowser final : public NSObject {
 public:
  /// Idle, without delegate.
  static Ref<NSNetServiceBrowser> browser();
  ~NSNetServiceBrowser() override;

  static Class classObject();
  Class isa() const override;

  /// Not owned: absent once it is gone.
  std::shared_ptr<NSNetServiceBrowserDelegate> delegate() const;
  void setDelegate(std::weak_ptr<NSNetServiceBrowserDelegate> delegate);

  /// Starts the search, reported by `WillSearch`, or by `DidNotSearch` with -72003 if a search
  /// is under way and -72004 for a malformed type. An empty domain is every default browsing
  /// domain; "local." is always among them.
  void searchForServicesOfType(std::string_view type, std::string_view inDomain);
  /// Ends the search, with `DidStopSearch` before it returns; idle: nothing.
  void stop();

 private:
  class Core;
  struct Private {};

 public:
  explicit NSNetServiceBrowser(Private);

 private:
  std::shared_ptr<Core> core_;
};

}  // namespace rvf
