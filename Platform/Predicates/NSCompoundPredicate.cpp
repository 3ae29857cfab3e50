// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/NSCompoundPredicate.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "Platform/Predicates/PredicateNesting.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSException.h"
#include "Platform/Values/HashMixing.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSCompoundPredicate::classObject);

struct OpenCompoundPredicate final : NSCompoundPredicate {
  OpenCompoundPredicate(NSCompoundPredicateType type, const Ref<NSArray>& subpredicates)
      : NSCompoundPredicate(type, subpredicates) {}
};

/// Every element is one: the constructor has seen to it.
NSPredicate& partIn(const id& object) {
  return static_cast<NSPredicate&>(*object);
}

std::size_t deepestOf(const NSArray& subpredicates) {
  std::size_t deepest = 0;
  for (const id& object : subpredicates.objects()) {
    const auto* predicate = dynamic_cast<const NSPredicate*>(object.get());
    if (!predicate)
      NSException::raise(NSInvalidArgumentException, "subpredicate that is no predicate");
    deepest = std::max(deepest, predicate->depth());
  }
  return deepest;
}

/// Parentheses wherever a connective stands below another.
std::string textOfPart(const NSPredicate& predicate) {
  const auto* compound = dynamic_cast<const NSCompoundPredicate*>(&predicate);
  std::string text = predicate.predicateFormat();
  return compound && compound->compoundPredicateType() != NSNotPredicateType ? "(" + text + ")"
                                                                             : text;
}

}  // namespace

NSCompoundPredicate::NSCompoundPredicate(NSCompoundPredicateType type,
                                         const Ref<NSArray>& subpredicates)
    : type_(type) {
  if (!subpredicates)
    NSException::raise(NSInvalidArgumentException, "absent array of subpredicates");
  subpredicates_ = NSArray::arrayWithObjects(subpredicates->objects());
  depth_ = nestingAbove(deepestOf(*subpredicates_));
  if (type == NSNotPredicateType && subpredicates_->count() != 1)
    NSException::raise(NSInvalidArgumentException, "NOT of more or less than one predicate");
}

Ref<NSCompoundPredicate> NSCompoundPredicate::initWithType(NSCompoundPredicateType type,
                                                           const Ref<NSArray>& subpredicates) {
  return std::make_shared<OpenCompoundPredicate>(type, subpredicates);
}

Ref<NSCompoundPredicate> NSCompoundPredicate::andPredicateWithSubpredicates(
    const Ref<NSArray>& subpredicates) {
  return initWithType(NSAndPredicateType, subpredicates);
}

Ref<NSCompoundPredicate> NSCompoundPredicate::orPredicateWithSubpredicates(
    const Ref<NSArray>& subpredicates) {
  return initWithType(NSOrPredicateType, subpredicates);
}

Ref<NSCompoundPredicate> NSCompoundPredicate::notPredicateWithSubpredicate(
    const Ref<NSPredicate>& predicate) {
  return initWithType(NSNotPredicateType, NSArray::arrayWithObjects({predicate}));
}

Class NSCompoundPredicate::classObject() {
  static const Class kClass =
      ClassBuilder<NSCompoundPredicate>("NSCompoundPredicate", NSPredicate::classObject())
          .method<&NSCompoundPredicate::compoundPredicateType>("compoundPredicateType")
          .method<&NSCompoundPredicate::subpredicates>("subpredicates")
          .registered();
  return kClass;
}

Class NSCompoundPredicate::isa() const {
  return classObject();
}

bool NSCompoundPredicate::evaluates(const id& object, const Ref<NSDictionary>& variables) const {
  // What the result is settled by: for AND a part that fails, for OR one that holds.
  const bool settling = type_ == NSOrPredicateType;
  for (const id& part : subpredicates_->objects()) {
    if (partIn(part).evaluates(object, variables) == settling) return type_ != NSAndPredicateType;
  }
  return type_ == NSAndPredicateType;
}

Ref<NSPredicate> NSCompoundPredicate::substituted(const NSDictionary& variables) {
  std::vector<id> parts;
  parts.reserve(subpredicates_->count());
  for (const id& part : subpredicates_->objects())
    parts.push_back(partIn(part).substituted(variables));
  if (parts == subpredicates_->objects()) return refTo(this);
  return initWithType(type_, NSArray::arrayWithObjects(std::move(parts)));
}

std::string NSCompoundPredicate::predicateFormat() const {
  const std::vector<id>& parts = subpredicates_->objects();
  if (parts.empty()) return type_ == NSAndPredicateType ? "TRUEPREDICATE" : "FALSEPREDICATE";
  if (type_ == NSNotPredicateType) return "NOT " + textOfPart(partIn(parts.front()));
  std::string text;
  for (const id& part : parts) {
    if (!text.empty()) text += type_ == NSAndPredicateType ? " AND " : " OR ";
    text += textOfPart(partIn(part));
  }
  return text;
}

bool NSCompoundPredicate::isEqual(const NSObject* other) const {
  if (other == this) return true;
  const auto* compound = dynamic_cast<const NSCompoundPredicate*>(other);
  return compound && compound->type_ == type_ &&
         subpredicates_->isEqual(compound->subpredicates_.get());
}

std::size_t NSCompoundPredicate::hash() const {
  return mixedHash(subpredicates_->hash() + type_);
}

}  // namespace rvf
