// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>

#include "Platform/Runtime/NSObject.h"
#include "benchmarks/Turns.h"

namespace rvf {

/// An object with ten dynamic properties, "count" of type `long` in their middle, whose provider
/// keeps each in a variable of its own, as the classes of the peers do.
Ref<NSObject> objectWithDynamicProperties();

/// One call of the setter of "count", and one of its getter.
long setAndGetDynamicProperty(NSObject& object, long value);

/// The time of our pair as a multiple of that of the peer's; they take turns.
template <class Theirs>
double timeOfPair(NSObject& object, Theirs theirs) {
  constexpr long kPairs = 5'000;  // short, so that some round is undisturbed
  const auto repeated = [](auto operation) {
    return [operation] {
      for (long i = 0; i < kPairs; ++i)
        benchmark::DoNotOptimize(operation(i));
    };
  };
  return 1 / relativeSpeed(repeated([&](long v) { return setAndGetDynamicProperty(object, v); }),
                           repeated(theirs));
}

}  // namespace rvf
