// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/BackgroundExecution/NSObject-RVFExtensions.h"

#include <memory>
#include <utility>

#include "Platform/RunLoop/NSBlock.h"
#include "Platform/RunLoop/PerformSelector.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/IMP.h"
#include "Platform/Runtime/NSAutoreleasePool.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {
namespace {

void performBlock(NSObject&, SEL, id argument) {
  const NSAutoreleasePool pool;
  const auto* const block = dynamic_cast<const NSBlock*>(argument.get());
  if (!block) NSException::raise(NSInvalidArgumentException, "the argument is no block");
  block->invoke();
}

SEL performerSelector() {
  static const SEL kSelector("_RVF_BLOCKPERFORMER_:");
  return kSelector;
}

Class extendedClass() {
  static const Class kClass = [] {
    class_addExtension(NSObject::classObject(), {{performerSelector(), &performBlock}});
    return NSObject::classObject();
  }();
  return kClass;
}

const ClassRegistration kRegistration(&extendedClass);

/// The selector, which every object answers from now on.
SEL blockPerformer() {
  extendedClass();
  return performerSelector();
}

id boxed(std::function<void()> block) {
  return std::make_shared<NSBlock>(std::move(block));
}

}  // namespace

void RVF_performBlockInBackground(const id& receiver, std::function<void()> block) {
  performSelectorInBackground(receiver, blockPerformer(), boxed(std::move(block)));
}

void RVF_performBlockOnMainThread(const id& receiver, std::function<void()> block) {
  performSelectorOnMainThread(receiver, blockPerformer(), boxed(std::move(block)), false);
}

void RVF_performOnMainThreadAfterDelay(const id& receiver, double delay,
                                       const RunLoopModes& inModes, std::function<void()> block) {
  performSelectorAfterDelay(receiver, blockPerformer(), boxed(std::move(block)), delay, inModes);
}

}  // namespace rvf
