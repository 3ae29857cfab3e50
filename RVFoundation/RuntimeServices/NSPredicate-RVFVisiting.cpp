// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/RuntimeServices/NSPredicate-RVFVisiting.h"

#include <utility>

#include "Platform/Predicates/NSCompoundPredicate.h"

namespace rvf {
namespace {

struct Handlers {
  RVFPredicateHandler preOrder;
  RVFPredicateHandler postOrder;
};

void visit(const Ref<NSPredicate>& predicate, const Handlers& handlers) {
  const auto compound = std::dynamic_pointer_cast<NSCompoundPredicate>(predicate);
  const bool isCompound = compound != nullptr;
  if (handlers.preOrder) handlers.preOrder(predicate, isCompound);
  if (isCompound) {
    for (const id& part : compound->subpredicates()->objects())
      visit(std::static_pointer_cast<NSPredicate>(part), handlers);
  }
  if (handlers.postOrder) handlers.postOrder(predicate, isCompound);
}

}  // namespace

void visitSubpredicatesWithPreOrderPredicateHandler(const Ref<NSPredicate>& predicate,
                                                    RVFPredicateHandler preOrderPredicateHandler,
                                                    RVFPredicateHandler postOrderPredicateHandler) {
  const Ref<NSPredicate> alive = predicate;
  if (alive)
    visit(alive, {std::move(preOrderPredicateHandler), std::move(postOrderPredicateHandler)});
}

}  // namespace rvf
