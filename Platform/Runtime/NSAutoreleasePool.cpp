// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSAutoreleasePool.h"

#include <algorithm>
#include <vector>

namespace rvf {
namespace {

// Destructors of other thread-local objects may still hand objects over when the scopes are gone.
// As both thread-local objects here are used at every callout, their initial-exec model makes
// reaching them a load instead of a call.
[[gnu::tls_model("initial-exec")]] constinit thread_local bool scopesAreGone = false;

struct ThreadScopes {
  std::vector<std::shared_ptr<void>> objects;  // of all scopes, outermost first
  std::size_t depth = 0;

  ThreadScopes() = default;
  ThreadScopes(const ThreadScopes&) = delete;
  ThreadScopes& operator=(const ThreadScopes&) = delete;
  ~ThreadScopes() {
    releaseDownTo(0);
    scopesAreGone = true;
  }

  void releaseDownTo(std::size_t count) {
    while (objects.size() > count) {
      const std::shared_ptr<void> last = std::move(objects.back());
      objects.pop_back();
    }
  }
};

ThreadScopes* threadScopes() {
  if (scopesAreGone) return nullptr;
  [[gnu::tls_model("initial-exec")]] thread_local ThreadScopes scopes;
  return &scopes;
}

}  // namespace

NSAutoreleasePool::NSAutoreleasePool() noexcept {
  ThreadScopes* const scopes = threadScopes();
  if (!scopes) return;
  objects_ = &scopes->objects;
  depth_ = scopes->depth++;
  base_ = depth_ == 0 ? 0 : scopes->objects.size();
}

NSAutoreleasePool::~NSAutoreleasePool() {
  releaseDownToBase();  // also right if the thread's scopes are gone by now
  if (ThreadScopes* const scopes = threadScopes()) scopes->depth = std::min(scopes->depth, depth_);
}

void NSAutoreleasePool::releaseDownToBase() {
  if (ThreadScopes* const scopes = threadScopes()) scopes->releaseDownTo(base_);
}

void NSAutoreleasePool::addObject(std::shared_ptr<void> object) {
  ThreadScopes* const scopes = threadScopes();
  if (object && scopes) scopes->objects.push_back(std::move(object));
}

}  // namespace rvf
