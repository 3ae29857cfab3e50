// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/NSOperation.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "Platform/Observation/KeyValueObserving.h"
#include "Platform/RunLoop/QueuedOperation.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSOperation::classObject);

constexpr std::string_view kIsReady = "isReady";
constexpr std::string_view kIsExecuting = "isExecuting";
constexpr std::string_view kIsFinished = "isFinished";
constexpr std::string_view kIsCancelled = "isCancelled";

/// Sees "isFinished" announced.
class FinishObserver final : public NSObject {
 public:
  explicit FinishObserver(std::function<void()> tell) : tell_(std::move(tell)) {}

  static Class classObject() {
    static const Class kClass =
        ClassBuilder<FinishObserver>("_OperationFinishObserver", NSObject::classObject())
            .method<&FinishObserver::observeValue>(
                "observeValueForKeyPath:ofObject:change:context:")
            .registered();
    return kClass;
  }
  Class isa() const override { return classObject(); }

  void observeValue(std::string_view, const id&, const Ref<NSDictionary>&, void*) { tell_(); }

 private:
  const std::function<void()> tell_;
};

using Operations = std::vector<Ref<NSOperation>>;

/// Lets go of operations one after another: the last references to a long chain of dependencies
/// would otherwise be dropped from within each other, which takes a stack as long as the chain.
void releaseInTurn(Operations&& operations) {
  thread_local Operations* waiting = nullptr;
  if (waiting) {
    std::ranges::move(operations, std::back_inserter(*waiting));
    return;
  }
  waiting = &operations;
  while (!operations.empty()) {
    const Ref<NSOperation> last = std::move(operations.back());
    operations.pop_back();
  }
  waiting = nullptr;
}

}  // namespace

/// How an operation hangs together with others.
class NSOperation::Links final {
 public:
  /// False if it is one already.
  bool addDependency(const Ref<NSOperation>& operation, bool awaits) {
    const std::lock_guard lock(mutex);
    if (!isAwaited.try_emplace(operation.get(), awaits).second) return false;
    dependencies.push_back(operation);
    awaited += awaits ? 1 : 0;
    return true;
  }
  /// Whether that was the last dependency to wait for.
  bool endAwaiting(const NSOperation* operation) {
    const std::lock_guard lock(mutex);
    const auto found = isAwaited.find(operation);
    if (found == isAwaited.end() || !std::exchange(found->second, false)) return false;
    return --awaited == 0;
  }
  /// The same.
  bool removeDependency(const Ref<NSOperation>& operation) {
    const std::lock_guard lock(mutex);
    const auto found = isAwaited.find(operation.get());
    if (found == isAwaited.end()) return false;
    const bool wasAwaited = found->second;
    isAwaited.erase(found);
    std::erase(dependencies, operation);
    return wasAwaited && --awaited == 0;
  }
  bool hasObserver() {
    const std::lock_guard lock(mutex);
    return observer != nullptr;
  }
  /// False if another thread was faster.
  bool setObserver(const Ref<FinishObserver>& registered) {
    const std::lock_guard lock(mutex);
    if (observer) return false;
    observer = registered;
    return true;
  }

  std::mutex mutex;  // guards all
  Operations dependencies;
  std::unordered_map<const NSOperation*, bool> isAwaited;  // a key for each dependency
  std::size_t awaited = 0;                                 // of these
  bool isReady = true;
  std::vector<std::weak_ptr<NSOperation>> dependents;  // to be told of the end
  std::weak_ptr<QueuedOperation> queued;               // the same
  bool isQueued = false;                               // for good
  Ref<FinishObserver> observer;                        // is registered already
};

NSOperation::NSOperation() : NSOperation(Learning::kByObserving) {}

NSOperation::NSOperation(Learning learning)
    : learning_(learning), links_(std::make_unique<Links>()) {}

NSOperation::~NSOperation() {
  if (links_->observer) removeObserverForKeyPath(*this, *links_->observer, kIsFinished);
  releaseInTurn(std::move(links_->dependencies));
}

Class NSOperation::classObject() {
  static const Class kClass = ClassBuilder<NSOperation>("NSOperation", NSObject::classObject())
                                  .property("cancelled", "Tc,R,GisCancelled")
                                  .property("concurrent", "Tc,R,GisConcurrent")
                                  .property("executing", "Tc,R,GisExecuting")
                                  .property("finished", "Tc,R,GisFinished")
                                  .property("ready", "Tc,R,GisReady")
                                  .method<&NSOperation::start>("start")
                                  .method<&NSOperation::main>("main")
                                  .method<&NSOperation::cancel>("cancel")
                                  .method<&NSOperation::isCancelled>("isCancelled")
                                  .method<&NSOperation::isConcurrent>("isConcurrent")
                                  .method<&NSOperation::isExecuting>("isExecuting")
                                  .method<&NSOperation::isFinished>("isFinished")
                                  .method<&NSOperation::isReady>("isReady")
                                  .method<&NSOperation::addDependency>("addDependency:")
                                  .method<&NSOperation::removeDependency>("removeDependency:")
                                  .registered();
  return kClass;
}

