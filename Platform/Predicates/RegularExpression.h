// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unicode/regex.h>

#include <memory>
#include <string_view>

#include "Platform/Predicates/TextFolding.h"

namespace rvf {

/// The pattern of MATCHES, for whole texts. Immutable; may be used by many threads at once.
class RegularExpression final {
 public:
  /// Raises `NSInvalidArgumentException` for a malformed pattern. Case is overlooked by the regular
  /// expressions' own rules, diacritics by leaving them out of pattern and text.
  RegularExpression(std::string_view pattern, TextFolding folding);

  /// Raises `NSInvalidArgumentException` if the match needs more than 8 MB to remember where it has
  /// been.
  bool matches(std::string_view text) const;

 private:
  icu::UnicodeString libraryText(std::string_view text) const;

  bool isDiacriticInsensitive_;
  std::unique_ptr<const icu::RegexPattern> pattern_;
};

}  // namespace rvf
