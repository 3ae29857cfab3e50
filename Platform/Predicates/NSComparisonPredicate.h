// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "Platform/Export.h"
#include "Platform/Predicates/NSExpression.h"
#include "Platform/Predicates/NSPredicate.h"
#include "Platform/Runtime/Selector.h"

namespace rvf {

enum NSPredicateOperatorType : unsigned {
  NSLessThanPredicateOperatorType = 0,
  NSLessThanOrEqualToPredicateOperatorType = 1,
  NSGreaterThanPredicateOperatorType = 2,
  NSGreaterThanOrEqualToPredicateOperatorType = 3,
  NSEqualToPredicateOperatorType = 4,
  NSNotEqualToPredicateOperatorType = 5,
  NSMatchesPredicateOperatorType = 6,
  NSLikePredicateOperatorType = 7,
  NSBeginsWithPredicateOperatorType = 8,
  NSEndsWithPredicateOperatorType = 9,
  NSInPredicateOperatorType = 10,
  NSCustomSelectorPredicateOperatorType = 11,
  NSContainsPredicateOperatorType = 99,
  NSBetweenPredicateOperatorType = 100,
};

/// A sum of these says how texts are compared.
enum NSComparisonPredicateOptions : unsigned {
  NSCaseInsensitivePredicateOption = 1,
  NSDiacriticInsensitivePredicateOption = 2,
  /// Texts are compared as they are, whatever else is asked for, because they are folded already.
  NSNormalizedPredicateOption = 4,
  /// Kept and printed; comparison is the same in every locale.
  NSLocaleSensitivePredicateOption = 8,
};

enum NSComparisonPredicateModifier : unsigned {
  NSDirectPredicateModifier = 0,
  NSAllPredicateModifier = 1,
  NSAnyPredicateModifier = 2,
};

/// What a comparison does besides its two sides.
///
/// Thread: any, a plain value. Lifetime: refers to nothing.
struct NSComparisonOperation {
  NSPredicateOperatorType type = NSEqualToPredicateOperatorType;
  unsigned options = 0;  ///< of `NSComparisonPredicateOptions`
  NSComparisonPredicateModifier modifier = NSDirectPredicateModifier;
  SEL customSelector;  ///< for the custom operator only

  bool operator==(const NSComparisonOperation&) const = default;
};

class PreparedTextTest;

/// A comparison of two expressions.
///
///  - Absent (and `NSNull`) equals only absent, and any other operator fails with it. As the
///    collection of ALL and ANY it counts as an empty one, see there.
///  - `==` and `!=` go by value: numbers of any kind by their value, texts literally; a number
///    never equals a text. Order is that of numbers, of dates, or of texts by UTF-16 code unit;
///    objects of another class answer `compare:` with a `long`, or the comparison raises.
///  - BEGINSWITH, ENDSWITH, CONTAINS, LIKE and MATCHES compare texts. LIKE: "?" is one character,
///    "*" any number, a backslash makes the next one literal; MATCHES: an ICU regular expression;
///    both for the whole text. The empty text is contained in every text.
///  - CONTAINS and IN look for an equal element if the collection side is an array, a set or a
///    dictionary (its values); IN a text is CONTAINS the other way round.
///  - BETWEEN takes an array of two limits, both included.
///  - With [d] texts are compared without diacritics (canonical decomposition without non-spacing
///    marks), with [c] in full case folding: "Straße" is "STRASSE", "ø" is not "o". Neither depends
///    on a locale.
///  - ALL and ANY compare each element of the left collection. Absent is a collection of none, so
///    that ALL holds for it and ANY does not.
///
/// Raises `NSInvalidArgumentException` where a side is of a kind that the operator does not take,
/// for a malformed regular expression and one that needs more than its share of memory.
///
/// Thread: any, as far as its constants and blocks are; immutable. Lifetime: keeps both
/// expressions.
class RVF_EXPORT NSComparisonPredicate : public NSPredicate {
 public:
  /// `options` is a sum of `NSComparisonPredicateOptions`. Raises `NSInvalidArgumentException` for
  /// an absent side and for the custom operator, which has its own initialiser.
  static Ref<NSComparisonPredicate> initWithLeftExpression(const Ref<NSExpression>& left,
                                                           const Ref<NSExpression>& rightExpression,
                                                           NSComparisonPredicateModifier modifier,
                                                           NSPredicateOperatorType type,
                                                           unsigned options);
  /// The left value answers the selector with the right value, as a flag.
  static Ref<NSComparisonPredicate> initWithLeftExpression(const Ref<NSExpression>& left,
                                                           const Ref<NSExpression>& rightExpression,
                                                           SEL customSelector);

  ~NSComparisonPredicate() override;

  static Class classObject();
  Class isa() const override;

  /// The parts that it was made of. No expression is absent.
  const Ref<NSExpression>& leftExpression() const noexcept { return left_; }
  const Ref<NSExpression>& rightExpression() const noexcept { return right_; }
  NSPredicateOperatorType predicateOperatorType() const noexcept { return operation_.type; }
  NSComparisonPredicateModifier comparisonPredicateModifier() const noexcept {
    return operation_.modifier;
  }
  unsigned options() const noexcept { return operation_.options; }
  /// The null selector for every operator but the custom one.
  SEL customSelector() const noexcept { return operation_.customSelector; }

  std::string predicateFormat() const override;
  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;

 protected:
  NSComparisonPredicate(const Ref<NSExpression>& left, const Ref<NSExpression>& right,
                        const NSComparisonOperation& operation);

  bool evaluates(const id& object, const Ref<NSDictionary>& variables) const override;
  Ref<NSPredicate> substituted(const NSDictionary& variables) override;

 private:
  bool holdsFor(const NSObject* leftValue, const NSObject* rightValue) const;

  Ref<NSExpression> left_;
  Ref<NSExpression> right_;
  NSComparisonOperation operation_;
  /// For a text on the right that never changes.
  std::unique_ptr<const PreparedTextTest> prepared_;
};

}  // namespace rvf
