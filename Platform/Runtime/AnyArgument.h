// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <any>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/TypeEncoding.h"

/// How values travel where their types are known only at run time: in forwarded messages, in
/// invocations, and through the variables of an object. A value is kept in a `std::any` in the one
/// form that stands for its encoding, so that all types of one encoding convert into each other.
namespace rvf {

/// Raises `NSInvalidArgumentException`: a value of type `found`, or an object of its class, was
/// given where one of encoding `wanted`, or of class `wanted`, was asked for.
[[noreturn]] RVF_EXPORT void raiseArgumentMismatch(const std::type_info& found,
                                                   const std::string& wanted);
[[noreturn]] RVF_EXPORT void raiseArgumentMismatch(const NSObject& found, Class wanted);

/// The string object of a text, and the text of a string object (null for any other object). The
/// text lives as long as the object. Declared here because messages need both; defined beside
/// `NSString`.
RVF_EXPORT id objectOfText(const std::string& text);
RVF_EXPORT const std::string* textOfObject(const NSObject& object) noexcept;

/// The text or object in a run-time value; null if it is absent. Raises
/// `NSInvalidArgumentException` if the value is something else. The text lives as long as `value`.
RVF_EXPORT const std::string* textFromAny(const std::any& value);
RVF_EXPORT id objectFromAny(const std::any& value);

/// The run-time form of a value. Integers, flags and enumerations become the integer of their
/// encoding, references `id` (weak ones as they are at this moment), and views of text become owned
/// text, so that a stored argument outlives its caller. A null pointer constant becomes empty.
template <class T>
std::any toAny(T&& value) {
  using Plain = std::decay_t<T>;
  if constexpr (std::same_as<Plain, std::nullptr_t>) {
    return {};
  } else if constexpr (std::integral<Plain> || std::is_enum_v<Plain>) {
    return std::any(static_cast<typename EncodedInteger<Plain>::Type>(value));
  } else if constexpr (detail::IsWeakReference<Plain>::value) {
    return std::any(id(value.lock()));
  } else if constexpr (detail::IsObjectReference<Plain>::value) {
    return std::any(id(std::forward<T>(value)));
  } else if constexpr (std::same_as<Plain, std::string_view>) {
    return std::any(std::string(value));
  } else {
    return std::any(Plain(std::forward<T>(value)));
  }
}

namespace detail {

template <class T>
std::shared_ptr<T> typedObjectFromAny(const std::any& value) {
  const id object = objectFromAny(value);
  if (!object) return nullptr;
  std::shared_ptr<T> typed = std::dynamic_pointer_cast<T>(object);
  if (!typed) raiseArgumentMismatch(*object, T::classObject());
  return typed;
}

template <class T>
T textFromAny(const std::any& value) {
  const std::string* text = rvf::textFromAny(value);
  return text ? T(*text) : T();
}

/// What the type `T` is kept as.
template <class T>
struct KeptAs {
  using Type = T;
};
template <class T>
requires std::integral<T> || std::is_enum_v<T>
struct KeptAs<T> : EncodedInteger<T> {
};

}  // namespace detail

/// Reads a run-time value as `T`. An empty one reads as zero. Types of one encoding convert into
/// each other: integers, flags and enumerations of one size and sign, text and string objects,
/// objects to the class that is asked for. Anything else raises `NSInvalidArgumentException`. A
/// view of text lives as long as `value`.
template <class T>
T anyTo(const std::any& value) {
  using Plain = std::remove_cv_t<T>;
  static_assert(!std::is_reference_v<T>, "run-time values are read by value");
  if constexpr (std::is_void_v<Plain>) {
    return;
  } else if constexpr (detail::IsObjectReference<Plain>::value ||
                       detail::IsWeakReference<Plain>::value) {
    return detail::typedObjectFromAny<typename Plain::element_type>(value);
  } else if constexpr (TextArgument<Plain>) {
    return detail::textFromAny<Plain>(value);
  } else {
    if (!value.has_value()) return Plain();
    using Kept = typename detail::KeptAs<Plain>::Type;
    if (const Kept* kept = std::any_cast<Kept>(&value)) return static_cast<Plain>(*kept);
    raiseArgumentMismatch(value.type(), typeEncoding<Plain>());
  }
}

}  // namespace rvf
