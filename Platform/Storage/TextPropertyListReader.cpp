// SPDX-License-Identifier: Apache-2.0
#include "Platform/Storage/TextPropertyListReader.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "Platform/Storage/PropertyListError.h"
#include "Platform/Text/Text.h"
#include "Platform/Text/Utf16.h"
#include "Platform/Values/NSArray.h"
#include "Platform/Values/NSData.h"
#include "Platform/Values/NSDictionary.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

bool isBareCharacter(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("_$/:.-").find(c) != std::string_view::npos;
}

std::optional<unsigned> digitOf(char c, unsigned base) noexcept {
  unsigned digit = base;
  if (c >= '0' && c <= '9') digit = static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') digit = static_cast<unsigned>(c - 'a') + 10;
  if (c >= 'A' && c <= 'F') digit = static_cast<unsigned>(c - 'A') + 10;
  return digit < base ? std::optional(digit) : std::nullopt;
}

class Reader final {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  id read() {
    id root = readValue(0);
    if (!root || !skip()) return nullptr;
    return rest_.empty() ? root : fail("something behind the root value");
  }
  const std::string& problem() const noexcept { return problem_; }

 private:
  bool refuse(std::string_view problem) {
    if (problem_.empty()) problem_ = problem;
    return false;
  }
  std::nullptr_t fail(std::string_view problem) {
    refuse(problem);
    return nullptr;
  }

  /// Passes over white space and comments; false if a comment does not end.
  bool skip() {
    while (true) {
      rest_ = withoutPrefix(rest_, &isWhiteSpaceOrNewline);
      if (rest_.starts_with("//")) {
        rest_.remove_prefix(std::min(rest_.find_first_of("\r\n"), rest_.size()));
      } else if (rest_.starts_with("/*")) {
        const std::size_t end = rest_.find("*/", 2);
        if (end == std::string_view::npos) return refuse("a comment without end");
        rest_.remove_prefix(end + 2);
      } else {
        return true;
      }
    }
  }

  /// Whether this character comes next; takes it.
  bool take(char c) {
    if (!skip() || !rest_.starts_with(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  id readValue(std::size_t depth) {
    if (!skip()) return nullptr;
    if (rest_.empty()) return fail("a value is missing");
    const bool isCollection = rest_[0] == '{' || rest_[0] == '(';
    if (isCollection && depth >= kDeepestPropertyList) return fail("nested too deep");
    if (take('{')) return readDictionary(depth);
    if (take('(')) return readArray(depth);
    if (take('<')) return readData();
    const auto text = readText();
    return text ? box(*text) : nullptr;
  }

  id readDictionary(std::size_t depth) {
    NSDictionary::Entries entries;
    while (!take('}')) {
      const auto key = readText();
      if (!key) return nullptr;
      if (!take('=')) return fail("no \"=\" behind a key");
      id value = readValue(depth + 1);
      if (!value) return nullptr;
      if (!take(';')) return fail("no \";\" behind an entry");
      entries.insert_or_assign(box(*key), std::move(value));
    }
    return std::make_shared<NSDictionary>(std::move(entries));
  }

  id readArray(std::size_t depth) {
    std::vector<id> objects;
    while (!take(')')) {
      id object = readValue(depth + 1);
      if (!object) return nullptr;
      objects.push_back(std::move(object));
      if (take(',')) continue;
      if (!take(')')) return fail("no \",\" behind an element");
      break;
    }
    return NSArray::arrayWithObjects(std::move(objects));
  }

  id readData() {
    std::vector<std::byte> bytes;
    while (!take('>')) {
      const auto high = rest_.empty() ? std::nullopt : digitOf(rest_[0], 16);
      const auto low = rest_.size() < 2 ? std::nullopt : digitOf(rest_[1], 16);
      if (!high || !low) return fail("no pair of hexadecimal digits");
      bytes.push_back(static_cast<std::byte>(*high << 4U | *low));
      rest_.remove_prefix(2);
    }
    return std::make_shared<NSData>(std::move(bytes));
  }

  std::optional<std::string> readText() {
    if (!skip()) return std::nullopt;
    if (rest_.starts_with('"') || rest_.starts_with('\'')) return readQuotedText();
    const auto end = std::ranges::find_if_not(rest_, &isBareCharacter);
    const auto length = static_cast<std::size_t>(end - rest_.begin());
    if (length == 0) {
      fail("a character that must be quoted");
      return std::nullopt;
    }
    std::string text(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return text;
  }

  std::optional<std::string> readQuotedText() {
    const char quote = rest_[0];
    rest_.remove_prefix(1);
    std::string text;
    while (!rest_.empty()) {
      const char c = rest_[0];
      rest_.remove_prefix(1);
      if (c == quote) return text;
      if (c != '\\') {
        text += c;
      } else if (!readEscape(text)) {
        return std::nullopt;
      }
    }
    fail("a quoted text without end");
    return std::nullopt;
  }

  bool readEscape(std::string& text) {
    if (rest_.empty()) return refuse("a quoted text without end");
    constexpr std::string_view kLetters = "abfnrtv";
    constexpr std::string_view kControls = "\a\b\f\n\r\t\v";
    if (digitOf(rest_[0], 8)) {
      appendUtf8(text, *readDigits(8, 1, 3));
      return true;
    }
    const char c = rest_[0];
    rest_.remove_prefix(1);
    if (c == 'U') return readHalves(text);
    const std::size_t letter = kLetters.find(c);
    text += letter == std::string_view::npos ? c : kControls[letter];
    return true;
  }

  /// A character of one or two UTF-16 units, the second one in an escape of its own.
  bool readHalves(std::string& text) {
    const auto unit = readDigits(16, 4, 4);
    if (!unit) return refuse("no four hexadecimal digits behind \\U");
    char32_t c = *unit;
    if (c >= 0xD800 && c < 0xDC00) {
      const bool hasSecond = rest_.starts_with("\\U");
      if (hasSecond) rest_.remove_prefix(2);
      const auto low = hasSecond ? readDigits(16, 4, 4) : std::nullopt;
      if (!low || *low < 0xDC00 || *low > 0xDFFF) return refuse("half a character");
      c = 0x10000 + ((c & 0x3FF) << 10) + (*low & 0x3FF);
    } else if (c >= 0xDC00 && c < 0xE000) {
      return refuse("half a character");
    }
    appendUtf8(text, c);
    return true;
  }

  std::optional<char32_t> readDigits(unsigned base, std::size_t least, std::size_t most) {
    char32_t value = 0;
    std::size_t count = 0;
    while (count < most && !rest_.empty()) {
      const auto digit = digitOf(rest_[0], base);
      if (!digit) break;
      value = value * base + *digit;
      rest_.remove_prefix(1);
      ++count;
    }
    return count < least ? std::nullopt : std::optional(value);
  }

  std::string_view rest_;
  std::string problem_;
};

}  // namespace

id readTextPropertyList(std::string_view text, std::string& problem) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  if (!isValidUtf8(text)) {
    problem = "not UTF-8";
    return nullptr;
  }
  Reader reader(text);
  id root = reader.read();
  if (!root) problem = reader.problem();
  return root;
}

}  // namespace rvf
