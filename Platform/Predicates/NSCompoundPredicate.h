// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

#include "Platform/Export.h"
#include "Platform/Predicates/NSPredicate.h"

namespace rvf {

enum NSCompoundPredicateType : unsigned {
  NSNotPredicateType = 0,
  NSAndPredicateType = 1,
  NSOrPredicateType = 2,
};

/// Predicates joined by AND, OR or NOT. They are evaluated in order and only as far as needed. An
/// AND of none is true, an OR of none false. Two are equal when type and parts are.
///
/// Thread: any, as far as its parts are; immutable. Lifetime: keeps its parts.
class RVF_EXPORT NSCompoundPredicate : public NSPredicate {
 public:
  /// Raises `NSInvalidArgumentException` for an absent array, an element that is no predicate, a
  /// NOT of more or less than one, and more than 1,000 levels.
  static Ref<NSCompoundPredicate> initWithType(NSCompoundPredicateType type,
                                               const Ref<NSArray>& subpredicates);
  static Ref<NSCompoundPredicate> andPredicateWithSubpredicates(const Ref<NSArray>& subpredicates);
  static Ref<NSCompoundPredicate> orPredicateWithSubpredicates(const Ref<NSArray>& subpredicates);
  static Ref<NSCompoundPredicate> notPredicateWithSubpredicate(const Ref<NSPredicate>& predicate);

  static Class classObject();
  Class isa() const override;

  /// Which of AND, OR and NOT joins the parts.
  NSCompoundPredicateType compoundPredicateType() const noexcept { return type_; }
  /// Never absent; a copy of what it was made with.
  const Ref<NSArray>& subpredicates() const noexcept { return subpredicates_; }

  std::string predicateFormat() const override;
  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;

 protected:
  NSCompoundPredicate(NSCompoundPredicateType type, const Ref<NSArray>& subpredicates);

  bool evaluates(const id& object, const Ref<NSDictionary>& variables) const override;
  Ref<NSPredicate> substituted(const NSDictionary& variables) override;

 private:
  NSCompoundPredicateType type_;
  Ref<NSArray> subpredicates_;
};

}  // namespace rvf
