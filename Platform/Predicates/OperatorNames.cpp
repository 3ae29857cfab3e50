// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/OperatorNames.h"

#include <algorithm>

namespace rvf {
namespace {

struct OperatorName {
  std::string_view text;
  NSPredicateOperatorType type;
};

/// The first of a type is the one that is printed.
constexpr OperatorName kOperators[] = {
    {"<", NSLessThanPredicateOperatorType},
    {"<=", NSLessThanOrEqualToPredicateOperatorType},
    {"=<", NSLessThanOrEqualToPredicateOperatorType},
    {">", NSGreaterThanPredicateOperatorType},
    {">=", NSGreaterThanOrEqualToPredicateOperatorType},
    {"=>", NSGreaterThanOrEqualToPredicateOperatorType},
    {"==", NSEqualToPredicateOperatorType},
    {"=", NSEqualToPredicateOperatorType},
    {"!=", NSNotEqualToPredicateOperatorType},
    {"<>", NSNotEqualToPredicateOperatorType},
    {"MATCHES", NSMatchesPredicateOperatorType},
    {"LIKE", NSLikePredicateOperatorType},
    {"BEGINSWITH", NSBeginsWithPredicateOperatorType},
    {"ENDSWITH", NSEndsWithPredicateOperatorType},
    {"IN", NSInPredicateOperatorType},
    {"CONTAINS", NSContainsPredicateOperatorType},
    {"BETWEEN", NSBetweenPredicateOperatorType},
};

constexpr std::string_view kReservedWords[] = {"AND",
                                               "OR",
                                               "NOT",
                                               "ALL",
                                               "ANY",
                                               "SOME",
                                               "NONE",
                                               "TRUEPREDICATE",
                                               "FALSEPREDICATE",
                                               "TRUE",
                                               "YES",
                                               "FALSE",
                                               "NO",
                                               "NIL",
                                               "NULL",
                                               "SELF",
                                               "BEGINSWITH",
                                               "ENDSWITH",
                                               "CONTAINS",
                                               "LIKE",
                                               "MATCHES",
                                               "IN",
                                               "BETWEEN"};

struct OptionLetter {
  char letter;
  NSComparisonPredicateOptions option;
};

constexpr OptionLetter kOptions[] = {
    {'c', NSCaseInsensitivePredicateOption},
    {'d', NSDiacriticInsensitivePredicateOption},
    {'n', NSNormalizedPredicateOption},
    {'l', NSLocaleSensitivePredicateOption},
};

constexpr char upperASCII(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

bool isWord(std::string_view text, std::string_view upper) noexcept {
  return std::ranges::equal(text, upper, {}, upperASCII);
}

bool isReservedWord(std::string_view word) noexcept {
  return std::ranges::any_of(kReservedWords,
                             [word](std::string_view reserved) { return isWord(word, reserved); });
}

bool startsWithSelf(std::string_view keyPath) noexcept {
  return isWord(keyPath.substr(0, kSelfPrefix.size()), kSelfPrefix);
}

std::optional<NSPredicateOperatorType> operatorNamed(std::string_view text) noexcept {
  for (const OperatorName& name : kOperators)
    if (isWord(text, name.text)) return name.type;
  return std::nullopt;
}

std::string_view operatorName(NSPredicateOperatorType type) noexcept {
  const auto* name = std::ranges::find(kOperators, type, &OperatorName::type);
  return name == std::ranges::end(kOperators) ? std::string_view() : name->text;
}

unsigned optionOfLetter(char letter) noexcept {
  for (const OptionLetter& option : kOptions)
    if (upperASCII(letter) == upperASCII(option.letter)) return option.option;
  return 0;
}

std::string textOfOptions(unsigned options) {
  std::string text;
  for (const OptionLetter& option : kOptions)
    if ((options & option.option) != 0) text += option.letter;
  return text.empty() ? text : "[" + text + "]";
}

}  // namespace rvf
