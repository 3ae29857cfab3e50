// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/FormatReader.h"

#include <algorithm>

#include "Platform/Runtime/NSException.h"

namespace rvf {
namespace {

constexpr bool isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

/// Answers whether the character is a flag. "'" is one that changes nothing, because the
/// locale-free form groups no digits.
bool addFlag(FormatFlags& flags, char c) noexcept {
  switch (c) {
    case '-':
      return flags.left = true;
    case '+':
      return flags.plus = true;
    case ' ':
      return flags.blank = true;
    case '#':
      return flags.alternate = true;
    case '0':
      return flags.zero = true;
    default:
      return c == '\'';
  }
}

}  // namespace

std::string_view FormatReader::readLiteral() noexcept {
  const std::size_t length = std::min(rest_.find('%'), rest_.size());
  const std::string_view literal = rest_.substr(0, length);
  rest_.remove_prefix(length);
  return literal;
}

FormatSpecification FormatReader::readSpecification() {
  FormatSpecification specification;
  take('%');
  specification.position = readPosition();
  specification.flags = readFlags();
  specification.width = readFieldSize();
  if (take('.')) specification.precision = readFieldSize();
  specification.length = readLength();
  if (atEnd()) raise("Missing conversion");
  specification.conversion = rest_.front();
  rest_.remove_prefix(1);
  return specification;
}

void FormatReader::raise(std::string_view problem) const {
  NSException::raise(NSInvalidArgumentException,
                     std::string(problem) + " in the format \"" + std::string(format_) + "\"");
}

bool FormatReader::take(char c) noexcept {
  if (!rest_.starts_with(c)) return false;
  rest_.remove_prefix(1);
  return true;
}

std::optional<std::size_t> FormatReader::readNumber() {
  if (atEnd() || !isDigit(rest_.front())) return std::nullopt;
  std::size_t number = 0;
  for (; !atEnd() && isDigit(rest_.front()); rest_.remove_prefix(1)) {
    number = number * 10 + static_cast<std::size_t>(rest_.front() - '0');
    if (number > kMaximumFormatNumber) raise("Too large a number");
  }
  return number;
}

/// "2$"; absent, and nothing read, if that is not what stands here.
std::optional<std::size_t> FormatReader::readPosition() {
  const std::string_view start = rest_;
  const std::optional<std::size_t> position = readNumber();
  if (position && take('$')) return position;
  rest_ = start;
  return std::nullopt;
}

FormatFlags FormatReader::readFlags() noexcept {
  FormatFlags flags;
  while (!atEnd() && addFlag(flags, rest_.front()))
    rest_.remove_prefix(1);
  return flags;
}

FormatFieldSize FormatReader::readFieldSize() {
  FormatFieldSize size;
  size.isArgument = take('*');
  if (size.isArgument) {
    size.position = readPosition();
  } else {
    size.number = readNumber().value_or(0);
  }
  return size;
}

std::string_view FormatReader::readLength() noexcept {
  for (const std::string_view length : {"hh", "ll", "h", "l", "q", "j", "z", "t", "L"}) {
    if (rest_.starts_with(length)) {
      rest_.remove_prefix(length.size());
      return length;
    }
  }
  return "";
}

}  // namespace rvf
