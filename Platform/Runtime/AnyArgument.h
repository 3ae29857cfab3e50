// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <any>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Runtime/TypeEncoding.h"

/// How values travel where their types are known only at run time: in forwarded messages, in
/// invocations, and through the variables of an object. A value is kept in a `std::any` in the one
/// form that stands for its encoding, so that all types of one encoding convert into each other.
namespace rvf {

class NSException;

/// Raises `NSInvalidArgumentException`: a value of type `found`, or an object of its class, was
/// given where one of encoding `wanted`, or of class `wanted`, was asked for.
[[noreturn]] RVF_EXPORT void raiseArgumentMismatch(const std::type_info& found,
                                                   const std::string& wanted);
[[noreturn]] RVF_EXPORT void raiseArgumentMismatch(const NSObject& found, Class wanted);

/// Whether a value was on its way into a method or out of it.
enum class MessagePart : bool { argument, result };

/// Raises a mismatch again, as that of a message: "-[Note setCount:] got a value of type double
/// where i is expected", "-[Note count] answers a value of type …".
[[noreturn]] RVF_EXPORT void raiseMismatchInMessage(const NSObject& receiver, SEL selector,
                                                    MessagePart part, const NSException& mismatch);
/// Raises `NSInvalidArgumentException`, "-[Note setCount:] takes 1 argument, not 2". The receiver
/// may be absent.
[[noreturn]] RVF_EXPORT void raiseArgumentCountMismatch(const NSObject* receiver, SEL selector,
                                                        std::size_t found, std::size_t wanted);

/// The string object of a text, and the text of a string object (null for any other object). The
/// text lives as long as the object. Declared here because messages need both; defined beside
/// `NSString`.
RVF_EXPORT id objectOfText(const std::string& text);
RVF_EXPORT const std::string* textOfObject(const NSObject& object) noexcept;

/// The text or object in a run-time value; null if it is absent. Raises
/// `NSInvalidArgumentException` if the value is something else. The text lives as long as `value`.
RVF_EXPORT const std::string* textFromAny(const std::any& value);
RVF_EXPORT id objectFromAny(const std::any& value);

/// A record of plain bytes as a run-time value.
///
/// Thread: any, a plain value. Lifetime: owns its bytes and encoding; the type is the compiler's.
struct RVF_EXPORT RecordValue {
  std::vector<std::byte> bytes;
  std::string encoding;
  const std::type_info* type = nullptr;  ///< null if only the encoding is known
};

/// The boxed form of a record, and the record in a boxed one (without bytes for any other object).
/// Declared here because messages need both; defined beside `NSValue`.
RVF_EXPORT id objectOfRecord(const RecordValue& record);
RVF_EXPORT RecordValue recordOfObject(const NSObject& object);

/// The record in a run-time value, checked to be one of `type`, or one boxed with this encoding and
/// size. Raises `NSInvalidArgumentException` if it is not.
RVF_EXPORT std::vector<std::byte> recordBytesFromAny(const std::any& value,
                                                     const std::type_info& type, std::size_t size,
                                                     std::string_view encoding);

namespace detail {

/// Records that travel as their bytes.
template <class T>
inline constexpr bool kIsRecord = (std::is_class_v<T> ||
                                   std::is_union_v<T>)&&std::is_trivially_copyable_v<T> &&
                                  !std::same_as<T, SEL>;

template <class T>
RecordValue recordValue(const T& record) {
  const auto* bytes = reinterpret_cast<const std::byte*>(&record);
  return {{bytes, bytes + sizeof(T)}, typeEncoding<T>(), &typeid(T)};
}

}  // namespace detail

/// The run-time form of a value. Integers, flags and enumerations become the integer of their
/// encoding, references `id` (weak ones as they are at this moment), records their bytes, and views
/// of text become owned text, so that a stored argument outlives its caller. A null pointer
/// constant becomes empty.
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
  } else if constexpr (detail::kIsRecord<Plain>) {
    return std::any(detail::recordValue<Plain>(value));
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
/// objects to the class that is asked for, records and their boxed form. Anything else raises
/// `NSInvalidArgumentException`. A view of text lives as long as `value`.
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
  } else if constexpr (detail::kIsRecord<Plain>) {
    Plain record{};
    if (value.has_value()) {
      const auto bytes =
          recordBytesFromAny(value, typeid(Plain), sizeof(Plain), typeEncoding<Plain>());
      std::memcpy(static_cast<void*>(&record), bytes.data(), sizeof(Plain));
    }
    return record;
  } else {
    if (!value.has_value()) return Plain();
    using Kept = typename detail::KeptAs<Plain>::Type;
    if (const Kept* kept = std::any_cast<Kept>(&value)) return static_cast<Plain>(*kept);
    raiseArgumentMismatch(value.type(), typeEncoding<Plain>());
  }
}

}  // namespace rvf