Class NSOperation::isa() const {
  return classObject();
}

// Work

void NSOperation::start() {
  if (isFinished()) return;
  if (!isReady()) NSException::raise(NSInvalidArgumentException, "the operation is not ready");
  if (isStarted_.exchange(true)) {
    NSException::raise(NSInvalidArgumentException, "the operation was started before");
  }
  const id alive = weak_from_this().lock();
  if (isCancelled()) {
    announceChange(*this, kIsFinished, [this] { phase_ = Phase::kFinished; });
    return tellFinished();
  }
  announceChange(*this, kIsExecuting, [this] { phase_ = Phase::kExecuting; });
  try {
    main();
  } catch (...) {
    finish();
    throw;
  }
  finish();
}

void NSOperation::finish() {
  announceChange(*this, kIsExecuting, [this] {
    announceChange(*this, kIsFinished, [this] { phase_ = Phase::kFinished; });
    tellFinished();
  });
}

void NSOperation::main() {}

void NSOperation::cancel() {
  if (isCancelled() || isFinished()) return;
  const id alive = weak_from_this().lock();
  const bool makesReady = !isReady();
  if (makesReady) willChangeValueForKey(*this, kIsReady);
  announceChange(*this, kIsCancelled, [this] { isCancelled_ = true; });
  if (makesReady) didChangeValueForKey(*this, kIsReady);
  tellReady();  // whatever another thread has changed meanwhile
}

bool NSOperation::isReady() const {
  if (isCancelled_) return true;
  const std::lock_guard lock(links_->mutex);
  return links_->isReady;
}

bool NSOperation::isExecuting() const {
  return phase_ == Phase::kExecuting;
}

bool NSOperation::isFinished() const {
  return phase_ == Phase::kFinished;
}

bool NSOperation::isConcurrent() const {
  return false;
}

// Dependencies

void NSOperation::addDependency(const Ref<NSOperation>& operation) {
  if (!operation || operation.get() == this) {
    NSException::raise(NSInvalidArgumentException, "an operation depends on another one");
  }
  const bool awaits = !operation->isFinished();
  if (!links_->addDependency(operation, awaits) || !awaits) return;
  updateReadiness();
  operation->addDependent(refTo(this));
}

void NSOperation::removeDependency(const Ref<NSOperation>& operation) {
  if (links_->removeDependency(operation)) nothingIsAwaited();
}

std::vector<Ref<NSOperation>> NSOperation::dependencies() const {
  const std::lock_guard lock(links_->mutex);
  return links_->dependencies;
}

void NSOperation::dependencyFinished(const NSOperation* operation) {
  // Of dependencies that finish on several threads at once, one finds the others gone.
  if (links_->endAwaiting(operation)) nothingIsAwaited();
}

void NSOperation::nothingIsAwaited() {
  updateReadiness();
  // After the change, not with its announcement: who has come in between was told nothing of that.
  tellReady();
}

void NSOperation::updateReadiness() {
  announceChange(*this, kIsReady, [this] {
    const std::lock_guard lock(links_->mutex);
    links_->isReady = links_->awaited == 0;
  });
}

// Queue and dependents

bool NSOperation::setQueued(const Ref<QueuedOperation>& queued) {
  {
    const std::lock_guard lock(links_->mutex);
    if (std::exchange(links_->isQueued, true)) return false;
    links_->queued = queued;
  }
  observeFinish();
  return true;
}

void NSOperation::addDependent(const Ref<NSOperation>& dependent) {
  {
    const std::lock_guard lock(links_->mutex);
    links_->dependents.push_back(dependent);
  }
  observeFinish();
}

void NSOperation::observeFinish() {
  if (hasToBeObserved() && !isFinished() && !links_->hasObserver()) {
    const auto observer = std::make_shared<FinishObserver>([this] { tellFinished(); });
    addObserverForKeyPath(*this, observer, kIsFinished);
    if (!links_->setObserver(observer)) removeObserverForKeyPath(*this, observer, kIsFinished);
  }
  tellFinished();  // in case it was announced before
}

void NSOperation::tellFinished() {
  if (!isFinished()) return;
  std::vector<std::weak_ptr<NSOperation>> dependents;
  Ref<QueuedOperation> queued;
  Ref<FinishObserver> observer;
  {
    const std::lock_guard lock(links_->mutex);
    dependents = std::exchange(links_->dependents, {});
    queued = std::exchange(links_->queued, {}).lock();
    observer = std::exchange(links_->observer, nullptr);
  }
  if (observer) removeObserverForKeyPath(*this, observer, kIsFinished);
  if (queued) queued->becameFinished();
  for (const auto& weak : dependents) {
    if (const auto dependent = weak.lock()) dependent->dependencyFinished(this);
  }
}

void NSOperation::tellReady() {
  Ref<QueuedOperation> queued;
  {
    const std::lock_guard lock(links_->mutex);
    queued = links_->queued.lock();
  }
  if (queued && isReady()) queued->becameReady();
}

}  // namespace rvf
