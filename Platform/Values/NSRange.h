// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace rvf {

/// A run of numbered things. Where there is none, both fields are `NSNotFound`.
///
/// Thread: any, a plain value. Lifetime: refers to nothing.
struct NSRange {
  std::size_t location;
  std::size_t length;

  bool operator==(const NSRange&) const = default;
};

}  // namespace rvf
