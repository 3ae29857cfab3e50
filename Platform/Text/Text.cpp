// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/Text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "Platform/Text/NumberReading.h"
#include "Platform/Text/Utf8.h"

namespace rvf {

bool isValidUtf8(std::string_view bytes) noexcept {
  while (!bytes.empty()) {
    const Utf8Unit unit = firstUtf8Unit(bytes);
    if (!unit.wellFormed) return false;
    bytes.remove_prefix(unit.length);
  }
  return true;
}

namespace {

/// The number of ASCII bytes at the start.
std::size_t asciiPrefixLength(std::string_view text) noexcept {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::size_t length = 0;
  for (std::uint64_t word = 0; text.size() - length >= sizeof word; length += sizeof word) {
    std::memcpy(&word, text.data() + length, sizeof word);
    if (word & kHighBits) break;
  }
  while (length < text.size() && isAscii(text[length]))
    ++length;
  return length;
}

constexpr std::size_t utf16UnitsOf(const Utf8Unit& unit) noexcept {
  return unit.codePoint > 0xFFFF ? 2 : 1;
}

/// Removes characters that begin before `length` UTF-16 units are over; answers the units removed,
/// which are one more where that point halves a character.
std::size_t removeUtf16Prefix(std::string_view& text, std::size_t length) noexcept {
  std::size_t count = asciiPrefixLength(text.substr(0, length));
  text.remove_prefix(count);
  while (count < length && !text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    count += utf16UnitsOf(unit);
    text.remove_prefix(unit.length);
  }
  return count;
}

}  // namespace

std::size_t utf16Length(std::string_view text) noexcept {
  std::size_t count = asciiPrefixLength(text);
  text.remove_prefix(count);
  while (!text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    count += utf16UnitsOf(unit);
    text.remove_prefix(unit.length);
  }
  return count;
}

std::string_view substringUtf16(std::string_view text, std::size_t start,
                                std::size_t length) noexcept {
  const std::size_t end = length < text.size() ? start + length : text.size();
  const std::string_view upToEnd = text.substr(0, end);
  if (asciiPrefixLength(upToEnd) == upToEnd.size()) {
    return upToEnd.substr(std::min(start, upToEnd.size()));
  }
  const bool startsInsideCharacter = removeUtf16Prefix(text, start) > start;
  if (startsInsideCharacter && length > 0) --length;
  std::string_view rest = text;
  std::size_t count = 0;
  while (count < length && !rest.empty()) {
    const Utf8Unit unit = firstUtf8Unit(rest);
    count += utf16UnitsOf(unit);
    if (count > length) break;
    rest.remove_prefix(unit.length);
  }
  return text.substr(0, text.size() - rest.size());
}

namespace {

/// Maps units so that comparing them orders as their UTF-16 forms do: supplementary characters
/// start with a surrogate, D800 to DBFF, and so come before E000 to FFFF. Bytes that belong to no
/// character come next to U+FFFD, each in a place of its own, so that the order is a total one.
constexpr std::uint32_t utf16Rank(const Utf8Unit& unit, char firstByte) noexcept {
  constexpr std::uint32_t kAfterSupplementary = 0x110000;
  constexpr std::uint32_t kRoomForBytes = 0x100;
  if (!unit.wellFormed)
    return kAfterSupplementary + 0xFFFD + 1 + static_cast<unsigned char>(firstByte);
  if (unit.codePoint > 0xFFFF || unit.codePoint < 0xE000) return unit.codePoint;
  const std::uint32_t rank = kAfterSupplementary + unit.codePoint;
  return unit.codePoint > 0xFFFD ? rank + kRoomForBytes : rank;
}

bool isContinuationAt(std::string_view text, std::size_t index) noexcept {
  return index < text.size() && isUtf8Continuation(text[index]);
}

}  // namespace

int compareUtf16(std::string_view a, std::string_view b) noexcept {
  // Whatever is no continuation byte starts a unit, so back to there from the first difference.
  auto start = static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
  while (start > 0 && (isContinuationAt(a, start) || isContinuationAt(b, start)))
    --start;
  a.remove_prefix(start);
  b.remove_prefix(start);
  while (!a.empty() && !b.empty()) {
    const Utf8Unit unitA = firstUtf8Unit(a);
    const Utf8Unit unitB = firstUtf8Unit(b);
    const std::uint32_t rankA = utf16Rank(unitA, a.front());
    const std::uint32_t rankB = utf16Rank(unitB, b.front());
    if (rankA != rankB) return rankA < rankB ? -1 : 1;
    a.remove_prefix(unitA.length);
    b.remove_prefix(unitB.length);
  }
  return a.empty() && b.empty() ? 0 : a.empty() ? -1 : 1;
}

std::string wellFormedUtf8(std::string_view bytes) {
  constexpr std::string_view kReplacement = "\uFFFD";
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const Utf8Unit unit = firstUtf8Unit(bytes);
    text += unit.wellFormed ? bytes.substr(0, unit.length) : kReplacement;
    bytes.remove_prefix(unit.length);
  }
  return text;
}

std::vector<std::string_view> splitText(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> pieces;
  if (separator.empty()) return {text};
  for (std::size_t end = text.find(separator); end != std::string_view::npos;
       end = text.find(separator)) {
    pieces.push_back(text.substr(0, end));
    text.remove_prefix(end + separator.size());
  }
  pieces.push_back(text);
  return pieces;
}

std::string joinText(const std::vector<std::string_view>& pieces, std::string_view separator) {
  std::string text;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    if (i > 0) text += separator;
    text += pieces[i];
  }
  return text;
}

std::int32_t intValueOfText(std::string_view text) noexcept {
  const auto number = leadingInteger(withoutPrefix(text, &isWhiteSpaceOrNewline));
  return number ? number->value : 0;
}

std::int64_t integerValueOfText(std::string_view text) noexcept {
  return leadingInteger64(withoutPrefix(text, &isWhiteSpaceOrNewline));
}

double doubleValueOfText(std::string_view text) noexcept {
  return leadingFraction(withoutPrefix(text, &isWhiteSpaceOrNewline));
}

bool boolValueOfText(std::string_view text) noexcept {
  text = withoutPrefix(text, &isWhiteSpace);
  if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
  constexpr std::string_view kTrue = "YyTt123456789";
  return !text.empty() && kTrue.find(text.front()) != std::string_view::npos;
}

}  // namespace rvf
