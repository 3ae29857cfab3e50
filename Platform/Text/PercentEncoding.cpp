// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/PercentEncoding.h"

#include <algorithm>
#include <array>

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

constexpr bool isUnreserved(char c) noexcept {
  return kIsUnreserved[static_cast<unsigned char>(c)];
}

/// 0 to 15; -1 for another character.
constexpr int hexadecimalValue(char c) noexcept {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
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
  if (!isValidUtf8(text)) return std::nullopt;
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
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('%'), text.size());
    result.append(text, 0, length);
    text.remove_prefix(length);
    if (text.empty()) break;
    const int byte = escapedByte(text);
    if (byte < 0) return std::nullopt;
    result += static_cast<char>(byte);
    text.remove_prefix(3);
  }
  if (!isValidUtf8(result)) return std::nullopt;
  return result;
}

bool hasOnlyWholePercentEscapes(std::string_view text) noexcept {
  for (std::size_t at = text.find('%'); at != std::string_view::npos; at = text.find('%', at + 1))
    if (escapedByte(text.substr(at)) < 0) return false;
  return true;
}

}  // namespace rvf
