// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/Export.h"
#include "Platform/Runtime/IMP.h"
#include "Platform/Runtime/KeyValueHooks.h"
#include "Platform/Runtime/NSObject.h"

/// Key-value observing: an object is told when a property of another one changes.
///
///     void setName(std::string_view name) {
///       announceChange(*this, "name", [&] { name_ = name; });
///     }
///
///     addObserverForKeyPath(*person, screen, "address.street", NSKeyValueObservingOptionNew);
///
/// Setters announce every call, also one that changes nothing; who observes gets the message
/// `observeValueForKeyPath:ofObject:change:context:`, whose arguments are the path
/// (`std::string_view`), the observed object (`id`), the change (`Ref<NSDictionary>`) and the
/// context (`void*`), on the thread that announces and before the announcement returns.
///
/// - Neither observer nor context nor observed object is kept alive. A dead observer is told
///   nothing. An observed object that goes logs one warning and drops the registrations.
/// - Observers are told in the order of their registration. What is registered during a delivery
///   is not told of that change; what is removed is told nothing more. An observer may remove
///   itself and others, register, change the value again, or drop itself or the observed object.
/// - Announcements of several keys may nest; each "did" delivers for its own key. A "did" without
///   its "will" does nothing. A change that throws leaves the pair open and tells nobody.
/// - A path of several keys follows the objects as they change, and tells of that as well. An
///   absent link reads as `NSNull`. What is behind a proxy is followed itself.
/// - The value of a declared property without an object form, such as a pointer, reads as `NSNull`.
/// - A key may depend on others: see `dependentKeyImplementation`.
///
/// Different threads may register with, and announce changes of, one object at the same time. A
/// path of several keys belongs to one thread.
///
/// These functions send messages (`addObserver:forKeyPath:options:context:`, ...) that every object
/// answers, so that a proxy passes them on. Collections are not observed as such.
namespace rvf {

enum NSKeyValueObservingOptions : std::uint64_t {
  NSKeyValueObservingOptionNone = 0,
  NSKeyValueObservingOptionNew = 1,      ///< the change has "new", the value after it
  NSKeyValueObservingOptionOld = 2,      ///< the change has "old", the value before it
  NSKeyValueObservingOptionInitial = 4,  ///< told once before the registration returns
  NSKeyValueObservingOptionPrior = 8     ///< also told before a change ("notificationIsPrior")
};
constexpr NSKeyValueObservingOptions operator|(NSKeyValueObservingOptions a,
                                               NSKeyValueObservingOptions b) noexcept {
  return static_cast<NSKeyValueObservingOptions>(std::uint64_t{a} | std::uint64_t{b});
}

/// The entries of a change. Absent values appear as `NSNull`.
inline constexpr std::string_view NSKeyValueChangeKindKey = "kind";
inline constexpr std::string_view NSKeyValueChangeNewKey = "new";
inline constexpr std::string_view NSKeyValueChangeOldKey = "old";
inline constexpr std::string_view NSKeyValueChangeNotificationIsPriorKey = "notificationIsPrior";
/// The kind of every change here: a value was set.
inline constexpr int NSKeyValueChangeSetting = 1;

/// Registers an observer. Twice the same are two registrations: two deliveries, two removals. An
/// absent observer raises `NSInvalidArgumentException`.
RVF_EXPORT void addObserverForKeyPath(
    NSObject& target, const id& observer, std::string_view keyPath,
    NSKeyValueObservingOptions options = NSKeyValueObservingOptionNone, void* context = nullptr);

/// Takes away the newest registration of this observer for this path; with a context, the newest
/// that has it. Raises `NSRangeException` if there is none. An absent observer stands for any that
/// has died.
RVF_EXPORT void removeObserverForKeyPath(NSObject& target, const id& observer,
                                         std::string_view keyPath);
RVF_EXPORT void removeObserverForKeyPath(NSObject& target, const id& observer,
                                         std::string_view keyPath, void* context);
/// The same for the destructor of an observer, where no reference to it can be had. Goes to what is
/// behind a proxy, past the proxy's own methods.
RVF_EXPORT void removeObserverForKeyPath(NSObject& target, const NSObject& observer,
                                         std::string_view keyPath);

/// Say that the value of a key is about to change, and that it has changed. Every "will" is to be
/// followed by its "did".
RVF_EXPORT void willChangeValueForKey(NSObject& object, std::string_view key);
RVF_EXPORT void didChangeValueForKey(NSObject& object, std::string_view key);

/// Makes a change between its two announcements. For setters of the object's own class: costs one
/// relaxed load while nobody observes the object.
template <class Change>
void announceChange(NSObject& object, std::string_view key, Change&& change) {
  if (!KeyValueHooks::isObserved(object)) {
    std::forward<Change>(change)();
    return;
  }
  const id alive = object.weak_from_this().lock();  // whoever is told may drop the object
  willChangeValueForKey(object, key);
  std::forward<Change>(change)();
  didChangeValueForKey(object, key);
}

/// A set of texts as messages carry it.
RVF_EXPORT id setOfKeyPaths(const std::set<std::string>& keyPaths);

/// Declares that a key depends on others, which may be paths. Announcing one of those tells the
/// observers of this key too, with its own old and new value.
///
///     .method("keyPathsForValuesAffectingName",
///             dependentKeyImplementation<&Service::keyPathsForValuesAffectingName>())
template <std::set<std::string> (*KeyPaths)()>
IMP dependentKeyImplementation() {
  return IMP(+[](NSObject&, SEL) { return setOfKeyPaths(KeyPaths()); });
}

}  // namespace rvf
