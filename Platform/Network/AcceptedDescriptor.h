// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "Platform/Export.h"

namespace rvf {

/// Where the descriptor of an accepted connection stands while an accept callout is told of it by
/// pointer. Does not own the descriptor.
///
/// There are callouts that close the pointer, cut to 32 bits, instead of what it points to. So the
/// pointer is chosen such that this number is never one that a descriptor can have: it is negative
/// or at least `kDescriptorsEver`.
class RVF_EXPORT AcceptedDescriptor final {
 public:
  /// Descriptors are numbered from 0 upwards, so no process with fewer of them comes near.
  static constexpr std::uint32_t kDescriptorsEver = 1U << 20;

  explicit AcceptedDescriptor(int descriptor);
  AcceptedDescriptor(const AcceptedDescriptor&) = delete;
  AcceptedDescriptor& operator=(const AcceptedDescriptor&) = delete;

  const int* pointer() const noexcept { return pointer_; }

  /// Whether an address, cut to 32 bits, is a number that a descriptor can have.
  static bool canBeDescriptor(std::uintptr_t address) noexcept;
  /// How far behind `address` the first place is of which that is not so: 0 or `kDescriptorsEver`.
  static std::size_t offsetOfSafePlace(std::uintptr_t address) noexcept;

 private:
  int usualPlace_;
  std::unique_ptr<std::byte[]> otherPlaces_;  // once in 4,096 runs
  const int* pointer_;
};

}  // namespace rvf
