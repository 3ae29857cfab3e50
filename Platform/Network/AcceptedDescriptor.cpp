// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AcceptedDescriptor.h"

#include <new>

namespace rvf {

AcceptedDescriptor::AcceptedDescriptor(int descriptor)
    : usualPlace_(descriptor), pointer_(&usualPlace_) {
  if (!canBeDescriptor(reinterpret_cast<std::uintptr_t>(pointer_))) return;
  otherPlaces_ = std::make_unique_for_overwrite<std::byte[]>(kDescriptorsEver + sizeof(int));
  std::byte* const start = otherPlaces_.get();
  const std::size_t offset = offsetOfSafePlace(reinterpret_cast<std::uintptr_t>(start));
  pointer_ = new (start + offset) int(descriptor);
}

bool AcceptedDescriptor::canBeDescriptor(std::uintptr_t address) noexcept {
  return static_cast<std::uint32_t>(address) < kDescriptorsEver;
}

std::size_t AcceptedDescriptor::offsetOfSafePlace(std::uintptr_t address) noexcept {
  return canBeDescriptor(address) ? kDescriptorsEver : 0;
}

}  // namespace rvf
