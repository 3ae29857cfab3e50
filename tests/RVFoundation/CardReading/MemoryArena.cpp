// SPDX-License-Identifier: Apache-2.0
#include "tests/RVFoundation/CardReading/MemoryArena.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t kCapacity = 16U << 20;

alignas(std::max_align_t) std::array<std::byte, kCapacity> arena;
std::size_t usedBytes = 0;
std::size_t startOfScope = 0;
std::size_t blocksInScope = 0;
thread_local bool isActive = false;

bool isInArena(const void* block) {
  const auto* const byte = static_cast<const std::byte*>(block);
  return byte >= arena.data() && byte < arena.data() + arena.size();
}

void* allocateInArena(std::size_t size) {
  constexpr std::size_t kAlignment = alignof(std::max_align_t);
  const std::size_t room = (size + kAlignment - 1) / kAlignment * kAlignment;
  if (room > arena.size() - usedBytes) {
    std::fputs("the arena is full\n", stderr);
    std::abort();
  }
  void* const block = arena.data() + usedBytes;
  usedBytes += room;
  ++blocksInScope;
  return block;
}

}  // namespace

void* operator new(std::size_t size) {
  void* const block = isActive ? allocateInArena(size) : std::malloc(size == 0 ? 1 : size);
  if (!block) throw std::bad_alloc();
  return block;
}

void operator delete(void* block) noexcept {
  if (!isInArena(block)) std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}

namespace rvf {

MemoryArena::MemoryArena() {
  startOfScope = usedBytes;
  blocksInScope = 0;
  isActive = true;
}

MemoryArena::~MemoryArena() {
  isActive = false;
}

bool MemoryArena::contains(std::string_view bytes) {
  const std::string_view used(reinterpret_cast<const char*>(arena.data()), usedBytes);
  return used.substr(startOfScope).find(bytes) != std::string_view::npos;
}

std::size_t MemoryArena::blockCount() {
  return blocksInScope;
}

}  // namespace rvf
