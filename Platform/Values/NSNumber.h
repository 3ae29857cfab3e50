// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <variant>

#include "Platform/Export.h"
#include "Platform/Runtime/TypeEncoding.h"
#include "Platform/Values/NSValue.h"

namespace rvf {

/// What a number object can be made from.
template <class T>
concept NumberValue = std::is_arithmetic_v<T> && !std::same_as<T, long double>;

/// A number as an object. It remembers the type code that it was made with (`c` for flags,
/// `s S i I q Q f d`), prints accordingly and compares by value: 1, 1.0 and true are equal and hash
/// alike, integers beyond 2^53 that differ are not.
///
/// Integer readings of an integer wrap like a C cast; readings of a fraction truncate toward zero
/// and saturate when out of range, NaN reads as 0.
///
/// Thread: any; immutable. Lifetime: refers to nothing.
class RVF_EXPORT NSNumber : public NSValue {
 public:
  template <NumberValue T>
  explicit NSNumber(T value) : NSNumber(storageOf(value), typeEncoding<T>()) {}

  /// Takes the type code of the value's C++ type.
  template <NumberValue T>
  static Ref<NSNumber> numberWithValue(T value) {
    return std::make_shared<NSNumber>(value);
  }

  static Class classObject();
  Class isa() const override;

  /// Not zero. The readings below convert as the class says.
  virtual bool boolValue() const;
  signed char charValue() const { return integer<signed char>(); }
  unsigned char unsignedCharValue() const { return integer<unsigned char>(); }
  short shortValue() const { return integer<short>(); }
  unsigned short unsignedShortValue() const { return integer<unsigned short>(); }
  int intValue() const { return integer<int>(); }
  unsigned unsignedIntValue() const { return integer<unsigned>(); }
  long longValue() const { return integer<long>(); }
  unsigned long unsignedLongValue() const { return integer<unsigned long>(); }
  long integerValue() const { return integer<long>(); }
  unsigned long unsignedIntegerValue() const { return integer<unsigned long>(); }
  long long longLongValue() const { return integer<long long>(); }
  unsigned long long unsignedLongLongValue() const { return integer<unsigned long long>(); }
  /// The nearest float; infinite beyond the range of floats.
  float floatValue() const;
  virtual double doubleValue() const;

  /// The shortest decimal text that reads back to the same value of the type that the number was
  /// made with: "1", "0.1", "1e+22" (an exponent from 1e16 on and below 1e-4), "inf", "nan". Flags
  /// print "1" and "0".
  virtual std::string stringValue() const;
  /// Negative, 0 or positive; NaN orders below every other number.
  virtual int compare(const NSNumber& other) const;

  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;
  std::string description() const override { return stringValue(); }

 protected:
  using Storage = std::variant<std::int64_t, std::uint64_t, double>;
  NSNumber(Storage storage, const std::string& typeCode);

  /// What integer readings start from: an integer, or a fraction that they truncate.
  virtual Storage integerForm() const { return storage_; }
  /// Whether this number is the one to compare the two, whichever of them is asked.
  virtual bool isDecimal() const noexcept { return false; }

 private:
  template <class T>
  static Storage storageOf(T value) {
    if constexpr (std::floating_point<T>) {
      return static_cast<double>(value);
    } else if constexpr (std::is_unsigned_v<T> && !std::same_as<T, bool>) {
      return static_cast<std::uint64_t>(value);
    } else {
      return static_cast<std::int64_t>(value);
    }
  }

  template <class T>
  T integer() const {
    const Storage form = integerForm();
    if (const auto* fraction = std::get_if<double>(&form)) {
      return std::is_signed_v<T> ? static_cast<T>(saturated(*fraction, sizeof(T)))
                                 : static_cast<T>(saturatedUnsigned(*fraction, sizeof(T)));
    }
    return static_cast<T>(bitsOf(form));
  }
  static std::uint64_t bitsOf(const Storage& integer);
  static std::int64_t saturated(double value, std::size_t bytes);
  static std::uint64_t saturatedUnsigned(double value, std::size_t bytes);

  Storage storage_;
};

/// The object form of a number.
template <NumberValue T>
Ref<NSNumber> box(T value) {
  return NSNumber::numberWithValue(value);
}

}  // namespace rvf
