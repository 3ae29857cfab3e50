// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// One step through UTF-8 text: a character, or one byte that belongs to none.
///
/// Thread: any, a plain value. Lifetime: refers to nothing.
struct Utf8Unit {
  char32_t codePoint;  ///< U+FFFD for a byte that belongs to no character
  std::size_t length;  ///< bytes, 1 to 4
  bool wellFormed;
};

namespace detail {

RVF_EXPORT Utf8Unit decodeFirstUtf8Unit(std::string_view text) noexcept;
RVF_EXPORT Utf8Unit decodeLastUtf8Unit(std::string_view text) noexcept;
RVF_EXPORT bool isWideWhiteSpace(char32_t codePoint) noexcept;

}  // namespace detail

/// Whether the byte is a character on its own.
constexpr bool isAscii(char byte) noexcept {
  return static_cast<unsigned char>(byte) < 0x80;
}

/// Decodes the first character of a text that is not empty (Unicode, table 3-7).
inline Utf8Unit firstUtf8Unit(std::string_view text) noexcept {
  const char first = text.front();
  if (isAscii(first)) return {static_cast<char32_t>(first), 1, true};
  return detail::decodeFirstUtf8Unit(text);
}
/// The same of the last character. Decoding from the front comes to the same characters.
inline Utf8Unit lastUtf8Unit(std::string_view text) noexcept {
  const char last = text.back();
  if (isAscii(last)) return {static_cast<char32_t>(last), 1, true};
  return detail::decodeLastUtf8Unit(text);
}

/// Whether the byte can only continue a character that began before it.
constexpr bool isUtf8Continuation(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// A set of characters, such as the following ones. Bytes that belong to no character are asked for
/// as U+FFFD.
using CharacterSet = bool (*)(char32_t codePoint) noexcept;

/// U+0009 and category Zs.
inline bool isWhiteSpace(char32_t codePoint) noexcept {
  if (codePoint < 0x80) return codePoint == 0x20 || codePoint == 0x09;
  return detail::isWideWhiteSpace(codePoint);
}
/// U+000A to U+000D, U+0085, U+2028, U+2029.
constexpr bool isNewline(char32_t codePoint) noexcept {
  return (codePoint >= 0x0A && codePoint <= 0x0D) || codePoint == 0x85 || codePoint == 0x2028 ||
         codePoint == 0x2029;
}
inline bool isWhiteSpaceOrNewline(char32_t codePoint) noexcept {
  return isWhiteSpace(codePoint) || isNewline(codePoint);
}
/// Category Nd, so the digits of every script.
RVF_EXPORT bool isDecimalDigit(char32_t codePoint) noexcept;

/// The text from its first character on that is not in the set.
inline std::string_view withoutPrefix(std::string_view text, CharacterSet set) noexcept {
  while (!text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    if (!set(unit.codePoint)) break;
    text.remove_prefix(unit.length);
  }
  return text;
}
/// The text up to its last character that is not in the set.
inline std::string_view withoutSuffix(std::string_view text, CharacterSet set) noexcept {
  while (!text.empty()) {
    const Utf8Unit unit = lastUtf8Unit(text);
    if (!set(unit.codePoint)) break;
    text.remove_suffix(unit.length);
  }
  return text;
}

}  // namespace rvf
