// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// Notes the keys of an object that are announced, in their order.
class AnnouncedKeys final : public NSObject {
 public:
  static Ref<AnnouncedKeys> of(const id& object, std::vector<std::string> keys) {
    const auto announced = std::make_shared<AnnouncedKeys>(object, std::move(keys));
    for (const std::string& key : announced->keys_)
      addObserverForKeyPath(*object, announced, key);
    return announced;
  }
  AnnouncedKeys(id object, std::vector<std::string> keys)
      : object_(std::move(object)), keys_(std::move(keys)) {}
  ~AnnouncedKeys() override {
    for (const std::string& key : keys_)
      removeObserverForKeyPath(*object_, static_cast<const NSObject&>(*this), key);
  }

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<AnnouncedKeys>("AnnouncedKeys", NSObject::classObject())
            .method<&AnnouncedKeys::observeValue>("observeValueForKeyPath:ofObject:change:context:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void observeValue(std::string_view keyPath, const id&, const Ref<NSDictionary>&, void*) {
    told.emplace_back(keyPath);
  }

  std::vector<std::string> told;

 private:
  const id object_;
  const std::vector<std::string> keys_;
};

}  // namespace rvf
