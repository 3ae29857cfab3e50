// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/RegularExpression.h"

#include <cstdint>
#include <limits>
#include <string>

#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

[[noreturn]] void raise(std::string_view problem) {
  NSException::raise(NSInvalidArgumentException,
                     "Can't do regex matching, reason: " + std::string(problem));
}

}  // namespace

RegularExpression::RegularExpression(std::string_view pattern, TextFolding folding)
    : isDiacriticInsensitive_(folding.isDiacriticInsensitive) {
  UErrorCode status = U_ZERO_ERROR;
  UParseError where;
  const std::uint32_t flags = folding.isCaseInsensitive ? UREGEX_CASE_INSENSITIVE : 0;
  pattern_.reset(icu::RegexPattern::compile(libraryText(pattern), flags, where, status));
  if (U_FAILURE(status))
    raise(std::string(u_errorName(status)) + " in the pattern \"" + std::string(pattern) + "\"");
}

bool RegularExpression::matches(std::string_view text) const {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString input = libraryText(text);
  const std::unique_ptr<icu::RegexMatcher> matcher(pattern_->matcher(input, status));
  if (U_FAILURE(status)) raise(u_errorName(status));
  const bool isMatch = matcher->matches(status) != 0;
  if (U_FAILURE(status)) raise(u_errorName(status));
  return isMatch;
}

icu::UnicodeString RegularExpression::libraryText(std::string_view text) const {
  if (text.size() > std::numeric_limits<std::int32_t>::max()) raise("text of 2 GB or more");
  const FoldedText folded(text, {false, isDiacriticInsensitive_});
  return icu::UnicodeString::fromUTF8(
      {folded.view().data(), static_cast<std::int32_t>(folded.view().size())});
}

}  // namespace rvf
