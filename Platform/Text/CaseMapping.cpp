// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/CaseMapping.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "Platform/Text/Utf8.h"

namespace rvf {
namespace {

/// The library counts in 32 bits. No mapping to upper case looks at the characters around.
constexpr std::size_t kLongestPiece = std::size_t{1} << 20;

constexpr char uppercaseASCII(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Cuts well-formed text off the front, at most one piece.
std::string_view takePiece(std::string_view& text) noexcept {
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

void appendUppercase(std::string_view piece, std::string& result) {
  icu::StringByteSink<std::string> sink(&result);
  UErrorCode status = U_ZERO_ERROR;
  constexpr const char* kRootLocale = "";
  icu::CaseMap::utf8ToUpper(kRootLocale, 0, {piece.data(), static_cast<std::int32_t>(piece.size())},
                            sink, nullptr, status);
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
}

}  // namespace

std::string uppercaseText(std::string_view text) {
  const auto firstOther =
      std::ranges::find_if(text, [](char c) { return static_cast<unsigned char>(c) > 0x7F; });
  std::string result(text.begin(), firstOther);
  std::ranges::transform(result, result.begin(), uppercaseASCII);
  text.remove_prefix(result.size());
  while (!text.empty()) {
    const std::string_view piece = takePiece(text);
    if (!piece.empty()) {
      appendUppercase(piece, result);
      continue;
    }
    result += text.front();
    text.remove_prefix(1);
  }
  return result;
}

}  // namespace rvf
