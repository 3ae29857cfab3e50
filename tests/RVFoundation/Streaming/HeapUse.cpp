// SPDX-License-Identifier: Apache-2.0
#include "tests/RVFoundation/Streaming/HeapUse.h"

#include <malloc.h>

#include <cstdlib>
#include <limits>
#include <new>

#ifdef RVF_TEST_SANITIZED
#include <sanitizer/allocator_interface.h>
#endif

namespace {

constexpr std::size_t kAnySize = std::numeric_limits<std::size_t>::max();
constinit thread_local std::size_t largestBlockNow = kAnySize;

}  // namespace

// Replaced for the whole program, as the language allows. The forms for arrays call these unless a
// sanitizer brings its own.
void* operator new(std::size_t size) {
  void* const block = size > largestBlockNow ? nullptr : std::malloc(size > 0 ? size : 1);
  if (!block) throw std::bad_alloc();
  return block;
}
void* operator new[](std::size_t size) {
  return operator new(size);
}
void operator delete(void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}
void operator delete[](void* block) noexcept {
  std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
  std::free(block);
}

namespace rvf::test {

std::size_t heapBytesInUse() {
#ifdef RVF_TEST_SANITIZED
  return __sanitizer_get_current_allocated_bytes();
#else
  const auto heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
#endif
}

ScarceMemory::ScarceMemory(std::size_t largestBlock) {
  largestBlockNow = largestBlock;
}

ScarceMemory::~ScarceMemory() {
  largestBlockNow = kAnySize;
}

}  // namespace rvf::test
