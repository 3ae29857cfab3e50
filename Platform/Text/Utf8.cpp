// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/Utf8.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace rvf {
namespace {

constexpr Utf8Unit kIllFormed{0xFFFD, 1, false};

struct Form {
  std::size_t length;
  unsigned char secondLow;
  unsigned char secondHigh;
  unsigned char leadMask;
};

/// The well-formed sequences by their first byte; length 0 for a byte that starts none.
constexpr Form formOf(unsigned char lead) noexcept {
  if (lead < 0xC2) return {0, 0, 0, 0};
  if (lead < 0xE0) return {2, 0x80, 0xBF, 0x1F};
  if (lead == 0xE0) return {3, 0xA0, 0xBF, 0x0F};
  if (lead == 0xED) return {3, 0x80, 0x9F, 0x0F};
  if (lead < 0xF0) return {3, 0x80, 0xBF, 0x0F};
  if (lead == 0xF0) return {4, 0x90, 0xBF, 0x07};
  if (lead < 0xF4) return {4, 0x80, 0xBF, 0x07};
  if (lead == 0xF4) return {4, 0x80, 0x8F, 0x07};
  return {0, 0, 0, 0};
}

}  // namespace

Utf8Unit detail::decodeFirstUtf8Unit(std::string_view text) noexcept {
  const auto lead = static_cast<unsigned char>(text.front());
  const Form form = formOf(lead);
  if (form.length == 0 || text.size() < form.length) return kIllFormed;
  const auto second = static_cast<unsigned char>(text[1]);
  if (second < form.secondLow || second > form.secondHigh) return kIllFormed;
  char32_t codePoint = lead & form.leadMask;
  for (std::size_t i = 1; i < form.length; ++i) {
    if (!isUtf8Continuation(text[i])) return kIllFormed;
    codePoint = codePoint << 6 | (static_cast<unsigned char>(text[i]) & 0x3F);
  }
  return {codePoint, form.length, true};
}

Utf8Unit detail::decodeLastUtf8Unit(std::string_view text) noexcept {
  constexpr std::size_t kLongest = 4;
  const std::size_t longest = std::min(kLongest, text.size());
  std::size_t length = 1;
  while (length < longest && isUtf8Continuation(text[text.size() - length]))
    ++length;
  const Utf8Unit unit = firstUtf8Unit(text.substr(text.size() - length));
  return unit.length == length ? unit : kIllFormed;
}

bool detail::isWideWhiteSpace(char32_t codePoint) noexcept {
  switch (codePoint) {
    case 0xA0:
    case 0x1680:
    case 0x202F:
    case 0x205F:
    case 0x3000:
      return true;
    default:
      return codePoint >= 0x2000 && codePoint <= 0x200A;
  }
}

bool isDecimalDigit(char32_t codePoint) noexcept {
  return u_isdigit(static_cast<UChar32>(codePoint)) != 0;
}

}  // namespace rvf
