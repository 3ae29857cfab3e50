// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace rvf {

/// The part of a text that counts as a name of the runtime (of a class, selector, property,
/// variable or protocol): everything before the first zero byte.
constexpr std::string_view runtimeName(std::string_view text) noexcept {
  return text.substr(0, text.find('\0'));
}

}  // namespace rvf
