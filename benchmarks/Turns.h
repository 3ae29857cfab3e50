// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <limits>

namespace rvf {

/// The fastest of some rounds in nanoseconds; what disturbs a round only makes it slower.
class FastestRound final {
 public:
  template <class Operation>
  void run(Operation& operation) {
    const auto start = std::chrono::steady_clock::now();
    operation();
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
    nanoseconds_ = std::min(nanoseconds_, taken.count());
  }
  double nanoseconds() const noexcept { return nanoseconds_; }

 private:
  double nanoseconds_ = std::numeric_limits<double>::infinity();
};

/// How fast `ours` is as a multiple of the speed of `theirs`, which does the same work; they take
/// turns.
template <class Ours, class Theirs>
double relativeSpeed(Ours ours, Theirs theirs, int rounds = 200) {
  FastestRound fastestOfOurs;
  FastestRound fastestOfTheirs;
  for (int round = 0; round < rounds; ++round) {
    fastestOfOurs.run(ours);
    fastestOfTheirs.run(theirs);
  }
  return fastestOfTheirs.nanoseconds() / fastestOfOurs.nanoseconds();
}

}  // namespace rvf
