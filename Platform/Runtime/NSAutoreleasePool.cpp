// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/NSAutoreleasePool.h"

#include <vector>

namespace rvf {
namespace {

struct ThreadScopes {
  std::vector<std::shared_ptr<void>> objects;  // of all scopes, outermost first
  std::size_t depth = 0;
  bool alive = true;

  ThreadScopes() = default;
  ThreadScopes(const ThreadScopes&) = delete;
  ThreadScopes& operator=(const ThreadScopes&) = delete;
  ~ThreadScopes() {
    releaseDownTo(0);
    alive = false;
  }

  void releaseDownTo(std::size_t count) {
    while (objects.size() > count) {
      const std::shared_ptr<void> last = std::move(objects.back());
      objects.pop_back();
    }
  }
};

ThreadScopes& threadScopes() {
  thread_local ThreadScopes scopes;
  return scopes;
}

}  // namespace

NSAutoreleasePool::NSAutoreleasePool() noexcept {
  ThreadScopes& scopes = threadScopes();
  depth_ = scopes.depth++;
  base_ = depth_ == 0 ? 0 : scopes.objects.size();
}

NSAutoreleasePool::~NSAutoreleasePool() {
  ThreadScopes& scopes = threadScopes();
  scopes.releaseDownTo(base_);
  scopes.depth = depth_;
}

void NSAutoreleasePool::drain() {
  threadScopes().releaseDownTo(base_);
}

void NSAutoreleasePool::addObject(std::shared_ptr<void> object) {
  ThreadScopes& scopes = threadScopes();
  if (object && scopes.alive) scopes.objects.push_back(std::move(object));
}

}  // namespace rvf
