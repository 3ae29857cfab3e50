// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/NSPredicate.h"

#include <utility>
#include <vector>

#include "Platform/Predicates/PredicateParser.h"
#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"
#include "Platform/Runtime/NSCopying.h"
#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSPredicate::classObject);

class ConstantPredicate final : public NSPredicate {
 public:
  explicit ConstantPredicate(bool value) : value_(value) {}

  std::string predicateFormat() const override {
    return value_ ? "TRUEPREDICATE" : "FALSEPREDICATE";
  }
  bool isEqual(const NSObject* other) const override {
    const auto* constant = dynamic_cast<const ConstantPredicate*>(other);
    return constant && constant->value_ == value_;
  }
  std::size_t hash() const override { return value_ ? 1 : 0; }

 private:
  bool evaluates(const id&, const Ref<NSDictionary>&) const override { return value_; }

  bool value_;
};

class BlockPredicate final : public NSPredicate {
 public:
  explicit BlockPredicate(Block block) : block_(std::move(block)) {}

  std::string predicateFormat() const override {
    return stringWithFormat("BLOCKPREDICATE(%p)", static_cast<const void*>(this));
  }

 private:
  bool evaluates(const id& object, const Ref<NSDictionary>& variables) const override {
    return block_(object, variables);
  }

  Block block_;
};

}  // namespace

Ref<NSPredicate> NSPredicate::predicateWithFormatArguments(
    std::string_view format, std::span<const FormatArgument> arguments) {
  return parsedPredicate(format, arguments);
}

Ref<NSPredicate> NSPredicate::predicateWithFormatArgumentArray(std::string_view format,
                                                               const Ref<NSArray>& argumentArray) {
  std::vector<FormatArgument> arguments;
  if (argumentArray) {
    for (const id& argument : argumentArray->objects())
      arguments.emplace_back(argument);
  }
  return parsedPredicate(format, arguments);
}

Ref<NSPredicate> NSPredicate::predicateWithValue(bool value) {
  return std::make_shared<ConstantPredicate>(value);
}

Ref<NSPredicate> NSPredicate::predicateWithBlock(Block block) {
  if (!block) NSException::raise(NSInvalidArgumentException, "predicate of an empty block");
  return std::make_shared<BlockPredicate>(std::move(block));
}

Class NSPredicate::classObject() {
  static const Class kClass = ClassBuilder<NSPredicate>("NSPredicate", NSObject::classObject())
                                  .method<&NSPredicate::predicateFormat>("predicateFormat")
                                  .method("copy", immutableCopyImplementation())
                                  .conformsTo("NSCopying")
                                  .registered();
  return kClass;
}

Class NSPredicate::isa() const {
  return classObject();
}

bool NSPredicate::evaluateWithObject(const id& object,
                                     const Ref<NSDictionary>& substitutionVariables) const {
  const auto alive = weak_from_this().lock();
  return evaluates(object, substitutionVariables);
}

Ref<NSPredicate> NSPredicate::predicateWithSubstitutionVariables(
    const Ref<NSDictionary>& variables) {
  if (!variables)
    NSException::raise(NSInvalidArgumentException, "absent dictionary of substitution variables");
  return substituted(*variables);
}

Ref<NSPredicate> NSPredicate::substituted(const NSDictionary&) {
  return refTo(this);
}

Ref<NSArray> filteredArrayUsingPredicate(const Ref<NSArray>& array, const NSPredicate& predicate) {
  if (!array) return nullptr;
  // A block may release the predicate, the array, or what the array holds.
  const auto alive = predicate.weak_from_this().lock();
  const Ref<NSArray> objects = array;
  std::vector<id> found;
  for (id object : *objects)
    if (predicate.evaluates(object, nullptr)) found.push_back(std::move(object));
  return NSArray::arrayWithObjects(std::move(found));
}

}  // namespace rvf
