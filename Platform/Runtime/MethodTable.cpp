// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/MethodTable.h"

#include <utility>

namespace rvf {

bool MethodTable::Index::put(const Method& method) noexcept {
  std::size_t slot = firstSlot(method.selector);
  while (const Method* other = slots[slot].load(std::memory_order_relaxed)) {
    if (other->selector == method.selector) {
      slots[slot].store(&method, std::memory_order_release);
      return false;
    }
    slot = (slot + 1) & mask;
  }
  slots[slot].store(&method, std::memory_order_release);
  return true;
}

MethodTable::MethodTable(const std::vector<Method>& methods) {
  prepend(methods);
}

void MethodTable::prepend(const std::vector<Method>& methods) {
  reserve(selectorCount_ + methods.size());
  for (auto method = methods.rbegin(); method != methods.rend(); ++method) {
    methods_.push_front(*method);  // moves none of the others
    if (indexes_.back()->put(methods_.front())) ++selectorCount_;
  }
}

/// Makes an index at least twice as large as the last one, so that all of them together take no
/// more than twice the memory of the last.
void MethodTable::reserve(std::size_t selectorCount) {
  const std::size_t slotCount = std::bit_ceil(selectorCount * 2 + 2);
  if (!indexes_.empty() && indexes_.back()->slots.size() >= slotCount) return;
  auto larger = std::make_unique<Index>(slotCount);
  for (auto method = methods_.rbegin(); method != methods_.rend(); ++method)
    larger->put(*method);
  index_.store(larger.get(), std::memory_order_release);
  indexes_.push_back(std::move(larger));
}

}  // namespace rvf
