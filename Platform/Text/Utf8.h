// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// One step through UTF-8 text: a character, or one byte that belongs to none.
struct Utf8Unit {
  char32_t codePoint;  ///< U+FFFD for a byte that belongs to no character
  std::size_t length;  ///< bytes, 1 to 4
  bool wellFormed;
};

/// Decodes the first character of a text that is not empty (Unicode, table 3-7).
RVF_EXPORT Utf8Unit firstUtf8Unit(std::string_view text) noexcept;

constexpr bool isUtf8Continuation(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// U+0009 and category Zs.
RVF_EXPORT bool isWhiteSpace(char32_t codePoint) noexcept;
/// U+000A to U+000D, U+0085, U+2028, U+2029.
RVF_EXPORT bool isNewline(char32_t codePoint) noexcept;
inline bool isWhiteSpaceOrNewline(char32_t codePoint) noexcept {
  return isWhiteSpace(codePoint) || isNewline(codePoint);
}

}  // namespace rvf
