// SPDX-License-Identifier: Apache-2.0
#include "Platform/Runtime/ClassRegistration.h"

#include <atomic>

namespace rvf {
namespace {

constinit std::atomic<const ClassRegistration*> firstRegistration{nullptr};

}  // namespace

ClassRegistration::ClassRegistration(Class (*classObject)()) noexcept
    : classObject_(classObject), next_(firstRegistration.load(std::memory_order_relaxed)) {
  while (!firstRegistration.compare_exchange_weak(next_, this, std::memory_order_release)) {
  }
}

void ClassRegistration::describeAll() {
  const ClassRegistration* registration = firstRegistration.load(std::memory_order_acquire);
  for (; registration; registration = registration->next_)
    registration->classObject_();
}

}  // namespace rvf
