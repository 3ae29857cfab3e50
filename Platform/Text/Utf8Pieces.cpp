// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/Utf8Pieces.h"

#include <cstddef>

#include "Platform/Text/Utf8.h"

namespace rvf {

std::string_view takeWellFormedPiece(std::string_view& text) noexcept {
  constexpr std::size_t kLongestPiece = std::size_t{1} << 20;
  std::string_view rest = text;
  while (!rest.empty() && text.size() - rest.size() < kLongestPiece) {
    const Utf8Unit unit = firstUtf8Unit(rest);
    if (!unit.wellFormed) break;
    rest.remove_prefix(unit.length);
  }
  const std::string_view piece = text.substr(0, text.size() - rest.size());
  text = rest;
  return piece;
}

}  // namespace rvf
