// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Runtime/Ref.h"

namespace rvf {

/// A release scope: what was handed to it lives until the scope ends.
///
///     NSAutoreleasePool pool;
///     autorelease(object);          // lives at least until `pool` is destroyed
///
/// Scopes nest by thread, innermost first, and are made on the stack only. The run loop opens one
/// around every callout. Outside every scope, an object lives until the next outermost scope of
/// its thread ends, or the thread does; handed over by the last destructors of a thread, it lives
/// no longer than its other references. Objects are released newest first; what their destructors
/// hand over is released by the same drain. Opening and closing an empty scope costs nanoseconds.
///
/// Thread: the one that made it, on its stack. Lifetime: drains when the scope is left; keeps what
/// was handed over until then.
class RVF_EXPORT NSAutoreleasePool final {
 public:
  NSAutoreleasePool() noexcept;
  ~NSAutoreleasePool();
  NSAutoreleasePool(const NSAutoreleasePool&) = delete;
  NSAutoreleasePool& operator=(const NSAutoreleasePool&) = delete;

  static void* operator new(std::size_t) = delete;

  /// Releases what the scope holds now, and what its inner scopes do; the scope goes on. For many
  /// short pieces of work, one scope that is drained after each costs less than a scope for each.
  void drain() {
    if (objects_ && objects_->size() > base_) releaseDownToBase();
  }

  /// Hands a reference to this thread's innermost scope.
  static void addObject(std::shared_ptr<void> object);

 private:
  void releaseDownToBase();

  std::vector<std::shared_ptr<void>>* objects_ = nullptr;  // of all scopes, outermost first
  std::size_t base_ = 0;   // how many objects the scopes around this one hold
  std::size_t depth_ = 0;  // how many scopes are around this one
};

/// Keeps `object` alive until this thread's innermost release scope ends, and returns it.
template <class T>
Ref<T> autorelease(Ref<T> object) {
  NSAutoreleasePool::addObject(object);
  return object;
}

}  // namespace rvf
