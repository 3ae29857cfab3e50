// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/PropertyListLeaf.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "Platform/Text/Text.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSDate.h"
#include "Platform/Values/NSNumber.h"

namespace rvf {
namespace {

std::string_view trimmed(std::string_view text) {
  return trimText(text, &isWhiteSpaceOrNewline);
}

template <class T, class... Form>
std::optional<T> wholeNumber(std::string_view text, Form... form) {
  T value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, form...);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

/// Digits at the front, exactly so many, followed by a separator.
std::optional<int> takeField(std::string_view& text, std::size_t digits, char separator) {
  if (text.size() <= digits || text[digits] != separator) return std::nullopt;
  const auto value = wholeNumber<unsigned short>(text.substr(0, digits));
  text.remove_prefix(digits + 1);
  return value;
}

constexpr unsigned kNoSextet = 64;

constexpr std::array<unsigned char, 256> makeSextets() {
  std::array<unsigned char, 256> table = {};
  for (auto& entry : table)
    entry = kNoSextet;
  constexpr std::string_view kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (std::size_t i = 0; i < kAlphabet.size(); ++i)
    table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<unsigned char>(i);
  return table;
}

}  // namespace

id integerOfText(std::string_view text) {
  text = trimmed(text);
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (isHexadecimal) text.remove_prefix(2);
  const auto magnitude = wholeNumber<std::uint64_t>(text, isHexadecimal ? 16 : 10);
  constexpr auto kGreatest = static_cast<std::uint64_t>(std::numeric_limits<long>::max());
  if (!magnitude || (isNegative && *magnitude > kGreatest + 1)) return nullptr;
  if (isNegative) return box(static_cast<long>(~*magnitude + 1));
  if (*magnitude > kGreatest) return box(static_cast<unsigned long>(*magnitude));
  return box(static_cast<long>(*magnitude));
}

id fractionOfText(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with("+") && !text.starts_with("+-")) text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || end != text.data() + text.size() || error != std::errc()) return nullptr;
  return box(value);
}

id dateOfText(std::string_view text) {
  text = trimmed(text);
  const auto year = takeField(text, 4, '-');
  const auto month = takeField(text, 2, '-');
  const auto day = takeField(text, 2, 'T');
  const auto hour = takeField(text, 2, ':');
  const auto minute = takeField(text, 2, ':');
  const auto second = takeField(text, 2, 'Z');
  if (!year || !month || !day || !hour || !minute || !second || !text.empty()) return nullptr;
  const std::chrono::year_month_day date(std::chrono::year(*year),
                                         std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day)));
  if (!date.ok() || *hour > 23 || *minute > 59 || *second > 59) return nullptr;
  const auto moment = std::chrono::sys_days(date) + std::chrono::hours(*hour) +
                      std::chrono::minutes(*minute) + std::chrono::seconds(*second);
  return NSDate::dateWithTimeIntervalSince1970(
      std::chrono::duration<double>(moment.time_since_epoch()).count());
}

id dataOfBase64(std::string_view text) {
  static constexpr std::array<unsigned char, 256> kSextets = makeSextets();
  std::vector<std::byte> bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t group = 0;
  std::size_t digits = 0;   // of the current group of four
  std::size_t padding = 0;  // "=" read so far
  for (const char c : text) {
    if (isWhiteSpaceOrNewline(static_cast<unsigned char>(c))) continue;
    const unsigned sextet = kSextets[static_cast<unsigned char>(c)];
    const bool isPadding = c == '=' && digits >= 2 && digits + padding < 4;
    if (!isPadding && (sextet == kNoSextet || padding > 0)) return nullptr;
    if (isPadding) {
      ++padding;
      continue;
    }
    group = group << 6 | sextet;
    if (++digits < 4) continue;
    for (const int shift : {16, 8, 0})
      bytes.push_back(static_cast<std::byte>(group >> shift & 0xFF));
    group = 0;
    digits = 0;
  }
  if (digits + padding != 0 && digits + padding != 4) return nullptr;
  if (digits >= 2) bytes.push_back(static_cast<std::byte>(group << (24 - 6 * digits) >> 16 & 0xFF));
  if (digits == 3) bytes.push_back(static_cast<std::byte>(group << 6 >> 8 & 0xFF));
  return std::make_shared<NSData>(std::move(bytes));
}

}  // namespace rvf
