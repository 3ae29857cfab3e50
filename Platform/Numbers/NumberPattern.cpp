// SPDX-License-Identifier: Apache-2.0
#include "Platform/Numbers/NumberPattern.h"

#include <functional>

namespace rvf {
namespace {

constexpr std::string_view kCurrencySign = "\u00A4";
constexpr std::string_view kPerMille = "\u2030";

/// Hands over every literal apostrophe ("''") and every piece between quotes, with whether it is
/// quoted. Answers whether a quotation is open at the end.
bool walkPattern(std::string_view pattern,
                 const std::function<void(std::string_view character, bool isQuoted)>& visit) {
  bool isQuoted = false;
  while (!pattern.empty()) {
    if (pattern.starts_with("''")) {
      visit(pattern.substr(0, 2), isQuoted);
      pattern.remove_prefix(2);
    } else if (pattern.front() == '\'') {
      isQuoted = !isQuoted;
      pattern.remove_prefix(1);
    } else {
      const std::size_t length = pattern.starts_with(kCurrencySign) ? kCurrencySign.size()
                                 : pattern.starts_with(kPerMille)   ? kPerMille.size()
                                                                    : 1;
      visit(pattern.substr(0, length), isQuoted);
      pattern.remove_prefix(length);
    }
  }
  return isQuoted;
}

bool meansMoreToTheLibrary(std::string_view character) {
  constexpr std::string_view kMarks = "+%;@E*123456789";
  return character == kPerMille ||
         (character.size() == 1 && kMarks.find(character.front()) != std::string_view::npos);
}

}  // namespace

std::string quotedNumberPattern(std::string_view pattern) {
  std::string result;
  bool isOpen = false;
  walkPattern(pattern, [&](std::string_view character, bool isQuoted) {
    const bool needsQuotes = isQuoted || meansMoreToTheLibrary(character);
    if (needsQuotes != isOpen) result += '\'';
    isOpen = needsQuotes;
    result += character;
  });
  if (isOpen) result += '\'';
  return result;
}

bool hasOpenQuote(std::string_view pattern) {
  return walkPattern(pattern, [](std::string_view /*character*/, bool /*isQuoted*/) {});
}

bool hasCurrencySign(std::string_view pattern) {
  bool found = false;
  walkPattern(pattern, [&found](std::string_view character, bool isQuoted) {
    found = found || (character == kCurrencySign && !isQuoted);
  });
  return found;
}

}  // namespace rvf
