// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/Text/NSString-RVFEscaping.h"

#include <array>
#include <cstddef>

namespace rvf {
namespace {

/// What each byte becomes; empty for those that stay.
using Replacements = std::array<std::string_view, 256>;

constexpr auto kEntities = [] {
  Replacements entities{};
  entities['&'] = "&amp;";
  entities['<'] = "&lt;";
  entities['>'] = "&gt;";
  entities['"'] = "&quot;";
  entities['\''] = "&apos;";
  return entities;
}();

constexpr auto kEscapedWildcards = [] {
  Replacements wildcards{};
  wildcards['%'] = "\\%";
  wildcards['*'] = "\\*";
  wildcards['?'] = "\\?";
  wildcards['_'] = "\\_";
  return wildcards;
}();

std::string replaceBytes(std::string_view text, const Replacements& replacements) {
  std::string result;
  result.reserve(text.size() + text.size() / 8);
  std::size_t start = 0;  // of what is not copied yet
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view replacement = replacements[static_cast<unsigned char>(text[i])];
    if (replacement.empty()) continue;
    result.append(text, start, i - start);
    result.append(replacement);
    start = i + 1;
  }
  return result.append(text, start);
}

/// The bytes of the tab or line break at the start of a text that is not empty; 0 if there is none.
std::size_t breakLength(std::string_view text) noexcept {
  const auto byte = static_cast<unsigned char>(text.front());
  if (byte < 0x80) return byte >= '\t' && byte <= '\r' ? 1 : 0;
  constexpr std::string_view kNextLine = "\u0085";
  if (text.starts_with(kNextLine)) return kNextLine.size();
  constexpr std::string_view kLineSeparator = "\u2028";
  constexpr std::string_view kParagraphSeparator = "\u2029";
  const bool isSeparator =
      text.starts_with(kLineSeparator) || text.starts_with(kParagraphSeparator);
  return isSeparator ? kLineSeparator.size() : 0;
}

}  // namespace

std::string stringByEscapingXMLEntities(std::string_view text) {
  return replaceBytes(text, kEntities);
}

std::string RVF_stringByEscapingPredicateWildcards(std::string_view text) {
  return replaceBytes(text, kEscapedWildcards);
}

std::string RVF_cleanStringRemovingNewlinesAndTabs(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  const auto takePiece = [&result](std::string_view piece) {
    if (piece.empty()) return;
    if (!result.empty()) result += ' ';
    result += piece;
  };
  std::size_t start = 0;  // of the piece
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = breakLength(text.substr(i));
    if (length > 0) {
      takePiece(text.substr(start, i - start));
      start = i + length;
    }
    i += length > 0 ? length : 1;
  }
  takePiece(text.substr(start));
  return result;
}

}  // namespace rvf
