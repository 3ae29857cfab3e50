// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
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
struct IsWeakReference : std::false_type {};
template <class T>
struct IsWeakReference<std::weak_ptr<T>> : std::true_type {};

template <class T>
struct IsBlock : std::false_type {};
template <class F>
struct IsBlock<std::function<F>> : std::true_type {};

}  // namespace detail

/// Text in its typed forms; it stands for an `NSString`.
template <class T>
concept TextArgument = std::same_as<T, std::string> || std::same_as<T, std::string_view> ||
    std::same_as<T, std::optional<std::string>>;

/// True for the C++ forms of an object: a `Ref`, a weak reference, or text.
template <class T>
concept ObjectArgument =
    detail::IsObjectReference<T>::value || detail::IsWeakReference<T>::value || TextArgument<T>;

/// The integer type that stands for every integer, flag and enumeration of one encoding. A flag
/// is a signed character; plain `char` is one too, whatever its sign on this machine.
///
/// Thread: any; it only names a type. Lifetime: without instances.
template <class T>
struct EncodedInteger {
  template <class Signed, class Unsigned>
  using Chosen = std::conditional_t<std::is_signed_v<T>, Signed, Unsigned>;
  using Type = std::conditional_t<
      std::is_same_v<T, bool> || std::is_same_v<T, char>, std::int8_t,
      std::conditional_t<
          sizeof(T) == 1, Chosen<std::int8_t, std::uint8_t>,
          std::conditional_t<sizeof(T) == 2, Chosen<std::int16_t, std::uint16_t>,
                             std::conditional_t<sizeof(T) == 4, Chosen<std::int32_t, std::uint32_t>,
                                                Chosen<std::int64_t, std::uint64_t>>>>>;
};
template <class T>
requires std::is_enum_v<T>
struct EncodedInteger<T> : EncodedInteger<std::underlying_type_t<T>> {
};

/// The letter of an integer type: C++ `long` is 64 bits wide and encodes as `q`.
template <std::integral T>
constexpr char integerEncoding() {
  constexpr std::string_view kLetters = std::is_signed_v<T> ? "csiq" : "CSIQ";
  return kLetters[sizeof(T) == 1 ? 0 : sizeof(T) == 2 ? 1 : sizeof(T) == 4 ? 2 : 3];
}

/// The encoding of a record type. A record that is boxed, or told apart by its encoding, gives its
/// own beside its definition:
///
///     template <>
///     inline constexpr std::string_view kRecordEncoding<RVFGridPoint> = "{RVFGridPoint=qq}";
template <class T>
inline constexpr std::string_view kRecordEncoding = "{?=}";

/// The platform's type encoding of a C++ type: `c s S i I q Q f d`, `v`, `@` for objects and text,
/// `@?` for blocks, `#` for classes, `:` for selectors, `*` for C strings, `^type` for pointers,
/// `^?` for pointers to functions, `kRecordEncoding` for other records. A C++ `bool` is a flag and
/// encodes as `c`, an enumeration as its integer type.
template <class T>
std::string typeEncoding() {
  using Plain = std::remove_cvref_t<T>;
  if constexpr (std::is_void_v<Plain>) {
    return "v";
  } else if constexpr (std::integral<Plain> || std::is_enum_v<Plain>) {
    return std::string(1, integerEncoding<typename EncodedInteger<Plain>::Type>());
  } else if constexpr (std::same_as<Plain, float>) {
    return "f";
  } else if constexpr (std::same_as<Plain, double>) {
    return "d";
  } else if constexpr (std::same_as<Plain, SEL>) {
    return ":";
  } else if constexpr (std::same_as<Plain, ClassRecord*>) {
    return "#";
  } else if constexpr (std::same_as<Plain, const char*> || std::same_as<Plain, char*>) {
    return "*";
  } else if constexpr (ObjectArgument<Plain>) {
    return "@";
  } else if constexpr (detail::IsBlock<Plain>::value) {
    return "@?";
  } else if constexpr (std::is_pointer_v<Plain>) {
    return "^" + typeEncoding<std::remove_pointer_t<Plain>>();
  } else if constexpr (std::is_function_v<Plain>) {
    return "?";
  } else {
    return std::string(kRecordEncoding<Plain>);
  }
}

}  // namespace rvf
