// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// The kinds of expressions. None of the kind "function" is made here; the number is the
/// platform's, as the others are.
enum NSExpressionType : unsigned {
  NSConstantValueExpressionType = 0,
  NSEvaluatedObjectExpressionType = 1,
  NSVariableExpressionType = 2,
  NSKeyPathExpressionType = 3,
  NSFunctionExpressionType = 4,
  NSAggregateExpressionType = 14,
  NSBlockExpressionType = 19,
};

/// One side of a comparison: what to take from the evaluated object, or what to compare it with.
///
/// Immutable, so safe to share between threads as far as its constants and blocks are. Two are
/// equal when they are of one kind and their parts are equal; blocks are equal to themselves only.
/// `description` is the text that a format would have.
///
/// Thread: any, as far as its constants and blocks are; immutable. Lifetime: keeps constants,
/// elements and block.
class RVF_EXPORT NSExpression final : public NSObject {
 public:
  /// Answers a value, or absent. It gets the evaluated object, the values of the arguments
  /// (absent ones as `NSNull`), and the variables that the evaluation was given, maybe absent.
  /// Called during an evaluation, on its thread.
  using Block = std::function<id(const id& evaluatedObject, const Ref<NSArray>& arguments,
                                 const Ref<NSDictionary>& context)>;

  /// Absent stands for nil.
  static Ref<NSExpression> expressionForConstantValue(const id& object);
  static Ref<NSExpression> expressionForEvaluatedObject();
  /// The name comes without the "$" of a format.
  static Ref<NSExpression> expressionForVariable(std::string_view name);
  static Ref<NSExpression> expressionForKeyPath(std::string_view keyPath);
  /// A collection of expressions; its value is the array of their values, absent ones as `NSNull`.
  /// Raises `NSInvalidArgumentException` for an element of another class, or deeper than 1,000
  /// levels.
  static Ref<NSExpression> expressionForAggregate(const Ref<NSArray>& expressions);
  /// The arguments are expressions. Raises as the aggregate does, and for an empty block.
  static Ref<NSExpression> expressionForBlock(Block block, const Ref<NSArray>& arguments);

  static Class classObject();
  Class isa() const override;

  /// Says which of the parts below it has.
  NSExpressionType expressionType() const noexcept { return type_; }
  /// The parts; each raises `NSInvalidArgumentException` for an expression of another kind.
  const id& constantValue() const;
  const std::string& variable() const;
  const std::string& keyPath() const;
  const Ref<NSArray>& collection() const;
  const Ref<NSArray>& arguments() const;
  const Block& expressionBlock() const;

  /// The value for an object, which may be absent (then key paths are absent, too). Variables are
  /// looked up in `context`, which may be absent; `NSNull` counts as absent there. Raises
  /// `NSInvalidArgumentException` for a variable without an entry, and what reading a key path
  /// raises. A block may give up the last reference to the expression.
  id expressionValueWithObject(const id& object, const Ref<NSDictionary>& context = nullptr) const;

  /// The expression with the variables that have an entry replaced by constants, `NSNull` by nil;
  /// others stay. Itself if none is replaced.
  Ref<NSExpression> expressionWithSubstitutionVariables(const NSDictionary& variables) const;

  /// How deep aggregates and arguments nest in it; 1 for one that has none.
  std::size_t depth() const noexcept { return depth_; }

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  std::string description() const override;

  /// Only the makers above can make the key.
  class Key {
    friend class NSExpression;
    Key() = default;
  };
  NSExpression(Key, NSExpressionType type) : type_(type) {}

 private:
  friend class NSComparisonPredicate;

  /// The value, for callers who see to it that the expression stays.
  id valueWithObject(const id& object, const Ref<NSDictionary>& context) const;
  void require(NSExpressionType type, std::string_view part) const;
  void adopt(const Ref<NSArray>& expressions);
  id valueOfVariable(const Ref<NSDictionary>& context) const;
  id valueOfKeyPath(const id& object) const;
  Ref<NSArray> valuesOfElements(const id& object, const Ref<NSDictionary>& context) const;
  Ref<NSExpression> self() const;
  std::string textOfElements(std::string start, std::string_view end) const;

  NSExpressionType type_;
  bool hasVariables_ = false;
  bool isDirectKey_ = false;  // a key path of one key
  std::size_t depth_ = 1;
  id constant_;            // of a constant, or of an aggregate of constants its value
  std::string name_;       // of a variable, or the key path
  Ref<NSArray> elements_;  // of an aggregate, or the arguments of a block
  Block block_;
};

}  // namespace rvf
