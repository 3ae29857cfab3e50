// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/ClassRegistration.h"

#include <atomic>

namespace rvf {
namespace {

constinit std::atomic<const ClassRegistration*> firstRegistration{nullptr};
constinit std::atomic<const ClassRegistration*> firstDescribed{nullptr};

}  // namespace

ClassRegistration::ClassRegistration(Class (*classObject)()) noexcept
    : classObject_(classObject), next_(firstRegistration.load(std::memory_order_relaxed)) {
  while (!firstRegistration.compare_exchange_weak(next_, this, std::memory_order_release)) {
  }
}

void ClassRegistration::describeAll() {
  // Registrations are only put in front, so those from `done` on are described already. It is read
  // first: read second, it might stand before `first`.
  const ClassRegistration* const done = firstDescribed.load(std::memory_order_acquire);
  const ClassRegistration* const first = firstRegistration.load(std::memory_order_acquire);
  for (auto registration = first; registration != done; registration = registration->next_)
    registration->classObject_();
  if (first != done) firstDescribed.store(first, std::memory_order_release);
}

}  // namespace rvf
