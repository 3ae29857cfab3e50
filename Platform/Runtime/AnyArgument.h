// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <any>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/TypeEncoding.h"

namespace rvf {

/// Raises `NSInvalidArgumentException`: a value of type `found` was given where `wanted` was asked.
[[noreturn]] RVF_EXPORT void raiseArgumentMismatch(const std::type_info& found,
                                                   const std::string& wanted);

/// The run-time form of an argument or result. Object references become `id`, views of text
/// become owned text, so that a stored argument outlives its caller.
template <class T>
std::any toAny(T&& value) {
  using Plain = std::remove_cvref_t<T>;
  if constexpr (detail::IsObjectReference<Plain>::value) {
    return std::any(id(std::forward<T>(value)));
  } else if constexpr (std::same_as<Plain, std::string_view>) {
    return std::any(std::string(value));
  } else {
    return std::any(Plain(std::forward<T>(value)));
  }
}

namespace detail {

template <class T>
T objectFromAny(const std::any& value) {
  const id* object = std::any_cast<id>(&value);
  if (!object) raiseArgumentMismatch(value.type(), "@");
  if (!*object) return nullptr;
  T typed = std::dynamic_pointer_cast<typename T::element_type>(*object);
  if (!typed) {
    const NSObject& other = **object;
    raiseArgumentMismatch(typeid(other), typeid(typename T::element_type).name());
  }
  return typed;
}

template <class T, class... Candidates>
std::optional<T> integerFromAny(const std::any& value) {
  std::optional<T> result;
  const auto attempt = [&]<class Candidate>(const Candidate* found) {
    if (found && sizeof(Candidate) == sizeof(T) &&
        std::is_signed_v<Candidate> == std::is_signed_v<T>) {
      result = static_cast<T>(*found);
    }
  };
  (attempt(std::any_cast<Candidates>(&value)), ...);
  return result;
}

}  // namespace detail

/// Reads a run-time argument as `T`. An empty one reads as zero. Integers convert between types
/// of one encoding, objects to the class that is asked for; anything else raises
/// `NSInvalidArgumentException`. A text view points into `value`.
template <class T>
T anyTo(const std::any& value) {
  using Plain = std::remove_cvref_t<T>;
  if constexpr (std::is_void_v<Plain>) {
    return;
  } else if constexpr (detail::IsObjectReference<Plain>::value) {
    if (!value.has_value()) return nullptr;
    return detail::objectFromAny<Plain>(value);
  } else {
    if (!value.has_value()) return Plain();
    if constexpr (std::same_as<Plain, std::string_view>) {
      if (const std::string* text = std::any_cast<std::string>(&value)) return *text;
    }
    if (const Plain* exact = std::any_cast<Plain>(&value)) return *exact;
    if constexpr (std::integral<Plain>) {
      const auto converted =
          detail::integerFromAny<Plain, bool, char, signed char, unsigned char, short,
                                 unsigned short, int, unsigned, long, unsigned long, long long,
                                 unsigned long long>(value);
      if (converted) return *converted;
    }
    raiseArgumentMismatch(value.type(), typeEncoding<Plain>());
  }
}

}  // namespace rvf
