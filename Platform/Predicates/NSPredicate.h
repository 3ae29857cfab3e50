// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Text/Format.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// A condition on an object, for filtering and searching.
///
///     const auto cheap = NSPredicate::predicateWithFormat(
///         "name CONTAINS[cd] %@ AND price < %d", "café", 10);
///     const Ref<NSArray> found = filteredArrayUsingPredicate(products, *cheap);
///
/// A format has comparisons, joined by `AND &&`, `OR ||` and `NOT !` (NOT binds tighter than AND,
/// AND tighter than OR) and parentheses, and the words `TRUEPREDICATE` and `FALSEPREDICATE`. A
/// chain of one connective is one compound. A comparison is
///
///     [ALL|ANY|SOME|NONE] OPERAND OPERATOR[OPTIONS] OPERAND
///
///     operators   = == != <> < <= =< > >= =>
///                 BEGINSWITH ENDSWITH CONTAINS LIKE MATCHES IN BETWEEN
///     options     [c] case, [d] diacritics, [n] compared as given, [l] kept and printed only
///     operands    'text' "text" 12 -1.5e3 TRUE YES FALSE NO NIL NULL SELF {a, b} $VARIABLE
///                 key.path, and SELF.key for a key that is a word of the language
///     arguments   %@ any value, %K a key path, %s text
///                 %d %i %u %x %o an integer, %f %e %g a number
///
/// Words are read in any case. In quotes, a backslash takes a quote or a backslash literally and
/// makes `\n`, `\r` and `\t`; before anything else it stays, so that patterns need no doubling.
/// `$X` and `%@` in quotes are plain text.
///
/// Values are compared as `NSComparisonPredicate` says. Predicates are immutable, so safe to share
/// between threads as far as their constants and blocks are. They nest at most 1,000 deep; making
/// a deeper one raises `NSInvalidArgumentException`.
///
/// Thread: any, as far as constants and blocks are; immutable. Lifetime: keeps what was given as
/// argument, and nothing of what is evaluated.
class RVF_EXPORT NSPredicate : public NSObject {
 public:
  /// Gets the object, which may be absent, and the variables of the evaluation, which may be.
  /// Called during an evaluation, on its thread.
  using Block = std::function<bool(const id& evaluatedObject, const Ref<NSDictionary>& bindings)>;

  /// Raises a `PredicateFormatException` if the text is no predicate, nests deeper than 250 levels,
  /// or asks for other arguments than there are. Arguments too many are ignored.
  template <class... Arguments>
  static Ref<NSPredicate> predicateWithFormat(std::string_view format,
                                              const Arguments&... arguments) {
    const std::array<FormatArgument, sizeof...(Arguments)> list{FormatArgument(arguments)...};
    return predicateWithFormatArguments(format, list);
  }
  static Ref<NSPredicate> predicateWithFormatArguments(std::string_view format,
                                                       std::span<const FormatArgument> arguments);
  /// `NSNull` stands for nil.
  static Ref<NSPredicate> predicateWithFormatArgumentArray(std::string_view format,
                                                           const Ref<NSArray>& argumentArray);

  /// The same answer for every object: `TRUEPREDICATE` or `FALSEPREDICATE`.
  static Ref<NSPredicate> predicateWithValue(bool value);
  /// Raises `NSInvalidArgumentException` for an empty block. It is equal to itself only.
  static Ref<NSPredicate> predicateWithBlock(Block block);

  static Class classObject();
  Class isa() const override;

  /// Whether the condition holds for the object, which may be absent. Values of variables are
  /// looked up in `substitutionVariables`; one without a value raises `NSInvalidArgumentException`,
  /// but only where the evaluation comes to it: not in `FALSEPREDICATE AND a == $A`. Key-value
  /// coding raises `NSUndefinedKeyException` for a key that an object does not have. A block may
  /// give up the last reference to the predicate, which then stays until the evaluation ends.
  bool evaluateWithObject(const id& object,
                          const Ref<NSDictionary>& substitutionVariables = nullptr) const;

  /// The predicate with those variables replaced by constants that have an entry, `NSNull` by nil;
  /// variables without an entry stay. Itself if none is replaced. Raises
  /// `NSInvalidArgumentException` for an absent dictionary.
  Ref<NSPredicate> predicateWithSubstitutionVariables(const Ref<NSDictionary>& variables);

  /// The text that `predicateWithFormat` makes an equal predicate of. What does not read back:
  /// constants other than texts, finite numbers, nil and collections of these; blocks; custom
  /// selectors; key paths that are no words of a format; a connective of fewer than two parts; and
  /// what nests deeper than a format may.
  virtual std::string predicateFormat() const = 0;
  std::string description() const override { return predicateFormat(); }

  /// How deep it nests; 1 for one that holds no others.
  std::size_t depth() const noexcept { return depth_; }

 protected:
  explicit NSPredicate(std::size_t depth = 1) noexcept : depth_(depth) {}

  /// What `evaluateWithObject` answers. Object and variables may be absent.
  virtual bool evaluates(const id& object, const Ref<NSDictionary>& variables) const = 0;
  /// Called with at least a dictionary; answers itself unless a class says otherwise.
  virtual Ref<NSPredicate> substituted(const NSDictionary& variables);

 private:
  friend class NSCompoundPredicate;
  friend RVF_EXPORT Ref<NSArray> filteredArrayUsingPredicate(const Ref<NSArray>& array,
                                                             const NSPredicate& predicate);

  std::size_t depth_;
};

/// The objects that the predicate holds for, in their order. Raises what the evaluation raises, and
/// `NSGenericException` if it changes the array. Absent for an absent array.
RVF_EXPORT Ref<NSArray> filteredArrayUsingPredicate(const Ref<NSArray>& array,
                                                    const NSPredicate& predicate);

}  // namespace rvf
