// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string_view>

namespace rvf {

/// While one lives, everything that this thread makes with `new`, in this program and in the
/// libraries, stands in a stretch of memory that is never used twice and never given back. So it
/// may be read at any time what destroyed objects and freed buffers have left there.
class MemoryArena final {
 public:
  MemoryArena();
  ~MemoryArena();
  MemoryArena(const MemoryArena&) = delete;
  MemoryArena& operator=(const MemoryArena&) = delete;

  /// Whether these bytes stand anywhere in what was allocated since the last one was made.
  static bool contains(std::string_view bytes);
  /// How many blocks were allocated since then.
  static std::size_t blockCount();
};

}  // namespace rvf
