// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "Platform/Runtime/Runtime.h"

namespace rvf {

/// The attributes of one property as views into its name and attribute string, which live as long
/// as the property does.
class PropertyAttributes final {
 public:
  /// A malformed attribute string is a fatal assertion.
  explicit PropertyAttributes(const Property& property);

  /// Whether this is the name of the getter or the setter.
  bool isAccessor(std::string_view selectorName) const noexcept;

  std::string_view name() const noexcept { return name_; }
  std::string_view type() const noexcept { return type_; }
  std::string_view getter() const noexcept { return getter_; }
  /// The `S` attribute; empty if there is none.
  std::string_view statedSetter() const noexcept { return setter_; }
  bool hasGeneratedSetter() const noexcept { return setter_.empty() && !has('R'); }
  std::string_view ivar() const noexcept { return ivar_; }
  /// Whether a letter without a value stands in the attribute string.
  bool has(char flag) const noexcept { return (flags_ & bitOf(flag)) != 0; }
  bool isAssign() const noexcept { return !has('&') && !has('C'); }
  /// Whether a provider is to keep no owning reference: only objects can be owned, and one that can
  /// only be read counts as owned unless it says otherwise.
  bool isNonOwning() const noexcept {
    return type_.starts_with('@') && (has('W') || (!has('R') && isAssign()));
  }

 private:
  static constexpr std::string_view kFlags = "RC&NDWP";
  static constexpr unsigned bitOf(char flag) noexcept { return 1U << kFlags.find(flag); }

  void readAttribute(char letter, std::string_view value);

  std::string_view name_;
  std::string_view type_;
  std::string_view getter_;
  std::string_view setter_;
  std::string_view ivar_;
  unsigned flags_ = 0;
};

/// The setter that a property has unless it names another: "setAmount:" for "amount", of which the
/// first `capacity` bytes are written. Returns how many.
std::size_t writeGeneratedSetter(std::string_view name, char* text, std::size_t capacity) noexcept;

/// The first property, from the class upwards, that has this selector as an accessor. Reads the
/// lists at every call.
std::optional<PropertyAttributes> findPropertyForSelector(Class aClass, SEL selector);

}  // namespace rvf
