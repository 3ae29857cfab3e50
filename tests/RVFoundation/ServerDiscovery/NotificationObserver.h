// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/Selector.h"

namespace rvf {

/// Counts what it is sent, and does what the test wants then.
class NotificationObserver final : public NSObject {
 public:
  static inline const SEL kAction{"menuChanged"};

  static Ref<NotificationObserver> observer(std::function<void()> act = nullptr) {
    auto made = std::make_shared<NotificationObserver>();
    made->act = std::move(act);
    return made;
  }

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<NotificationObserver>("NotificationObserver", NSObject::classObject())
            .method<&NotificationObserver::menuChanged>("menuChanged")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void menuChanged() {
    ++deliveries;
    if (const auto wanted = act) wanted();
  }

  int deliveries = 0;
  std::function<void()> act;
};

}  // namespace rvf
