// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/Utf16.h"

#include <cstddef>

#include "Platform/Text/Utf8.h"

namespace rvf {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool isFirstHalf(char32_t unit) noexcept {
  return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool isSecondHalf(char32_t unit) noexcept {
  return unit >= 0xDC00 && unit < 0xE000;
}

char32_t unitAt(std::string_view bytes, std::size_t at) noexcept {
  return static_cast<char32_t>(static_cast<unsigned char>(bytes[at]) << 8U |
                               static_cast<unsigned char>(bytes[at + 1]));
}

void appendUnit(std::string& bytes, char32_t unit) {
  bytes += static_cast<char>(unit >> 8U);
  bytes += static_cast<char>(unit & 0xFF);
}

}  // namespace

void appendUtf8(std::string& text, char32_t codePoint) {
  const auto tail = [codePoint](unsigned shift) {
    return static_cast<char>(0x80 | (codePoint >> shift & 0x3F));
  };
  if (codePoint < 0x80) {
    text += static_cast<char>(codePoint);
  } else if (codePoint < 0x800) {
    text.append({static_cast<char>(0xC0 | codePoint >> 6), tail(0)});
  } else if (codePoint < 0x10000) {
    text.append({static_cast<char>(0xE0 | codePoint >> 12), tail(6), tail(0)});
  } else {
    text.append({static_cast<char>(0xF0 | codePoint >> 18), tail(12), tail(6), tail(0)});
  }
}

std::string textOfUtf16BigEndian(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    char32_t codePoint = unitAt(bytes, at);
    const char32_t next = at + 3 < bytes.size() ? unitAt(bytes, at + 2) : 0;
    if (isFirstHalf(codePoint) && isSecondHalf(next)) {
      codePoint = 0x10000 + ((codePoint & 0x3FF) << 10U) + (next & 0x3FF);
      at += 2;
    } else if (isFirstHalf(codePoint) || isSecondHalf(codePoint)) {
      codePoint = kReplacement;
    }
    appendUtf8(text, codePoint);
  }
  return text;
}

std::string utf16BigEndianOfText(std::string_view text) {
  std::string bytes;
  bytes.reserve(2 * text.size());
  while (!text.empty()) {
    const Utf8Unit unit = firstUtf8Unit(text);
    text.remove_prefix(unit.length);
    if (unit.codePoint < 0x10000) {
      appendUnit(bytes, unit.codePoint);
    } else {
      appendUnit(bytes, 0xD7C0 + (unit.codePoint >> 10U));
      appendUnit(bytes, 0xDC00 + (unit.codePoint & 0x3FF));
    }
  }
  return bytes;
}

}  // namespace rvf
