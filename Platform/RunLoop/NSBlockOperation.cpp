// SPDX-License-Identifier: Apache-2.0
#include "Platform/RunLoop/NSBlockOperation.h"

#include <memory>
#include <utility>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSAutoreleasePool.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSBlockOperation::classObject);

}  // namespace

NSBlockOperation::NSBlockOperation(Block block)
    : NSOperation(Learning::kByBeingTold), block_(std::move(block)) {}

Ref<NSBlockOperation> NSBlockOperation::blockOperationWithBlock(Block block) {
  return autorelease(std::make_shared<NSBlockOperation>(std::move(block)));
}

Class NSBlockOperation::classObject() {
  static const Class kClass =
      ClassBuilder<NSBlockOperation>("NSBlockOperation", NSOperation::classObject()).registered();
  return kClass;
}

Class NSBlockOperation::isa() const {
  return classObject();
}

void NSBlockOperation::main() {
  const Block block = std::exchange(block_, nullptr);  // nobody else ever calls it
  if (block) block();
}

}  // namespace rvf
