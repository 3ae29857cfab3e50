// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/NSProxy.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSMutableArray.h"

namespace rvf {

/// Stands in for an object, and writes down the observations and bindings that are made through it
/// before it passes them on; every other message just reaches the object. `RVFBindingHelper` makes
/// the proxies.
///
/// The operations here and the messages of the same names do the same, so
/// `addObserverForKeyPath(*proxy, ...)` and `bindToObject(*proxy, ...)` are recorded too. Removals
/// are passed on but leave the records in place; only `unbind` strikes its name out. The object is
/// not owned: once it is gone, registrations are recorded but reach nobody, and other messages
/// raise as unrecognized.
///
/// Thread: that of the helper's owner. Lifetime: the object is not kept; the proxy is, by its
/// helper, until `reset`.
class RVF_EXPORT RWFBindingHelperProxy final : public NSProxy {
 public:
  /// The object is not owned.
  static Ref<RWFBindingHelperProxy> initWithObject(const id& object);
  explicit RWFBindingHelperProxy(const id& object);

  static Class classObject();
  Class isa() const override;

  Ref<NSMethodSignature> methodSignatureForSelector(SEL selector) const override;
  void forwardInvocation(NSInvocation& invocation) override;

  /// Key-value observing, see `addObserverForKeyPath`.
  void addObserver(const id& observer, std::string_view forKeyPath,
                   NSKeyValueObservingOptions options, void* context);
  /// For the proxy of a notification center, see `NSNotificationCenter::addObserver`.
  void addObserver(const id& observer, SEL selector, const std::optional<std::string>& name,
                   const id& object);
  /// See `bindToObject`.
  void bind(std::string_view name, const id& toObject, std::string_view withKeyPath,
            const Ref<NSDictionary>& options);
  void unbind(std::string_view name);

  /// Undoes every recorded registration: observations, then notifications, then bindings, each
  /// oldest first, and forgets them. What a removal raises comes out of this; the records then
  /// stay. The message is `_RWFBindingHelperReset`.
  void bindingHelperReset();

  /// The records of this moment, oldest first, in arrays that do not change any more.
  Ref<NSArray> kvoInfo() const { return kvoInfo_->copy(); }
  Ref<NSArray> bindingNames() const { return bindingNames_->copy(); }
  Ref<NSArray> notificationInfo() const { return notificationInfo_->copy(); }

 private:
  const std::weak_ptr<NSObject> object_;
  const Ref<NSMutableArray> kvoInfo_ = NSMutableArray::array();
  const Ref<NSMutableArray> bindingNames_ = NSMutableArray::array();
  const Ref<NSMutableArray> notificationInfo_ = NSMutableArray::array();
};

}  // namespace rvf
