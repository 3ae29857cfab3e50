// SPDX-License-Identifier: Apache-2.0
#include "Platform/Values/NSNumber.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <compare>
#include <functional>
#include <limits>

#include "Platform/Runtime/ClassBuilder.h"
#include "Platform/Runtime/ClassRegistration.h"

namespace rvf {
namespace {

const ClassRegistration kRegistration(&NSNumber::classObject);

int orderOf(std::partial_ordering order) {
  return std::is_lt(order) ? -1 : std::is_gt(order) ? 1 : 0;
}

int compareIntegers(std::int64_t a, std::uint64_t b) {
  if (a < 0) return -1;
  return orderOf(static_cast<std::uint64_t>(a) <=> b);
}

int compareDoubles(double a, double b) {
  if (std::isnan(a) || std::isnan(b))
    return static_cast<int>(std::isnan(b)) - static_cast<int>(std::isnan(a));
  return orderOf(a <=> b);
}

/// Compares without rounding the integer: values beyond 2^53 stay distinct.
template <class Integer>
int compareMixed(Integer integer, double fraction) {
  if (std::isnan(fraction)) return 1;
  constexpr double kLimit = std::is_signed_v<Integer> ? 0x1p63 : 0x1p64;
  constexpr double kFloor = std::is_signed_v<Integer> ? -0x1p63 : 0.0;
  if (fraction >= kLimit) return -1;
  if (fraction < kFloor) return 1;
  const double whole = std::floor(fraction);
  const auto wholeInteger = static_cast<Integer>(whole);
  if (integer != wholeInteger) return integer < wholeInteger ? -1 : 1;
  return whole < fraction ? -1 : 0;
}

struct Comparison {
  int operator()(std::int64_t a, std::int64_t b) const { return orderOf(a <=> b); }
  int operator()(std::uint64_t a, std::uint64_t b) const { return orderOf(a <=> b); }
  int operator()(std::int64_t a, std::uint64_t b) const { return compareIntegers(a, b); }
  int operator()(std::uint64_t a, std::int64_t b) const { return -compareIntegers(b, a); }
  int operator()(double a, double b) const { return compareDoubles(a, b); }
  int operator()(double a, std::int64_t b) const { return -compareMixed(b, a); }
  int operator()(double a, std::uint64_t b) const { return -compareMixed(b, a); }
  int operator()(std::int64_t a, double b) const { return compareMixed(a, b); }
  int operator()(std::uint64_t a, double b) const { return compareMixed(a, b); }
};

}  // namespace

NSNumber::NSNumber(Storage storage, const std::string& typeCode)
    : NSValue({}, typeCode), storage_(storage) {}

Class NSNumber::classObject() {
  static const Class kClass = ClassBuilder<NSNumber>("NSNumber", NSValue::classObject())
                                  .method<&NSNumber::boolValue>("boolValue")
                                  .method<&NSNumber::charValue>("charValue")
                                  .method<&NSNumber::unsignedCharValue>("unsignedCharValue")
                                  .method<&NSNumber::shortValue>("shortValue")
                                  .method<&NSNumber::unsignedShortValue>("unsignedShortValue")
                                  .method<&NSNumber::intValue>("intValue")
                                  .method<&NSNumber::unsignedIntValue>("unsignedIntValue")
                                  .method<&NSNumber::longValue>("longValue")
                                  .method<&NSNumber::unsignedLongValue>("unsignedLongValue")
                                  .method<&NSNumber::longLongValue>("longLongValue")
                                  .method<&NSNumber::unsignedLongLongValue>("unsignedLongLongValue")
                                  .method<&NSNumber::integerValue>("integerValue")
                                  .method<&NSNumber::unsignedIntegerValue>("unsignedIntegerValue")
                                  .method<&NSNumber::floatValue>("floatValue")
                                  .method<&NSNumber::doubleValue>("doubleValue")
                                  .method<&NSNumber::stringValue>("stringValue")
                                  .registered();
  return kClass;
}

Class NSNumber::isa() const {
  return classObject();
}

bool NSNumber::boolValue() const {
  return std::visit([](auto value) { return value != 0; }, storage_);
}

double NSNumber::doubleValue() const {
  return std::visit([](auto value) { return static_cast<double>(value); }, storage_);
}

std::string NSNumber::stringValue() const {
  if (std::isnan(doubleValue())) return "nan";  // whatever its sign
  if (objCType() == "f") return fmt::format("{}", floatValue());
  return std::visit([](auto value) { return fmt::format("{}", value); }, storage_);
}

float NSNumber::floatValue() const {
  const double value = doubleValue();
  constexpr double kLargest = std::numeric_limits<float>::max();
  constexpr double kHalfStep = 0x1p103;  // from the largest float; there rounding goes to infinity
  if (std::fabs(value) >= kLargest + kHalfStep)
    return std::copysign(std::numeric_limits<float>::infinity(), value < 0 ? -1.0F : 1.0F);
  return static_cast<float>(std::clamp(value, -kLargest, kLargest));
}

int NSNumber::compare(const NSNumber& other) const {
  if (other.isDecimal()) return -other.compare(*this);
  return std::visit(Comparison(), storage_, other.storage_);
}

bool NSNumber::isEqual(const NSObject* other) const {
  const auto* number = dynamic_cast<const NSNumber*>(other);
  return number && compare(*number) == 0;
}

std::size_t NSNumber::hash() const {
  const double value = doubleValue();  // equal numbers read as equal doubles
  return std::isnan(value) ? 0 : std::hash<double>()(value);
}

std::uint64_t NSNumber::bitsOf(const Storage& integer) {
  if (const auto* number = std::get_if<std::int64_t>(&integer)) {
    return static_cast<std::uint64_t>(*number);
  }
  return std::get<std::uint64_t>(integer);
}

std::int64_t NSNumber::saturated(double value, std::size_t bytes) {
  if (std::isnan(value)) return 0;
  const int shift = static_cast<int>(bytes * 8 - 1);
  const double limit = std::ldexp(1.0, shift);
  const std::int64_t maximum = static_cast<std::int64_t>((std::uint64_t{1} << shift) - 1);
  if (value >= limit) return maximum;
  if (value <= -limit) return -maximum - 1;
  return static_cast<std::int64_t>(value);
}

std::uint64_t NSNumber::saturatedUnsigned(double value, std::size_t bytes) {
  if (std::isnan(value) || value <= 0) return 0;
  const int shift = static_cast<int>(bytes * 8);
  if (value >= std::ldexp(1.0, shift)) {
    return std::numeric_limits<std::uint64_t>::max() >> (64 - shift);
  }
  return static_cast<std::uint64_t>(value);
}

}  // namespace rvf
