// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Observation/NSNotification.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Selector.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

class NotificationRegistrations;

/// Passes notifications from whoever posts them to whoever registered for their name, object, or
/// both:
///
///     center->addObserver(screen, SEL("localeDidChange:"), "LocaleDidChange", nullptr);
///     center->postNotificationName("LocaleDidChange", locale);
///
/// An observer gets its selector sent with the `Ref<NSNotification>`, on the thread that posts and
/// before the post returns, in the order of registration. Neither observer nor object is owned; a
/// dead observer is told nothing, and its registrations go.
///
/// During a delivery anybody may register, remove, post and die: what is removed before its turn is
/// not told, what is registered waits for the next post. An exception of an observer comes out of
/// the post, and the later observers are not told.
///
/// Thread: any; observers are called on the thread that posts, outside of every lock. Lifetime:
/// observers and objects are not kept and may go at any time, also during a delivery.
class RVF_EXPORT NSNotificationCenter final : public NSObject {
 public:
  NSNotificationCenter();
  ~NSNotificationCenter() override;

  /// That of the process, made on first use.
  static Ref<NSNotificationCenter> defaultCenter();

  static Class classObject();
  Class isa() const override;

  /// An absent name (`std::nullopt`) or object matches any. Registering twice delivers twice. An
  /// absent observer or null selector raises `NSInvalidArgumentException`.
  void addObserver(const id& observer, SEL selector, const std::optional<std::string>& name,
                   const id& object);
  /// The same for who keeps what a notification says is out of date: it is told before the others,
  /// whenever they registered, so that none of them meets what it kept.
  void addLeadingObserver(const id& observer, SEL selector, const std::optional<std::string>& name,
                          const id& object);

  /// Takes away every registration of the observer that was made for this name and object; an
  /// absent one matches any stored one. Removing nothing is fine.
  void removeObserver(const id& observer, const std::optional<std::string>& name = std::nullopt,
                      const id& object = nullptr);
  /// The same for the destructor of an observer, where no reference to it can be had.
  void removeObserver(const NSObject& observer,
                      const std::optional<std::string>& name = std::nullopt,
                      const id& object = nullptr);

  /// An absent notification raises `NSInvalidArgumentException`.
  void postNotification(const Ref<NSNotification>& notification);
  void postNotificationName(std::string_view name, const id& object,
                            const Ref<NSDictionary>& userInfo = nullptr);

 private:
  const std::unique_ptr<NotificationRegistrations> registrations_;
};

}  // namespace rvf
