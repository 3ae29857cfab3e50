// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/Format.h"

#include <fmt/format.h>
#include <fmt/printf.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "Platform/Runtime/NSException.h"
#include "Platform/Text/Text.h"
#include "Platform/Text/Utf8.h"

namespace rvf {
namespace {

/// More is a mistake in the format, and would only exhaust memory.
constexpr std::size_t kMaximumFieldSize = 65535;

constexpr std::string_view kFlags = "-+ #0'";
constexpr std::string_view kAbsentText = "(null)";

struct Flags {
  bool left = false;
  bool plus = false;
  bool blank = false;
  bool alternate = false;
  bool zero = false;
};

/// What stands between a "%" and its conversion letter, and the letter.
struct Specification {
  Flags flags;
  std::size_t width = 0;
  std::optional<std::size_t> precision;
  std::string_view length;  ///< "", "h", "hh", "l", "ll", "q", "j", "z", "t", "L"
  char conversion = 0;
  std::optional<std::size_t> position;  ///< from 1
};

constexpr bool isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

long long asInteger(unsigned long long bits, std::string_view length) noexcept {
  if (length == "hh") return static_cast<signed char>(bits);
  if (length == "h") return static_cast<short>(bits);
  if (length.empty()) return static_cast<int>(bits);
  return static_cast<long long>(bits);
}

unsigned long long asUnsigned(unsigned long long bits, std::string_view length) noexcept {
  if (length == "hh") return static_cast<unsigned char>(bits);
  if (length == "h") return static_cast<unsigned short>(bits);
  if (length.empty()) return static_cast<unsigned>(bits);
  return bits;
}

/// The first `limit` UTF-16 code units.
std::string_view cut(std::string_view text, std::size_t limit) noexcept {
  std::size_t end = 0;
  while (end < text.size()) {
    const Utf8Unit unit = firstUtf8Unit(text.substr(end));
    const std::size_t units = unit.codePoint > 0xFFFF ? 2 : 1;
    if (units > limit) break;
    limit -= units;
    end += unit.length;
  }
  return text.substr(0, end);
}

/// Where zeros go that fill a number up: behind its sign and "0x".
std::size_t startOfDigits(std::string_view number) noexcept {
  std::size_t start = number.find_first_of("+- ") == 0 ? 1 : 0;
  const std::string_view digits = number.substr(start);
  if (digits.starts_with("0x") || digits.starts_with("0X")) start += 2;
  return start;
}

/// A number without its field's width.
std::string floatingText(const Flags& flags, std::optional<std::size_t> precision, char conversion,
                         double value) {
  std::string form = "%";
  if (flags.plus) form += '+';
  if (flags.blank) form += ' ';
  if (flags.alternate) form += '#';
  if (precision) form += fmt::format(".{}", *precision);
  form += conversion;
  return fmt::sprintf(form, value);
}

/// `%#g` by its definition (C17, 7.21.6.1), because fmt's prints "100000.0" for "100000.".
std::string alternateGeneralText(const Flags& flags, std::optional<std::size_t> precision,
                                 bool isUpper, double value) {
  const auto significant = static_cast<int>(std::max<std::size_t>(precision.value_or(6), 1));
  const auto afterPoint = static_cast<std::size_t>(significant - 1);
  const std::string scientific = floatingText(flags, afterPoint, isUpper ? 'E' : 'e', value);
  const std::size_t mark = scientific.find(isUpper ? 'E' : 'e');
  const int exponent = std::atoi(scientific.c_str() + mark + 1);
  if (exponent < -4 || exponent >= significant) return scientific;
  return floatingText(flags, static_cast<std::size_t>(significant - 1 - exponent), 'f', value);
}

std::string floatingText(const Specification& specification, double value) {
  const char conversion = specification.conversion;
  const bool isGeneral = conversion == 'g' || conversion == 'G';
  if (specification.flags.alternate && isGeneral && std::isfinite(value))
    return alternateGeneralText(specification.flags, specification.precision, conversion == 'G',
                                value);
  return floatingText(specification.flags, specification.precision, conversion, value);
}

class Formatter {
 public:
  Formatter(std::string_view format, std::span<const FormatArgument> arguments)
      : format_(format), rest_(format), arguments_(arguments) {}

  std::string run() {
    for (;;) {
      const std::size_t literal = std::min(rest_.find('%'), rest_.size());
      result_ += rest_.substr(0, literal);
      rest_.remove_prefix(literal);
      if (rest_.empty()) return std::move(result_);
      rest_.remove_prefix(1);
      print(readSpecification());
    }
  }

