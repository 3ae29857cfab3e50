// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// Appends the UTF-8 form of a character that is no surrogate.
RVF_EXPORT void appendUtf8(std::string& text, char32_t codePoint);

/// UTF-8 text of UTF-16 units, two bytes each, the more significant one first. A unit that is half
/// a character becomes U+FFFD; an odd last byte is passed over.
RVF_EXPORT std::string textOfUtf16BigEndian(std::string_view bytes);

/// The inverse. The text must be well-formed.
RVF_EXPORT std::string utf16BigEndianOfText(std::string_view text);

}  // namespace rvf
