// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/Runtime.h"

namespace rvf {

/// The methods of one class: the list in order, newest first, and an open-addressing index from
/// selector to the first method that has it.
///
/// `find` may be called by any thread and needs no lock, also while one thread adds; everything
/// else is done by one thread at a time. Methods stay where they are until the table is destroyed.
///
/// Thread: `find` any; everything else one at a time. Lifetime: methods stay where they are until
/// it is destroyed.
class RVF_EXPORT MethodTable final {
 public:
  explicit MethodTable(const std::vector<Method>& methods);

  /// The newest method of that selector; null if there is none.
  const Method* find(SEL selector) const noexcept {
    const Index& index = *index_.load(std::memory_order_acquire);
    std::size_t slot = index.firstSlot(selector);
    while (const Method* method = index.slots[slot].load(std::memory_order_acquire)) {
      if (method->selector == selector) return method;
      slot = (slot + 1) & index.mask;
    }
    return nullptr;
  }

  /// Puts methods before all others. Takes time for them only, on average.
  void prepend(const std::vector<Method>& methods);
  std::vector<Method> list() const { return {methods_.begin(), methods_.end()}; }

 private:
  struct Index {
    explicit Index(std::size_t slotCount)
        : slots(slotCount), mask(slotCount - 1), shift(64 - std::countr_zero(slotCount)) {}

    /// Selectors are addresses of heap nodes of one size, so their low bits hardly differ: the
    /// multiplication by 2^64 divided by the golden ratio spreads them over the high bits.
    std::size_t firstSlot(SEL selector) const noexcept {
      constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15;
      return static_cast<std::size_t>(std::hash<SEL>()(selector) * kGoldenRatio >> shift);
    }
    /// Whether the selector took a slot of its own, and no older method's.
    bool put(const Method& method) noexcept;

    std::vector<std::atomic<const Method*>> slots;  // a power of two, at most half full
    std::size_t mask;
    int shift;
  };

  void reserve(std::size_t selectorCount);

  std::deque<Method> methods_;
  std::atomic<const Index*> index_{nullptr};     // the last one of:
  std::vector<std::unique_ptr<Index>> indexes_;  // all, because a reader may be at an older one
  std::size_t selectorCount_ = 0;
};

}  // namespace rvf
