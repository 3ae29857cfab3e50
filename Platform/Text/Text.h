// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Export.h"

/// Questions to UTF-8 text as the platform's text type answers them: lengths, indexes and order
/// count UTF-16 code units. A byte that is part of no well-formed sequence counts one unit and is
/// never dropped.
namespace rvf {

/// Whether the bytes are well-formed UTF-8: no overlong forms, no surrogates, nothing above
/// U+10FFFF (Unicode, table 3-7).
RVF_EXPORT bool isValidUtf8(std::string_view bytes) noexcept;

/// The text with U+FFFD for every byte that belongs to no character.
RVF_EXPORT std::string wellFormedUtf8(std::string_view bytes);

/// The length in UTF-16 code units: "€" is 1, "😀" is 2.
RVF_EXPORT std::size_t utf16Length(std::string_view text) noexcept;

/// Negative, 0 or positive: the order by UTF-16 code unit, which differs from the order of the
/// bytes above U+FFFF.
RVF_EXPORT int compareUtf16(std::string_view a, std::string_view b) noexcept;

/// The pieces between the separators, left to right, without overlap; empty pieces are kept, so
/// there is always one more piece than separators. An empty separator gives the whole text.
/// The pieces point into `text`.
RVF_EXPORT std::vector<std::string_view> splitText(std::string_view text,
                                                   std::string_view separator);

/// The pieces with the separator between them: the inverse of `splitText`.
RVF_EXPORT std::string joinText(const std::vector<std::string_view>& pieces,
                                std::string_view separator);

/// The boolean reading of a text: leading white space, then an optional sign and any "0" digits
/// are passed over; true if "Y", "y", "T", "t" or a digit "1" to "9" follows.
RVF_EXPORT bool boolValueOfText(std::string_view text) noexcept;

}  // namespace rvf
