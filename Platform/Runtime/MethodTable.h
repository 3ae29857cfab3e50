// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Platform/Runtime/Runtime.h"

namespace rvf {

/// The methods of one class at one moment: the list in order, and an open-addressing index from
/// selector to the first method that has it. Immutable, so reading needs no lock.
class RVF_EXPORT MethodTable final {
 public:
  explicit MethodTable(std::vector<Method> methods);
  MethodTable(const MethodTable&) = delete;  // the index points into the list
  MethodTable& operator=(const MethodTable&) = delete;

  const Method* find(SEL selector) const noexcept {
    std::size_t slot = firstSlot(selector);
    while (const Method* method = slots_[slot]) {
      if (method->selector == selector) return method;
      slot = (slot + 1) & mask_;
    }
    return nullptr;
  }
  const std::vector<Method>& list() const noexcept { return methods_; }

 private:
  /// Selectors are addresses of heap nodes of one size, so their low bits hardly differ: the
  /// multiplication by 2^64 divided by the golden ratio spreads them over the high bits.
  std::size_t firstSlot(SEL selector) const noexcept {
    constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15;
    return static_cast<std::size_t>(std::hash<SEL>()(selector) * kGoldenRatio >> shift_);
  }

  std::vector<Method> methods_;
  std::vector<const Method*> slots_;  // a power of two, never full
  std::size_t mask_;
  int shift_;
};

}  // namespace rvf
