// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/RenamePacer.h"

namespace rvf {
namespace {

constexpr int kAnsweredAtOnce = 10;
constexpr int kGivenUpAfter = 50;
constexpr double kSpacingSeconds = 5;
constexpr std::chrono::minutes kQuiet{1};

}  // namespace

std::optional<double> RenamePacer::delayAfterCollision(TimePoint now) {
  if (now - latest_ >= kQuiet) collisions_ = 0;
  latest_ = now;
  ++collisions_;
  if (collisions_ > kGivenUpAfter) return std::nullopt;
  return collisions_ <= kAnsweredAtOnce ? 0 : kSpacingSeconds;
}

}  // namespace rvf
