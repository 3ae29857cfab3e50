// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

namespace rvf {

/// Spreads a hash over all bits (the finalizer of SplitMix64), so that sums of hashes, of texts or
/// of small numbers, hardly ever meet.
constexpr std::size_t mixedHash(std::size_t hash) noexcept {
  std::uint64_t bits = hash + 0x9E3779B97F4A7C15;
  bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9;
  bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EB;
  return bits ^ (bits >> 31);
}

}  // namespace rvf
