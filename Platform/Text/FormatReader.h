// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace rvf {

/// More for a width, precision or position is a mistake in the format, and would only exhaust
/// memory.
inline constexpr std::size_t kMaximumFormatNumber = 65535;

struct FormatFlags {
  bool left = false;
  bool plus = false;
  bool blank = false;
  bool alternate = false;
  bool zero = false;
};

/// A width or precision: a number, or the argument that a "*" stands for.
struct FormatFieldSize {
  std::size_t number = 0;
  bool isArgument = false;
  std::optional<std::size_t> position;  ///< of the argument, from 1; else it is the next one
};

/// What a format holds from a "%" to its conversion letter.
struct FormatSpecification {
  std::optional<std::size_t> position;  ///< of the argument, from 1; else it is the next one
  FormatFlags flags;
  FormatFieldSize width;
  std::optional<FormatFieldSize> precision;
  std::string_view length;  ///< "", "h", "hh", "l", "ll", "q", "j", "z", "t", "L"
  char conversion = 0;
};

/// Reads a printf format from left to right.
class FormatReader final {
 public:
  explicit FormatReader(std::string_view format) noexcept : format_(format), rest_(format) {}

  bool atEnd() const noexcept { return rest_.empty(); }
  /// What stands before the next "%", or all that is left; maybe nothing.
  std::string_view readLiteral() noexcept;
  /// What stands from the "%" here to its conversion letter, known or not. Raises if it is cut off
  /// or holds too large a number.
  FormatSpecification readSpecification();

  /// Raises `NSInvalidArgumentException` for a problem with this format.
  [[noreturn]] void raise(std::string_view problem) const;

 private:
  bool take(char c) noexcept;
  std::optional<std::size_t> readNumber();
  std::optional<std::size_t> readPosition();
  FormatFlags readFlags() noexcept;
  FormatFieldSize readFieldSize();
  std::string_view readLength() noexcept;

  std::string_view format_;
  std::string_view rest_;
};

}  // namespace rvf
