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

/// The same of the last character. Decoding from the front comes to the same characters.
RVF_EXPORT Utf8Unit lastUtf8Unit(std::string_view text) noexcept;

constexpr bool isUtf8Continuation(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// A set of characters, such as the following ones. Bytes that belong to no character are asked for
/// as U+FFFD.
using CharacterSet = bool (*)(char32_t codePoint) noexcept;

/// U+0009 and category Zs.
RVF_EXPORT bool isWhiteSpace(char32_t codePoint) noexcept;
/// U+000A to U+000D, U+0085, U+2028, U+2029.
RVF_EXPORT bool isNewline(char32_t codePoint) noexcept;
inline bool isWhiteSpaceOrNewline(char32_t codePoint) noexcept {
  return isWhiteSpace(codePoint) || isNewline(codePoint);
}
/// Category Nd, so the digits of every script.
RVF_EXPORT bool isDecimalDigit(char32_t codePoint) noexcept;

/// The text from the first character on that is not in the set.
RVF_EXPORT std::string_view withoutPrefix(std::string_view text, CharacterSet set) noexcept;

}  // namespace rvf
