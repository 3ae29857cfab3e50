// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/MethodTable.h"

#include <bit>
#include <utility>

namespace rvf {

MethodTable::MethodTable(std::vector<Method> methods)
    : methods_(std::move(methods)),
      slots_(std::bit_ceil(methods_.size() * 2 + 2), nullptr),
      mask_(slots_.size() - 1),
      shift_(64 - std::countr_zero(slots_.size())) {
  for (const Method& method : methods_) {
    std::size_t slot = firstSlot(method.selector);
    while (slots_[slot] && slots_[slot]->selector != method.selector)
      slot = (slot + 1) & mask_;
    if (!slots_[slot]) slots_[slot] = &method;
  }
}

}  // namespace rvf
