// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Export.h"

namespace rvf {

/// An interned message name, written in full with its colons: `SEL("setCount:")`.
///
/// Two selectors of the same text are the same pointer, so comparing costs one comparison. Making
/// one takes a lock and a look-up: keep selectors that are used often in a `static const`. Like
/// every runtime name, the text ends at its first zero byte.
///
/// Thread: any; immutable. Lifetime: its name lives as long as the process.
class RVF_EXPORT SEL final {
 public:
  /// The null selector, which no object answers.
  constexpr SEL() noexcept = default;
  explicit SEL(std::string_view name);
  /// The selector of this name if it has been made before, else the null selector: for names that
  /// come from outside and need not become selectors for good.
  static SEL known(std::string_view name);

  /// The full text; empty for the null selector.
  std::string_view name() const noexcept {
    return name_ ? std::string_view(*name_) : std::string_view();
  }
  /// How many arguments the name asks for: its number of colons.
  std::size_t argumentCount() const noexcept;

  explicit operator bool() const noexcept { return name_ != nullptr; }
  friend bool operator==(SEL, SEL) noexcept = default;
  friend struct std::hash<SEL>;

 private:
  const std::string* name_ = nullptr;
};

/// The platform's names for making and reading selectors.
RVF_EXPORT SEL sel_registerName(std::string_view name);
RVF_EXPORT std::string_view sel_getName(SEL selector) noexcept;

/// The selector of a text; an absent text gives the null selector.
RVF_EXPORT SEL NSSelectorFromString(const std::optional<std::string>& name);
RVF_EXPORT std::string NSStringFromSelector(SEL selector);

}  // namespace rvf

template <>
struct std::hash<rvf::SEL> {
  std::size_t operator()(rvf::SEL selector) const noexcept {
    return std::hash<const void*>()(selector.name_);
  }
};
