// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/CaseMapping.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "Platform/Text/Utf8Pieces.h"

namespace rvf {
namespace {

constexpr char uppercaseASCII(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// No mapping to upper case looks at the characters around, so pieces map like the whole.
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
    const std::string_view piece = takeWellFormedPiece(text);
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
