// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "Platform/Runtime/Ref.h"
#include "Platform/Runtime/Selector.h"

namespace rvf {

class ClassRecord;

namespace detail {

template <class T>
struct IsObjectReference : std::false_type {};
template <class T>
struct IsObjectReference<std::shared_ptr<T>> : std::true_type {};

template <class T>
struct IsOptionalText : std::false_type {};
template <>
struct IsOptionalText<std::optional<std::string>> : std::true_type {};

template <class T>
struct IsBlock : std::false_type {};
template <class F>
struct IsBlock<std::function<F>> : std::true_type {};

}  // namespace detail

/// True for the C++ forms of an object argument: a `Ref`, or text, which stands for an `NSString`.
template <class T>
concept ObjectArgument = detail::IsObjectReference<T>::value || detail::IsOptionalText<T>::value ||
    std::same_as<T, std::string> || std::same_as<T, std::string_view>;

/// The one-letter integer encoding of a size: C++ `long` is 64 bits wide and encodes as `q`.
template <std::integral T>
constexpr char integerEncoding() {
  constexpr bool isSigned = std::is_signed_v<T>;
  switch (sizeof(T)) {
    case 1:
      return isSigned ? 'c' : 'C';
    case 2:
      return isSigned ? 's' : 'S';
    case 4:
      return isSigned ? 'i' : 'I';
    default:
      return isSigned ? 'q' : 'Q';
  }
}

/// The platform's type encoding of a C++ type: `c s S i I q Q f d`, `v`, `@` for objects and text,
/// `@?` for blocks, `#` for classes, `:` for selectors, `^type` for pointers, `{?=}` for other
/// records. A C++ `bool` is a flag and encodes as `c`.
template <class T>
std::string typeEncoding() {
  using Plain = std::remove_cvref_t<T>;
  if constexpr (std::is_void_v<Plain>) {
    return "v";
  } else if constexpr (std::same_as<Plain, bool>) {
    return "c";
  } else if constexpr (std::same_as<Plain, char>) {
    return "c";
  } else if constexpr (std::integral<Plain>) {
    return std::string(1, integerEncoding<Plain>());
  } else if constexpr (std::is_enum_v<Plain>) {
    return typeEncoding<std::underlying_type_t<Plain>>();
  } else if constexpr (std::same_as<Plain, float>) {
    return "f";
  } else if constexpr (std::same_as<Plain, double>) {
    return "d";
  } else if constexpr (std::same_as<Plain, SEL>) {
    return ":";
  } else if constexpr (std::same_as<Plain, ClassRecord*>) {
    return "#";
  } else if constexpr (std::same_as<Plain, const char*>) {
    return "*";
  } else if constexpr (ObjectArgument<Plain>) {
    return "@";
  } else if constexpr (detail::IsBlock<Plain>::value) {
    return "@?";
  } else if constexpr (std::is_pointer_v<Plain>) {
    return "^" + typeEncoding<std::remove_pointer_t<Plain>>();
  } else {
    return "{?=}";
  }
}

}  // namespace rvf
