// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define RVF_TEST_SANITIZED
#endif
#endif

namespace rvf::test {

/// What the process has allocated, also in C.
std::size_t heapBytesInUse();

/// While one lives, `new` throws on its thread for blocks of more than `largestBlock` bytes.
class ScarceMemory final {
 public:
  explicit ScarceMemory(std::size_t largestBlock);
  ~ScarceMemory();
  ScarceMemory(const ScarceMemory&) = delete;
  ScarceMemory& operator=(const ScarceMemory&) = delete;
};

}  // namespace rvf::test
