// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/RunLoop/NSOperation.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/Messaging.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// Notes the announcements of an operation: "will isFinished 0", "did isFinished 1", with the value
/// that the key has then. For one thread at a time.
class OperationRecorder final : public NSObject {
 public:
  static constexpr std::string_view kKeys[] = {"isReady", "isExecuting", "isFinished",
                                               "isCancelled"};

  static Ref<OperationRecorder> of(const Ref<NSOperation>& operation) {
    const auto recorder = std::make_shared<OperationRecorder>();
    recorder->operation_ = operation;
    for (const std::string_view key : kKeys)
      addObserverForKeyPath(*operation, recorder, key, NSKeyValueObservingOptionPrior);
    return recorder;
  }
  OperationRecorder() = default;
  ~OperationRecorder() override {
    for (const std::string_view key : kKeys)
      removeObserverForKeyPath(*operation_, static_cast<const NSObject&>(*this), key);
  }

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<OperationRecorder>("OperationRecorder", NSObject::classObject())
            .method<&OperationRecorder::observeValue>(
                "observeValueForKeyPath:ofObject:change:context:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void observeValue(std::string_view keyPath, const id& object, const Ref<NSDictionary>& change,
                    void*) {
    const bool isPrior = change->objectForKey(NSKeyValueChangeNotificationIsPriorKey) != nullptr;
    const bool value = send<bool>(object, SEL(keyPath));
    told.push_back((isPrior ? "will " : "did ") + std::string(keyPath) + (value ? " 1" : " 0"));
  }

  /// What was told since it was asked last.
  std::vector<std::string> take() { return std::exchange(told, {}); }

  std::vector<std::string> told;

 private:
  Ref<NSOperation> operation_;
};

}  // namespace rvf
