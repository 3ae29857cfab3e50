// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <rapidcheck.h>

#include <string>
#include <vector>

namespace rvf {

inline std::string encodedUtf8(char32_t c) {
  const auto tail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
  if (c < 0x80) return {static_cast<char>(c)};
  if (c < 0x800) return {static_cast<char>(0xC0 | c >> 6), tail(0)};
  if (c < 0x10000) return {static_cast<char>(0xE0 | c >> 12), tail(6), tail(0)};
  return {static_cast<char>(0xF0 | c >> 18), tail(12), tail(6), tail(0)};
}

/// Well-formed UTF-8 of any characters, ASCII often.
inline rc::Gen<std::string> anyText() {
  const auto character = [](char32_t low, char32_t high) {
    return rc::gen::cast<char32_t>(rc::gen::inRange<unsigned>(low, high));
  };
  return rc::gen::map(
      rc::gen::container<std::vector<char32_t>>(rc::gen::oneOf(
          character(0, 0x80), character(0x20, 0x7F), character(0x80, 0x800),
          character(0x800, 0xD800), character(0xE000, 0x10000), character(0x10000, 0x110000))),
      [](const std::vector<char32_t>& characters) {
        std::string text;
        for (const char32_t c : characters)
          text += encodedUtf8(c);
        return text;
      });
}

/// Bytes among which well-formed, cut off and stray UTF-8 sequences are frequent.
inline rc::Gen<std::string> anyBytes() {
  return rc::gen::container<std::string>(rc::gen::element<char>(
      'A', 'a', '%', '=', '&', '?', '#', '/', '\0', '\x80', '\x82', '\x9F', '\xAC', '\xBD', '\xBF',
      '\xC3', '\xE2', '\xED', '\xEF', '\xF0', '\xF4', '\xFF'));
}

}  // namespace rvf
