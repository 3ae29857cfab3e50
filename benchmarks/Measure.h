// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <utility>

namespace rvf {

/// Runs `work` under the benchmark's clock and reports the time of one of the `count` things that
/// it does each time.
template <class Work>
void measure(benchmark::State& state, Work&& work, std::int64_t count = 1) {
  for ([[maybe_unused]] auto _ : state)
    work();
  state.SetItemsProcessed(state.iterations() * count);
}

/// The same of something that has a result, which is thrown away.
template <class Work>
void measureResult(benchmark::State& state, Work&& work, std::int64_t count = 1) {
  measure(
      state, [&] { benchmark::DoNotOptimize(work()); }, count);
}

}  // namespace rvf
