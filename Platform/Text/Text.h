// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Text/Utf8.h"

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

/// Whether the length in UTF-16 code units lies in these limits, both included. Counts only where
/// the number of bytes does not tell: a unit takes one to three.
inline bool isUtf16LengthBetween(std::string_view text, std::size_t shortest,
                                 std::size_t longest) noexcept {
  const std::size_t most = text.size();
  const std::size_t least = most / 3 + (most % 3 != 0 ? 1 : 0);
  if (most < shortest || least > longest) return false;
  if (least >= shortest && most <= longest) return true;
  const std::size_t length = utf16Length(text);
  return length >= shortest && length <= longest;
}

/// Up to `length` UTF-16 code units from the unit `start` on, fewer where the text ends before. A
/// character that the cut halves is left out. The result points into `text`.
RVF_EXPORT std::string_view substringUtf16(std::string_view text, std::size_t start,
                                           std::size_t length = std::string_view::npos) noexcept;

/// Negative, 0 or positive: the order by UTF-16 code unit, which differs from the order of the
/// bytes above U+FFFF.
RVF_EXPORT int compareUtf16(std::string_view a, std::string_view b) noexcept;

/// The pieces between the separators, left to right, without overlap; empty pieces are kept, so
/// there is always one more piece than separators. An empty separator gives the whole text.
/// The pieces point into `text`.
RVF_EXPORT std::vector<std::string_view> splitText(std::string_view text,
                                                   std::string_view separator);

/// Walks along the pieces that `splitText` gives, one a step and without a list of them:
///
///     TextPieces pieces("a^b", '^');
///     while (const auto piece = pieces.next()) { … }
///
/// The separator is an ASCII character. The text must stay as it is meanwhile.
///
/// Thread: one at a time. Lifetime: refers to the text, which the caller keeps.
class RVF_EXPORT TextPieces final {
 public:
  TextPieces(std::string_view text, char separator) noexcept : rest_(text), separator_(separator) {}

  /// The next piece, absent after the last.
  std::optional<std::string_view> next() noexcept {
    if (isAtEnd_) return std::nullopt;
    const std::size_t end = rest_.find(separator_);
    const std::string_view piece = rest_.substr(0, end);
    isAtEnd_ = end == std::string_view::npos;
    if (!isAtEnd_) rest_.remove_prefix(end + 1);
    return piece;
  }

 private:
  std::string_view rest_;
  char separator_;
  bool isAtEnd_ = false;
};

/// The pieces with the separator between them: the inverse of `splitText`.
RVF_EXPORT std::string joinText(const std::vector<std::string_view>& pieces,
                                std::string_view separator);

/// The text without the characters of the set at both ends. The result points into `text`.
inline std::string_view trimText(std::string_view text, CharacterSet set) noexcept {
  return withoutSuffix(withoutPrefix(text, set), set);
}

/// The integer reading of a text: leading white space and line breaks, an optional "+" or "-", then
/// ASCII digits; what follows is ignored. 0 without digits; the nearest limit if out of range.
RVF_EXPORT std::int32_t intValueOfText(std::string_view text) noexcept;

/// The same with the limits of 64 bits.
RVF_EXPORT std::int64_t integerValueOfText(std::string_view text) noexcept;

/// The fractional reading of a text: leading white space and line breaks, an optional sign, ASCII
/// digits with at most one ".", and an exponent; what follows is ignored. 0 without digits;
/// infinite if out of range. Nothing depends on any locale.
RVF_EXPORT double doubleValueOfText(std::string_view text) noexcept;

/// The boolean reading of a text: leading white space (no line breaks), then an optional sign and
/// any "0" digits are passed over; true if "Y", "y", "T", "t" or a digit "1" to "9" follows.
RVF_EXPORT bool boolValueOfText(std::string_view text) noexcept;

}  // namespace rvf
