// SPDX-License-Identifier: Apache-2.0
#include "Platform/Predicates/PredicateLexer.h"

#include <charconv>
#include <cstdint>
#include <system_error>
#include <type_traits>
#include <utility>
#include <variant>

#include "Platform/Predicates/OperatorNames.h"
#include "Platform/Predicates/PredicateFormatException.h"
#include "Platform/Text/Utf8.h"
#include "Platform/Values/NSNumber.h"
#include "Platform/Values/NSString.h"

namespace rvf {
namespace {

using Kind = PredicateToken::Kind;

constexpr bool isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

constexpr bool isSign(char c) noexcept {
  return c == '-' || c == '+';
}

/// Letters of every script count; what the language itself uses does not.
bool isNameCharacter(const Utf8Unit& unit) noexcept {
  const char32_t c = unit.codePoint;
  if (c < 0x80)
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
  return unit.wellFormed && !isWhiteSpaceOrNewline(c);
}

/// The value of a number's text; absent if it is out of range.
id numberValue(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  const char* end = text.data() + text.size();
  if (text.find_first_of(".eE") == std::string_view::npos) {
    std::int64_t number = 0;
    if (std::from_chars(text.data(), end, number).ec == std::errc())
      return number == 0 && text.starts_with('-') ? box(-0.0) : box(number);  // prints as "-0"
    std::uint64_t large = 0;
    if (std::from_chars(text.data(), end, large).ec == std::errc()) return box(large);
  }
  double fraction = 0;
  return std::from_chars(text.data(), end, fraction).ec == std::errc() ? box(fraction) : nullptr;
}

/// An argument as the object that it stands for; a plain address stands for none.
struct ObjectOfArgument {
  std::optional<id> operator()(std::string_view text) const { return box(text); }
  std::optional<id> operator()(const id& object) const { return object; }
  std::optional<id> operator()(const void*) const { return std::nullopt; }
  template <class Number>
  requires std::is_arithmetic_v<Number> std::optional<id>
  operator()(Number number) const { return box(number); }
};

constexpr std::string_view kIntegerConversions = "diuDUxXoc";
constexpr std::string_view kNumberConversions = "eEfFgGaA";

}  // namespace

void PredicateLexer::raise(std::size_t start, std::string_view problem) const {
  throw PredicateFormatException(format_, start, problem);
}

char PredicateLexer::peek(std::size_t offset) const noexcept {
  return at_ + offset < format_.size() ? format_[at_ + offset] : '\0';
}

void PredicateLexer::skipBlanks() noexcept {
  at_ = format_.size() - withoutPrefix(format_.substr(at_), &isWhiteSpaceOrNewline).size();
}

PredicateToken PredicateLexer::next() {
  skipBlanks();
  if (isAtEnd()) return {Kind::end, at_, {}, {}, nullptr};
  const char c = peek();
  if (c == '"' || c == '\'') return readQuoted();
  if (c == '%') return readArgument();
  if (c == '$') return readVariable();
  if (startsNumber()) return readNumber();
  return nameLength() > 0 ? readWord() : readSign();
}

unsigned PredicateLexer::takeOptions() {
  const std::size_t before = at_;
  skipBlanks();
  if (peek() != '[') {
    at_ = before;
    return 0;
  }
  unsigned options = 0;
  for (++at_; peek() != ']'; ++at_) {
    const unsigned option = optionOfLetter(peek());
    if (option == 0) raise(at_, "options are the letters c, d, n and l");
    options |= option;
  }
  ++at_;
  if (options == 0) raise(at_ - 1, "options are missing between the brackets");
  return options;
}

bool PredicateLexer::startsNumber() const noexcept {
  const std::size_t sign = isSign(peek()) ? 1 : 0;
  return isDigit(peek(sign)) || (peek(sign) == '.' && isDigit(peek(sign + 1)));
}

/// The bytes of the name that stands here.
std::size_t PredicateLexer::nameLength() const noexcept {
  std::string_view rest = format_.substr(at_);
  while (!rest.empty()) {
    const Utf8Unit unit = firstUtf8Unit(rest);
    if (!isNameCharacter(unit)) break;
    rest.remove_prefix(unit.length);
  }
  return format_.size() - at_ - rest.size();
}

PredicateToken PredicateLexer::readQuoted() {
  const std::size_t start = at_;
  const char quote = format_[at_++];
  std::string text;
  while (peek() != quote || isAtEnd()) {
    if (isAtEnd()) raise(start, "the text in quotes does not end");
    if (peek() == '\\') {
      readEscape(text);
    } else {
      text += format_[at_++];
    }
  }
  ++at_;
  return {Kind::value, start, {}, {}, box(text)};
}

void PredicateLexer::readEscape(std::string& text) {
  constexpr std::string_view kEscaped = "\"'\\nrt";
  constexpr std::string_view kMeanings = "\"'\\\n\r\t";
  const std::size_t index =
      at_ + 1 < format_.size() ? kEscaped.find(peek(1)) : std::string_view::npos;
  if (index == std::string_view::npos) {
    text += format_[at_++];
    return;
  }
  text += kMeanings[index];
  at_ += 2;
}

void PredicateLexer::skipDigits() noexcept {
  while (isDigit(peek()))
    ++at_;
}

PredicateToken PredicateLexer::readNumber() {
  const std::size_t start = at_;
  if (isSign(peek())) ++at_;
  skipDigits();
  if (peek() == '.') ++at_;
  skipDigits();
  if ((peek() == 'e' || peek() == 'E') &&
      (isDigit(peek(1)) || (isSign(peek(1)) && isDigit(peek(2))))) {
    at_ += 2;
    skipDigits();
  }
  if (nameLength() > 0) raise(at_, "letters follow a number");
  id number = numberValue(since(start));
  if (!number) raise(start, "the number is out of range");
  return {Kind::value, start, {}, {}, std::move(number)};
}

/// Names joined by points.
PredicateToken PredicateLexer::readWord() {
  const std::size_t start = at_;
  at_ += nameLength();
  while (peek() == '.') {
    ++at_;
    const std::size_t length = nameLength();
    if (length == 0) raise(at_, "a key is missing behind the point");
    at_ += length;
  }
  return {Kind::word, start, since(start), {}, nullptr};
}

PredicateToken PredicateLexer::readVariable() {
  const std::size_t start = at_++;
  const std::size_t length = nameLength();
  if (length == 0) raise(at_, "a name is missing behind the $");
  at_ += length;
  return {Kind::variable, start, since(start + 1), {}, nullptr};
}

PredicateToken PredicateLexer::readSign() {
  constexpr std::string_view kSigns[] = {"==", "=<", "=>", "<=", "<>", ">=", "!=", "&&", "||",
                                         "=",  "<",  ">",  "!",  "(",  ")",  "{",  "}",  ","};
  const std::size_t start = at_;
  for (const std::string_view sign : kSigns) {
    if (!format_.substr(at_).starts_with(sign)) continue;
    at_ += sign.size();
    return {Kind::sign, start, sign, {}, nullptr};
  }
  raise(start, "this character has no meaning here");
}

PredicateToken PredicateLexer::readArgument() {
  const std::size_t start = at_++;
  while (std::string_view("hlqjzt").find(peek()) != std::string_view::npos && !isAtEnd())
    ++at_;
  const char conversion = peek();
  ++at_;
  if (nextArgument_ >= arguments_.size()) raise(start, "an argument is missing");
  const FormatArgument& argument = arguments_[nextArgument_++];
  if (conversion == 'K') return {Kind::keyPath, start, {}, keyPathFor(argument, start), nullptr};
  return {Kind::value, start, {}, {}, argumentFor(conversion, argument, start)};
}

id PredicateLexer::argumentFor(char conversion, const FormatArgument& argument,
                               std::size_t start) const {
  const bool isInteger = kIntegerConversions.find(conversion) != std::string_view::npos;
  const bool isNumber = isInteger || kNumberConversions.find(conversion) != std::string_view::npos;
  if (!isNumber && conversion != '@' && conversion != 's')
    raise(start, "this conversion is not known");
  const std::optional<id> value = std::visit(ObjectOfArgument(), argument.value());
  if (!value) raise(start, "an address is no value");
  const auto* number = dynamic_cast<const NSNumber*>(value->get());
  if (isNumber && !number) raise(start, "the argument is no number");
  const bool isFraction = std::holds_alternative<double>(argument.value());
  if (isInteger && isFraction) raise(start, "the argument is no integer");
  if (conversion == 's' && !dynamic_cast<const NSString*>(value->get()))
    raise(start, "the argument is no text");
  return *value;
}

std::string PredicateLexer::keyPathFor(const FormatArgument& argument, std::size_t start) const {
  const std::optional<id> value = std::visit(ObjectOfArgument(), argument.value());
  const auto* text = value ? dynamic_cast<const NSString*>(value->get()) : nullptr;
  if (!text || text->string().empty()) raise(start, "the argument is no key path");
  return text->string();
}

}  // namespace rvf
