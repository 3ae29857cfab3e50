// SPDX-License-Identifier: Apache-2.0
#include "Platform/Text/Format.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "Platform/Text/FormatReader.h"
#include "Platform/Text/NumberText.h"
#include "Platform/Text/Text.h"
#include "Platform/Text/Utf8.h"

namespace rvf {
namespace {

/// What any argument is for `%@`.
struct Description {
  std::string operator()(std::string_view text) const { return std::string(text); }
  std::string operator()(const id& object) const {
    return object ? object->description() : "(null)";
  }
  std::string operator()(const void* address) const { return fmt::format("{}", address); }
  std::string operator()(long long number) const { return fmt::format("{}", number); }
  std::string operator()(unsigned long long number) const { return fmt::format("{}", number); }
  std::string operator()(double number) const { return fmt::format("{}", number); }
};

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

/// A specification once the arguments that it names are known.
struct Field {
  FormatFlags flags;
  std::size_t width = 0;
  std::optional<std::size_t> precision;
  std::string_view length;
  char conversion = 0;
};

class Formatter {
 public:
  Formatter(std::string_view format, std::span<const FormatArgument> arguments)
      : reader_(format), arguments_(arguments) {}

  std::string run() {
    for (;;) {
      result_ += reader_.readLiteral();
      if (reader_.atEnd()) return std::move(result_);
      print(reader_.readSpecification());
    }
  }

 private:
  const FormatArgument::Value& argument(std::optional<std::size_t> position) {
    const std::size_t index = position ? *position - 1 : next_++;
    if (index >= arguments_.size()) reader_.raise("Too few arguments");
    return arguments_[index].value();
  }

  /// The two's complement bits of an integer.
  unsigned long long integerIn(const FormatArgument::Value& value) const {
    if (const auto* number = std::get_if<long long>(&value))
      return static_cast<unsigned long long>(*number);
    if (const auto* number = std::get_if<unsigned long long>(&value)) return *number;
    reader_.raise("Argument that is no integer");
  }

  double numberIn(const FormatArgument::Value& value) const {
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* number = std::get_if<long long>(&value)) return static_cast<double>(*number);
    if (const auto* number = std::get_if<unsigned long long>(&value))
      return static_cast<double>(*number);
    reader_.raise("Argument that is no number");
  }

  std::uintptr_t addressIn(const FormatArgument::Value& value) const {
    if (const auto* object = std::get_if<id>(&value))
      return reinterpret_cast<std::uintptr_t>(object->get());
    if (const auto* address = std::get_if<const void*>(&value))
      return reinterpret_cast<std::uintptr_t>(*address);
    reader_.raise("Argument that is no address");
  }

  std::string textIn(const FormatArgument::Value& value) const {
    if (!std::holds_alternative<std::string_view>(value) && !std::holds_alternative<id>(value))
      reader_.raise("Argument that is no text");
    return std::visit(Description(), value);
  }

  /// Negative from an argument only.
  int sizeOf(const FormatFieldSize& size) {
    if (!size.isArgument) return static_cast<int>(size.number);
    constexpr auto kLimit = static_cast<int>(kMaximumFormatNumber);
    const auto number = static_cast<int>(integerIn(argument(size.position)));
    if (number < -kLimit || number > kLimit) reader_.raise("Too large a number");
    return number;
  }

  Field fieldOf(const FormatSpecification& specification) {
    Field field{specification.flags, 0, std::nullopt, specification.length,
                specification.conversion};
    const int width = sizeOf(specification.width);
    if (width < 0) field.flags.left = true;
    field.width = static_cast<std::size_t>(std::abs(width));
    const int precision = specification.precision ? sizeOf(*specification.precision) : -1;
    if (precision >= 0) field.precision = static_cast<std::size_t>(precision);
    return field;
  }

  void print(const FormatSpecification& specification) {
    constexpr std::string_view kConversions = "@sdiuxXocpeEfFgGaA";
    if (specification.conversion == '%') {
      result_ += '%';
      return;
    }
    if (kConversions.find(specification.conversion) == std::string_view::npos)
      reader_.raise(std::string("Conversion that is not known or refused, %") +
                    specification.conversion);
    const Field field = fieldOf(specification);
    print(field, argument(specification.position));
  }

  void print(const Field& field, const FormatArgument::Value& value) {
    switch (field.conversion) {
      case '@':
        return printText(field, std::visit(Description(), value));
      case 's':
        return printText(field, textIn(value));
      case 'c':
        return pad(field, std::string(1, static_cast<char>(integerIn(value))));
      case 'p':
        return pad(field, fmt::format("{:#x}", addressIn(value)));
      case 'd':
      case 'i':
        return printNumber(field,
                           signedText(field.flags, field.precision, field.length, integerIn(value)),
                           !field.precision);
      case 'u':
      case 'x':
      case 'X':
      case 'o':
        return printNumber(field,
                           unsignedText(field.flags, field.precision, field.length,
                                        field.conversion, integerIn(value)),
                           !field.precision);
      default:
        return printFloating(field, numberIn(value));
    }
  }

  void printText(const Field& field, std::string_view text) {
    pad(field, field.precision ? cut(text, *field.precision) : text);
  }

  void printFloating(const Field& field, double value) {
    printNumber(field, floatingText(field.flags, field.precision, field.conversion, value),
                std::isfinite(value));
  }

  void printNumber(const Field& field, std::string number, bool mayFillWithZeros) {
    const bool fills = field.flags.zero && !field.flags.left && mayFillWithZeros;
    if (fills && number.size() < field.width)
      number.insert(startOfDigits(number), field.width - number.size(), '0');
    pad(field, number);
  }

  void pad(const Field& field, std::string_view text) {
    const std::size_t length = field.width > 0 ? utf16Length(text) : 0;
    const std::size_t blanks = field.width > length ? field.width - length : 0;
    if (!field.flags.left) result_.append(blanks, ' ');
    result_ += text;
    if (field.flags.left) result_.append(blanks, ' ');
  }

  FormatReader reader_;
  std::span<const FormatArgument> arguments_;
  std::size_t next_ = 0;
  std::string result_;
};

}  // namespace

std::string formatText(std::string_view format, std::span<const FormatArgument> arguments) {
  return Formatter(format, arguments).run();
}

}  // namespace rvf
