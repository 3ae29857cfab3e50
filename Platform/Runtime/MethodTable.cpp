// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/MethodTable.h"

#include <bit>
#include <utility>

namespace rvf {

MethodTable::MethodTable(std::vector<Method> methods)
    : methods_(std::move(methods)),
      slots_(std::bit_ceil(methods_.size() * 2 + 1), nullptr),
      mask_(slots_.size() - 1) {
  for (const Method& method : methods_) {
    std::size_t slot = std::hash<SEL>()(method.selector) >> kAlignmentBits & mask_;
    while (slots_[slot] && slots_[slot]->selector != method.selector)
      slot = (slot + 1) & mask_;
    if (!slots_[slot]) slots_[slot] = &method;
  }
}

}  // namespace rvf
