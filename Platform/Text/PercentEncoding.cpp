// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/PercentEncoding.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "Platform/Text/Text.h"

namespace rvf {
namespace {

constexpr auto kIsUnreserved = [] {
  std::array<bool, 256> table{};
  constexpr std::string_view kUnreserved =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.~";
  for (const char c : kUnreserved)
    table[static_cast<unsigned char>(c)] = true;
  return table;
}();

/// Without a branch a byte, which makes it a fraction of the whole check.
bool isASCII(std::string_view text) noexcept {
  unsigned char all = 0;
  for (const char c : text)
    all |= static_cast<unsigned char>(c);
  return all < 0x80;
}

constexpr bool isUnreserved(char c) noexcept {
  return kIsUnreserved[static_cast<unsigned char>(c)];
}

/// 0 to 15; -1 for a byte that is no hexadecimal digit.
constexpr auto kHexadecimalValues = [] {
  std::array<std::int8_t, 256> table{};
  table.fill(-1);
  for (std::int8_t i = 0; i < 10; ++i)
    table[static_cast<std::size_t>('0' + i)] = i;
  for (std::int8_t i = 10; i < 16; ++i) {
    table[static_cast<std::size_t>('A' + i - 10)] = i;
    table[static_cast<std::size_t>('a' + i - 10)] = i;
  }
  return table;
}();

constexpr int hexadecimalValue(char c) noexcept {
  return kHexadecimalValues[static_cast<unsigned char>(c)];
}

/// The byte of the escape that a text begins with; -1 if it is not whole.
constexpr int escapedByte(std::string_view text) noexcept {
  if (text.size() < 3) return -1;
  const int high = hexadecimalValue(text[1]);
  const int low = hexadecimalValue(text[2]);
  return high < 0 || low < 0 ? -1 : high << 4 | low;
}

}  // namespace

std::optional<std::string> addPercentEscapes(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  if (!isASCII(text) && !isValidUtf8(text)) return std::nullopt;
  const auto plain = static_cast<std::size_t>(std::ranges::count_if(text, isUnreserved));
  std::string result(plain + 3 * (text.size() - plain), '%');
  char* out = result.data();
  for (const char c : text) {
    if (isUnreserved(c)) {
      *out++ = c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    out[1] = kDigits[byte >> 4];
    out[2] = kDigits[byte & 15];
    out += 3;
  }
  return result;
}

std::optional<std::string> removePercentEscapes(std::string_view text) {
  std::string result(text.size(), '\0');
  char* out = result.data();
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      *out++ = text[i];
      continue;
    }
    const int byte = escapedByte(text.substr(i));
    if (byte < 0) return std::nullopt;
    *out++ = static_cast<char>(byte);
    i += 2;
  }
  result.resize(static_cast<std::size_t>(out - result.data()));
  if (!isASCII(result) && !isValidUtf8(result)) return std::nullopt;
  return result;
}

bool hasOnlyWholePercentEscapes(std::string_view text) noexcept {
  for (std::size_t at = text.find('%'); at != std::string_view::npos; at = text.find('%', at + 1))
    if (escapedByte(text.substr(at)) < 0) return false;
  return true;
}

}  // namespace rvf
