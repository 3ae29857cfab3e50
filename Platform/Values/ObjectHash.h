// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

#include "Platform/Runtime/NSObject.h"

namespace rvf {

/// Hash and equality of objects by value, for hashed containers of present objects.
struct ObjectHash {
  std::size_t operator()(const id& object) const { return object->hash(); }
};
struct ObjectEqual {
  bool operator()(const id& a, const id& b) const { return objectsAreEqual(a, b); }
};

}  // namespace rvf
