// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Export.h"

namespace rvf {

/// The words of the text in order, by the rules of the user's current locale (see `WordTokenizer`);
/// punctuation and white space are left out.
///
/// A text of 2 GB or more is a reported assertion, "Could not create tokenizer"; under a handler
/// that returns, the list is empty.
RVF_EXPORT std::vector<std::string> wordComponents(std::string_view text);

/// How often the substring occurs, counted from left to right without overlap: "aa" is once in
/// "aaa". 0 for the empty substring.
RVF_EXPORT std::size_t RVF_occurrenceCountOfSubstring(std::string_view text,
                                                      std::string_view substring) noexcept;

}  // namespace rvf
