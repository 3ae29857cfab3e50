// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSMutableDictionary.h"
#include "RVFoundation/RuntimeServices/RWFBindingHelperProxy.h"

namespace rvf {

/// Keeps account of the observations and bindings that its owner makes on other objects, so that
/// one call undoes them all:
///
///     addObserverForKeyPath(*helper->proxyForObject(server), screen, "name");
///     bindToObject(*helper->proxyForObject(label), "text", server, "name");
///     helper->defaultCenter()->addObserver(screen, SEL("localeDidChange:"), "LocaleDidChange",
///                                          nullptr);
///     …
///     helper->reset();  // before the owner goes
///
/// Remove nothing by hand: a registration that was removed otherwise is removed again by `reset`,
/// which raises for observations of key paths. Targets and observers are not owned; what concerns
/// one that is gone is skipped.
///
/// Thread: its owner's. Lifetime: neither targets nor observers are kept; reset it before it goes.
class RVF_EXPORT RVFBindingHelper final : public NSObject {
 public:
  /// Without registrations.
  static Ref<RVFBindingHelper> init();
  RVFBindingHelper() = default;
  /// Reports an assertion, "Deallocated with bindings left.", unless the helper was reset. What the
  /// handler raises cannot leave a destructor, so with the default handler the process ends; if the
  /// handler returns, the registrations stay for good.
  ~RVFBindingHelper() override;

  static Class classObject();
  Class isa() const override;

  /// The proxy of this very object, not of an equal one; made on first request and kept until
  /// `reset`.
  Ref<RWFBindingHelperProxy> proxyForObject(const id& object);

  /// The proxy of the default notification center.
  Ref<RWFBindingHelperProxy> defaultCenter();

  /// Undoes every registration of every proxy, proxy by proxy in no defined order, and drops the
  /// proxies. What a removal raises comes out of this; the proxies then stay.
  void reset();

  /// Reports the same assertion as destruction does, and changes nothing.
  void finalize() const;

 private:
  void reportBindingsLeft(SEL selector, int line) const;

  const Ref<NSMutableDictionary> proxies_ = NSMutableDictionary::dictionary();
};

}  // namespace rvf
