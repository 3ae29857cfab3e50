// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "Platform/Predicates/TextFolding.h"

namespace rvf {

/// The pattern of LIKE: "?" is one character, "*" any number of them, a backslash makes the next
/// character literal (one at the end stands for itself). Immutable; may be used by many threads.
class WildcardPattern final {
 public:
  WildcardPattern(std::string_view pattern, TextFolding folding);

  /// Whether the whole text is like the pattern. Takes at most time in proportion to the product of
  /// their lengths, and no stack.
  bool matches(std::string_view text) const;

 private:
  enum class Kind : char { literal, oneCharacter, anyCharacters };
  struct Element {
    Kind kind;
    char32_t unit;  ///< of a literal
  };

  /// Units of folded text. What one character becomes is one first unit and maybe more that go on
  /// with it, so that "?" can take all of "ß".
  using Units = std::vector<char32_t>;
  static constexpr char32_t kGoesOn = 0x80000000;

  void appendUnits(std::string_view character, Units& units) const;
  Units unitsOf(std::string_view text) const;
  /// How many units from `at` on an element that is no "*" takes; 0 if it does not match.
  std::size_t unitsTaken(std::size_t element, const Units& units, std::size_t at) const;

  TextFolding folding_;
  std::vector<Element> elements_;
};

}  // namespace rvf
