// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"
#include "Platform/Values/NSDictionary.h"

namespace rvf {

/// Operations of the dictionary class itself.
///
/// Thread: any. Lifetime: keeps nothing.
struct RVF_EXPORT NSDictionary_RVFExtensions {
  /// The entries of a URL query, keys and values percent-decoded: {a: 1, b: A} of "a=1&b=%41". Of
  /// equal keys the last counts, "+" is no blank, and what follows a second "=" is ignored.
  ///
  /// Raises `NSRangeException` for a piece without "=" (so for the empty query) and
  /// `NSInvalidArgumentException` for one that does not decode.
  static Ref<NSDictionary> RVF_dictionaryFromURLQuery(std::string_view query);
};

/// The dictionary as query text, "key=value" joined by "&": keys in ascending order by UTF-16 code
/// unit, both escaped by `RVF_stringByEscapingForURLArgument`. With `form` a blank is "+", without
/// it "%20". Absent for an absent dictionary.
///
/// Keys and values are texts of well-formed UTF-8; anything else raises
/// `NSInvalidArgumentException`.
RVF_EXPORT std::optional<std::string> RVF_encodedDictionary(const Ref<NSDictionary>& dictionary,
                                                            bool form);
/// For the query of a URL.
RVF_EXPORT std::optional<std::string> RVF_URLEncodedDictionary(const Ref<NSDictionary>& dictionary);
/// For a body of type application/x-www-form-urlencoded.
RVF_EXPORT std::optional<std::string> RVF_wwwFormEncodedDictionary(
    const Ref<NSDictionary>& dictionary);

}  // namespace rvf
