// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Predicates/NSComparisonPredicate.h"

/// The words and signs of comparisons in a format text.
namespace rvf {

/// Whether two ASCII words are the same in any case; `upper` is in upper case.
bool isWord(std::string_view text, std::string_view upper) noexcept;

/// Words that are no key in a format unless "SELF." stands before them.
bool isReservedWord(std::string_view word) noexcept;

/// What leads from the evaluated object to a key, and may be left out.
inline constexpr std::string_view kSelfPrefix = "SELF.";
bool startsWithSelf(std::string_view keyPath) noexcept;

/// The operator that a sign ("==", "=<") or a word ("contains") stands for.
std::optional<NSPredicateOperatorType> operatorNamed(std::string_view text) noexcept;
/// As it is printed. Not for the custom operator.
std::string_view operatorName(NSPredicateOperatorType type) noexcept;

/// The option of a letter; 0 for a letter that is none.
unsigned optionOfLetter(char letter) noexcept;
/// "[cd]"; empty for none.
std::string textOfOptions(unsigned options);

}  // namespace rvf
