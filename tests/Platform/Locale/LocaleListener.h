// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "Platform/Locale/NSLocale.h"
#include "Platform/Observation/NSNotificationCenter.h"
#include "Platform/Runtime/ClassBuilder.h"

namespace rvf {

/// Writes down which locale is the current one at each notification of a change.
class LocaleListener final : public NSObject {
 public:
  static Ref<LocaleListener> listening() {
    auto listener = std::make_shared<LocaleListener>();
    NSNotificationCenter::defaultCenter()->addObserver(
        listener, SEL("currentLocaleDidChange:"), std::string(NSCurrentLocaleDidChangeNotification),
        nullptr);
    return listener;
  }

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<LocaleListener>("LocaleListener", NSObject::classObject())
            .method<&LocaleListener::currentLocaleDidChange>("currentLocaleDidChange:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void currentLocaleDidChange(const Ref<NSNotification>& notification) {
    isPlain_ = isPlain_ && !notification->object() && !notification->userInfo();
    locales_.push_back(NSLocale::currentLocale()->localeIdentifier());
  }

  const std::vector<std::string>& locales() const noexcept { return locales_; }
  /// Whether every notification came without object and user info.
  bool isPlain() const noexcept { return isPlain_; }

 private:
  std::vector<std::string> locales_;
  bool isPlain_ = true;
};

}  // namespace rvf
