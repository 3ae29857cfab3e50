// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/Text.h"

#include <algorithm>

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

std::size_t utf16Length(std::string_view text) noexcept {
  std::size_t count = 0;
  while (!text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    count += unit.codePoint > 0xFFFF ? 2 : 1;
    text.remove_prefix(unit.length);
  }
  return count;
}

namespace {

/// Maps code points so that comparing them orders as their UTF-16 forms do: supplementary ones
/// start with a surrogate, D800 to DBFF, and so come before E000 to FFFF.
constexpr char32_t utf16Rank(char32_t codePoint) noexcept {
  if (codePoint > 0xFFFF) return codePoint;
  return codePoint < 0xE000 ? codePoint : codePoint + 0x110000;
}

}  // namespace

int compareUtf16(std::string_view a, std::string_view b) noexcept {
  const auto [atA, atB] = std::ranges::mismatch(a, b);
  std::size_t start = static_cast<std::size_t>(atA - a.begin());
  if (atA == a.end() || atB == b.end()) {
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
  }
  // Back to the start of the character that differs.
  while (start > 0 && (isUtf8Continuation(a[start]) || isUtf8Continuation(b[start])))
    --start;
  const char32_t rankA = utf16Rank(firstUtf8Unit(a.substr(start)).codePoint);
  const char32_t rankB = utf16Rank(firstUtf8Unit(b.substr(start)).codePoint);
  if (rankA != rankB) return rankA < rankB ? -1 : 1;
  return a.substr(start).compare(b.substr(start)) < 0 ? -1 : 1;
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

bool boolValueOfText(std::string_view text) noexcept {
  while (!text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    if (!isWhiteSpaceOrNewline(unit.codePoint)) break;
    text.remove_prefix(unit.length);
  }
  if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
  constexpr std::string_view kTrue = "YyTt123456789";
  return !text.empty() && kTrue.find(text.front()) != std::string_view::npos;
}

}  // namespace rvf
