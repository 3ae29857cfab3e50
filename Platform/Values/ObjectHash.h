// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "Platform/Runtime/AnyArgument.h"
#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Hash and equality of objects by value, for hashed containers. A text finds the string object of
/// the same text, so that looking an entry up by text makes no object.
///
/// Thread: any, as the objects allow; without state. Lifetime: keeps nothing.
struct ObjectHash {
  using is_transparent = void;
  std::size_t operator()(const id& object) const { return object ? object->hash() : 0; }
  std::size_t operator()(std::string_view text) const noexcept {
    return std::hash<std::string_view>()(text);
  }
};
/// Equality beside `ObjectHash`.
///
/// Thread: any, as the objects allow; without state. Lifetime: keeps nothing.
struct ObjectEqual {
  using is_transparent = void;
  bool operator()(const id& a, const id& b) const { return objectsAreEqual(a, b); }
  bool operator()(std::string_view a, const id& b) const noexcept {
    const std::string* text = b ? textOfObject(*b) : nullptr;
    return text && *text == a;
  }
  bool operator()(const id& a, std::string_view b) const noexcept { return (*this)(b, a); }
};

}  // namespace rvf
