// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/AllocationCount.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::uint64_t count = 0;  // benchmarks that count have one thread

}  // namespace

void* operator new(std::size_t size) {
  ++count;
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (!block) throw std::bad_alloc();
  return block;
}

void operator delete(void* block) noexcept {
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}

namespace rvf {

std::uint64_t allocationCount() noexcept {
  return count;
}

}  // namespace rvf
