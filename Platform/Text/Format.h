// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// One argument of a format, of a kind that is known at run time. Made implicitly; it only refers
/// to texts, so it lives no longer than the call that it is made for.
///
/// Thread: any, a plain value. Lifetime: the call that it is made for: refers to texts, keeps
/// objects.
class RVF_EXPORT FormatArgument final {
 public:
  using Value =
      std::variant<long long, unsigned long long, double, std::string_view, id, const void*>;

  template <std::integral T>
  FormatArgument(T value) noexcept : value_(widened(value)) {}
  template <std::floating_point T>
  FormatArgument(T value) noexcept : value_(static_cast<double>(value)) {}
  FormatArgument(std::string_view text) noexcept : value_(text) {}
  FormatArgument(const std::string& text) noexcept : value_(std::string_view(text)) {}
  /// Null is an absent text.
  FormatArgument(const char* text) noexcept : value_(absentOr(text)) {}
  FormatArgument(const std::optional<std::string>& text) noexcept : value_(absentOr(text)) {}
  FormatArgument(std::nullptr_t) noexcept : value_(id()) {}
  template <std::derived_from<NSObject> T>
  FormatArgument(const Ref<T>& object) noexcept : value_(id(object)) {}
  FormatArgument(const void* address) noexcept : value_(address) {}

  /// The widest type of its kind. Texts are referred to only.
  const Value& value() const noexcept { return value_; }

 private:
  template <class T>
  static Value widened(T value) noexcept {
    if constexpr (std::is_signed_v<T> || std::same_as<T, bool>) {
      return static_cast<long long>(value);
    } else {
      return static_cast<unsigned long long>(value);
    }
  }
  static Value absentOr(const char* text) noexcept {
    return text ? Value(std::string_view(text)) : Value(id());
  }
  static Value absentOr(const std::optional<std::string>& text) noexcept {
    return text ? Value(std::string_view(*text)) : Value(id());
  }

  Value value_;
};

/// Fills a printf format whose arguments are only known at run time. Nothing depends on any locale:
/// the decimal point is "." and digits are ASCII.
///
///   %@                       anything         a description, text, a number in its shortest form
///   %s                       text, object     as %@
///   %d %i %u %x %X %o        integer          cast to the C type that is named: an int, or another
///                                             with hh h l ll q j z t
///   %c                       integer          the one byte
///   %e %f %g %a %E %F %G %A  number           as C does
///   %p                       object, pointer  "0x" and lower-case hexadecimal
///   %%                       nothing          "%"
///
/// Absent text and objects print "(null)". Flags `- + # 0` and blank, width, precision, "*" and
/// positions ("%2$@", "%*1$d") are C's and POSIX's; the flag "'" changes nothing. Width and
/// precision of text count UTF-16 code units, and a character that a precision cuts in half is left
/// out. Arguments too many are ignored.
///
/// Raises `NSInvalidArgumentException` for too few arguments, an argument of a kind that the
/// conversion does not take, `%n`, any other conversion, and a width or precision over 65535.
RVF_EXPORT std::string formatText(std::string_view format,
                                  std::span<const FormatArgument> arguments);

/// `formatText` with the arguments as they stand in the call: `stringWithFormat("%d of %@", 3,
/// name)`.
template <class... Arguments>
std::string stringWithFormat(std::string_view format, const Arguments&... arguments) {
  const std::array<FormatArgument, sizeof...(Arguments)> list{FormatArgument(arguments)...};
  return formatText(format, list);
}

}  // namespace rvf
