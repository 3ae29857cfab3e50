// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <list>
#include <memory>
#include <string_view>
#include <utility>

#include "Platform/RunLoop/NSOperation.h"
#include "Platform/RunLoop/OperationQueueCore.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// An operation in a queue: how far it is, and the observer of its "isReady".
class QueuedOperation final : public NSObject {
 public:
  enum class Stage { kWaiting, kReady, kStarted, kFinished };

  QueuedOperation(Ref<NSOperation> operation, std::shared_ptr<OperationQueueCore> queue)
      : operation_(std::move(operation)), queue_(std::move(queue)) {}

  static Class classObject();
  Class isa() const override;

  NSOperation& operation() const noexcept { return *operation_; }
  const Ref<NSOperation>& reference() const noexcept { return operation_; }
  bool endsWithStart() const noexcept { return operation_->endsWithStart(); }

  /// Has the queue told when the operation is ready and when it is finished, which may be at once.
  /// False if the operation is in a queue already.
  bool attach();
  void becameReady();
  void becameFinished();

  // Guarded by the queue's lock
  Stage stage = Stage::kWaiting;
  std::list<Ref<QueuedOperation>>::iterator place;

 private:
  void observeValue(std::string_view keyPath, const id& object, const Ref<NSDictionary>& change,
                    void* context);
  void observeReadiness();
  void endObserving();

  const Ref<NSOperation> operation_;
  const std::shared_ptr<OperationQueueCore> queue_;
  std::atomic<bool> isObserving_{false};  // is registered already
};

}  // namespace rvf
