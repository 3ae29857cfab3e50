// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>

#include "benchmarks/Measure.h"

namespace rvf {

/// Measures a function that sets a whole number and answers what it then gets, and refuses one that
/// answers another.
template <class SetAndGet>
void measurePair(benchmark::State& state, SetAndGet setAndGet) {
  long value = 0;
  const auto runPair = [&] {
    ++value;
    if (setAndGet(value) != value) state.SkipWithError("another value");
  };
  measure(state, runPair);
}

}  // namespace rvf
