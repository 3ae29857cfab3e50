// SPDX-License-Identifier: Apache-2.0

// Many registrations at a time.

#include <algorithm>
#include <iostream>
#include <set>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

constexpr int kCount = 300;
constexpr int kRounds = 3;

class ManyServices : public PairTest {
 protected:
  void SetUp() override {
    for (int i = 0; i < kCount; ++i) {
      const std::string label = std::to_string(i);
      publisher_.publish(label, "Till " + label, kType, 4711 + i);
    }
    for (int i = 0; i < kCount; ++i)
      publisher_.waitFor({{"event", "published"}});
  }
};

INSTANTIATE_TEST_SUITE_P(Pairs, ManyServices, everyPair(), nameOfPair);

TEST_P(ManyServices, ThreeHundredAreFoundOnceEachInUnderASecond) {
  double best = 1e9;
  for (int round = 0; round < kRounds && best >= 1000; ++round) {
    Probe fresh(hosts_.there, GetParam().seeker);
    // Something under way keeps the stack running, and a second has shown that it runs.
    fresh.monitor("other", "Absent", kType);
    fresh.resolve("absent", "Absent", kType, 1);
    fresh.waitFor({{"event", "didNotResolve"}});
    fresh.browse(kType);
    const double started = fresh.waitFor({{"event", "willSearch"}})["ms"];
    std::set<std::string> names;
    double last = 0;
    while (names.size() < kCount) {
      const Json found = fresh.waitFor({{"event", "found"}});
      EXPECT_TRUE(names.insert(found["name"]).second) << found;
      last = found["ms"];
    }
    best = std::min(best, last - started);
  }
  std::cout << "300 services found in " << best << " ms\n";
  EXPECT_LT(best, 1000);
}

}  // namespace
}  // namespace rvf::network