 private:
  [[noreturn]] void raise(const std::string& problem) const {
    NSException::raise(NSInvalidArgumentException,
                       problem + " in the format \"" + std::string(format_) + "\"");
  }

  // Reading

  bool take(char c) noexcept {
    if (!rest_.starts_with(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  std::optional<std::size_t> readNumber() {
    if (rest_.empty() || !isDigit(rest_.front())) return std::nullopt;
    std::size_t number = 0;
    for (; !rest_.empty() && isDigit(rest_.front()); rest_.remove_prefix(1)) {
      number = number * 10 + static_cast<std::size_t>(rest_.front() - '0');
      if (number > kMaximumFieldSize) raise("Too large a number");
    }
    return number;
  }

  /// "2$", or nothing read.
  std::optional<std::size_t> readPosition() {
    const std::string_view start = rest_;
    const std::optional<std::size_t> position = readNumber();
    if (position && take('$')) return position;
    rest_ = start;
    return std::nullopt;
  }

  Flags readFlags() {
    Flags flags;
    for (; !rest_.empty() && kFlags.find(rest_.front()) != std::string_view::npos;
         rest_.remove_prefix(1)) {
      switch (rest_.front()) {
        case '-':
          flags.left = true;
          break;
        case '+':
          flags.plus = true;
          break;
        case ' ':
          flags.blank = true;
          break;
        case '#':
          flags.alternate = true;
          break;
        case '0':
          flags.zero = true;
          break;
        default:  // "'": the locale-free form groups no digits
          break;
      }
    }
    return flags;
  }

  void readWidth(Specification& specification) {
    if (!take('*')) {
      specification.width = readNumber().value_or(0);
      return;
    }
    const int width = readFieldSize();
    if (width < 0) specification.flags.left = true;
    specification.width = static_cast<std::size_t>(std::abs(width));
  }

  void readPrecision(Specification& specification) {
    if (!take('.')) return;
    if (!take('*')) {
      specification.precision = readNumber().value_or(0);
      return;
    }
    const int precision = readFieldSize();
    if (precision >= 0) specification.precision = static_cast<std::size_t>(precision);
  }

  /// The argument that a "*" stands for.
  int readFieldSize() {
    const auto size = static_cast<int>(asInteger(integerIn(argument(readPosition())), ""));
    if (size < -static_cast<int>(kMaximumFieldSize) || size > static_cast<int>(kMaximumFieldSize))
      raise("Too large a number");
    return size;
  }

  std::string_view readLength() {
    for (const std::string_view length : {"hh", "ll", "h", "l", "q", "j", "z", "t", "L"}) {
      if (rest_.starts_with(length)) {
        rest_.remove_prefix(length.size());
        return length;
      }
    }
    return "";
  }

  Specification readSpecification() {
    Specification specification;
    specification.position = readPosition();
    specification.flags = readFlags();
    readWidth(specification);
    readPrecision(specification);
    specification.length = readLength();
    if (rest_.empty()) raise("Missing conversion");
    specification.conversion = rest_.front();
    rest_.remove_prefix(1);
    return specification;
  }

  // Arguments

  const FormatArgument::Value& argument(std::optional<std::size_t> position) {
    const std::size_t index = position ? *position - 1 : next_++;
    if (index >= arguments_.size()) raise("Too few arguments");
    return arguments_[index].value();
  }

  /// The two's complement bits of an integer.
  unsigned long long integerIn(const FormatArgument::Value& value) const {
    if (const auto* number = std::get_if<long long>(&value))
      return static_cast<unsigned long long>(*number);
    if (const auto* number = std::get_if<unsigned long long>(&value)) return *number;
    raise("Argument that is no integer");
  }

  double floatingIn(const FormatArgument::Value& value) const {
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* number = std::get_if<long long>(&value)) return static_cast<double>(*number);
    if (const auto* number = std::get_if<unsigned long long>(&value))
      return static_cast<double>(*number);
    raise("Argument that is no number");
  }

  std::uintptr_t addressIn(const FormatArgument::Value& value) const {
    if (const auto* object = std::get_if<id>(&value))
      return reinterpret_cast<std::uintptr_t>(object->get());
    if (const auto* address = std::get_if<const void*>(&value))
      return reinterpret_cast<std::uintptr_t>(*address);
    raise("Argument that is no address");
  }

  // Printing

  void print(const Specification& specification) {
    switch (specification.conversion) {
      case '%':
        result_ += '%';
        return;
      case '@':
        return printText(specification, describe(argument(specification.position)));
      case 's':
        return printString(specification);
      case 'c':
        return printCharacter(specification);
      case 'd':
      case 'i':
        return printInteger(
            specification,
            asInteger(integerIn(argument(specification.position)), specification.length), 'd');
      case 'u':
      case 'x':
      case 'X':
      case 'o':
        return printInteger(
            specification,
            asUnsigned(integerIn(argument(specification.position)), specification.length),
            specification.conversion);
      case 'p':
        return pad(specification,
                   fmt::format("{:#x}", addressIn(argument(specification.position))));
      default:
        return printFloating(specification);
    }
  }

  std::string describe(const FormatArgument::Value& value) const {
    struct Description {
      std::string operator()(std::string_view text) const { return std::string(text); }
      std::string operator()(const id& object) const {
        return object ? object->description() : std::string(kAbsentText);
      }
      std::string operator()(const void* address) const { return fmt::format("{}", address); }
      std::string operator()(long long number) const { return fmt::format("{}", number); }
      std::string operator()(unsigned long long number) const { return fmt::format("{}", number); }
      std::string operator()(double number) const { return fmt::format("{}", number); }
    };
    return std::visit(Description(), value);
  }

  void printText(const Specification& specification, std::string_view text) {
    pad(specification, specification.precision ? cut(text, *specification.precision) : text);
  }

  void printString(const Specification& specification) {
    const FormatArgument::Value& value = argument(specification.position);
    if (!std::holds_alternative<std::string_view>(value) && !std::holds_alternative<id>(value))
      raise("Argument that is no text");
    printText(specification, describe(value));
  }

  void printCharacter(const Specification& specification) {
    const auto character =
        static_cast<char>(asInteger(integerIn(argument(specification.position)), "hh"));
    pad(specification, std::string_view(&character, 1));
  }

  template <class Integer>
  void printInteger(const Specification& specification, Integer value, char conversion) {
    const Flags& flags = specification.flags;
    const bool isSigned = conversion == 'd';
    const bool isNegative = isSigned && static_cast<long long>(value) < 0;
    const auto bits = static_cast<unsigned long long>(value);
    std::string digits = digitsOf(isNegative ? 0 - bits : bits, conversion);
    if (value == 0 && specification.precision == 0U) digits.clear();
    const std::size_t minimum = specification.precision.value_or(0);
    if (digits.size() < minimum) digits.insert(0, minimum - digits.size(), '0');
    if (flags.alternate && conversion == 'o' && !digits.starts_with('0')) digits.insert(0, 1, '0');
    if (flags.alternate && value != 0 && (conversion == 'x' || conversion == 'X'))
      digits.insert(0, {'0', conversion});
    if (isNegative) {
      digits.insert(0, 1, '-');
    } else if (isSigned && (flags.plus || flags.blank)) {
      digits.insert(0, 1, flags.plus ? '+' : ' ');
    }
    padNumber(specification, digits, !specification.precision);
  }

  static std::string digitsOf(unsigned long long value, char conversion) {
    switch (conversion) {
      case 'x':
        return fmt::format("{:x}", value);
      case 'X':
        return fmt::format("{:X}", value);
      case 'o':
        return fmt::format("{:o}", value);
      default:
        return fmt::format("{}", value);
    }
  }

  void printFloating(const Specification& specification) {
    constexpr std::string_view kConversions = "eEfFgGaA";
    if (kConversions.find(specification.conversion) == std::string_view::npos)
      raise(std::string("Conversion that is not known or refused, %") + specification.conversion);
    const double value = floatingIn(argument(specification.position));
    padNumber(specification, floatingText(specification, value), std::isfinite(value));
  }

  void padNumber(const Specification& specification, std::string number, bool mayFillWithZeros) {
    const Flags& flags = specification.flags;
    if (flags.zero && !flags.left && mayFillWithZeros && number.size() < specification.width)
      number.insert(startOfDigits(number), specification.width - number.size(), '0');
    pad(specification, number);
  }

  void pad(const Specification& specification, std::string_view text) {
    const std::size_t length = specification.width > 0 ? utf16Length(text) : 0;
    const std::size_t blanks = specification.width > length ? specification.width - length : 0;
    if (!specification.flags.left) result_.append(blanks, ' ');
    result_ += text;
    if (specification.flags.left) result_.append(blanks, ' ');
  }

  std::string_view format_;
  std::string_view rest_;
  std::span<const FormatArgument> arguments_;
  std::size_t next_ = 0;
  std::string result_;
};

}  // namespace

std::string formatText(std::string_view format, std::span<const FormatArgument> arguments) {
  return Formatter(format, arguments).run();
}

}  // namespace rvf
