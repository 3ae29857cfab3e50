// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <vector>

#include "Platform/Runtime/Runtime.h"

namespace rvf {

/// The methods of one class at one moment: the list in order, and an open-addressing index from
/// selector to the first method that has it. Immutable, so reading needs no lock.
class RVF_EXPORT MethodTable final {
 public:
  explicit MethodTable(std::vector<Method> methods);

  const Method* find(SEL selector) const noexcept {
    std::size_t slot = std::hash<SEL>()(selector) >> kAlignmentBits & mask_;
    while (const Method* method = slots_[slot]) {
      if (method->selector == selector) return method;
      slot = (slot + 1) & mask_;
    }
    return nullptr;
  }
  const std::vector<Method>& list() const noexcept { return methods_; }

 private:
  static constexpr int kAlignmentBits = 4;  // selectors are addresses of heap nodes

  std::vector<Method> methods_;
  std::vector<const Method*> slots_;  // a power of two, never full
  std::size_t mask_ = 0;
};

}  // namespace rvf
