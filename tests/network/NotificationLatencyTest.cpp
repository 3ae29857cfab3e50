// SPDX-License-Identifier: Apache-2.0

// How long a notification takes from one host to another.

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

constexpr int kPosts = 9;
constexpr int kRounds = 3;

double medianOf(std::vector<double> milliseconds) {
  const auto middle = milliseconds.begin() + static_cast<std::ptrdiff_t>(milliseconds.size() / 2);
  std::nth_element(milliseconds.begin(), middle, milliseconds.end());
  return *middle;
}

class NotificationLatency : public PairTest {
 protected:
  static constexpr const char* kName = "_rvf-menu._tcp";

  void SetUp() override {
    seeker_.observe(kName);
    seeker_.browse(kType);
    publisher_.browse("_rvf-other._tcp");
    awaitArrival(publisher_, "Warm");
  }

  double post(Probe& publisher) {
    publisher.post(kName);
    const double start = publisher.waitFor({{"event", "posting"}})["ms"];
    return seeker_.waitFor({{"event", "delivered"}})["ms"].get<double>() - start;
  }

  /// An ordinary publication, which probes for its name.
  double publish(const std::string& label) {
    publisher_.publish(label, "", kType, 4711);
    const double start = publisher_.waitFor({{"event", "willPublish"}, {"service", label}})["ms"];
    const Json published = publisher_.waitFor({{"event", "published"}, {"service", label}});
    const Json found = seeker_.waitFor({{"event", "found"}, {"name", published["name"]}});
    return found["ms"].get<double>() - start;
  }

  /// The best median of some rounds, until one is below the limit: other work may disturb any.
  template <class Measure>
  double bestMedian(const char* what, double limit, const Measure& measure) {
    double best = 1e9;
    for (int round = 0; round < kRounds && best >= limit; ++round) {
      std::vector<double> milliseconds;
      for (int i = 0; i < kPosts; ++i)
        milliseconds.push_back(measure(std::to_string(round) + "." + std::to_string(i)));
      const auto [least, most] = std::minmax_element(milliseconds.begin(), milliseconds.end());
      best = std::min(best, medianOf(milliseconds));
      std::cout << what << ": median " << medianOf(milliseconds) << " ms, " << *least << " to "
                << *most << " ms\n";
    }
    return best;
  }
};

INSTANTIATE_TEST_SUITE_P(Pairs, NotificationLatency, everyPair(), nameOfPair);

// The stacks put an announcement off by up to a quarter of a second, each by the same time for ten
// seconds, so single medians lie anywhere below that.

TEST_P(NotificationLatency, APostIsDeliveredInAThirdOfASecond) {
  const auto postNext = [this](const std::string&) { return post(publisher_); };
  EXPECT_LT(bestMedian("post", 333, postNext), 333);
}

TEST_P(NotificationLatency, TheFirstPostOfAProcessIsDeliveredInHalfASecond) {
  const auto postFirst = [this](const std::string&) {
    Probe fresh(hosts_.here, GetParam().publisher);
    return post(fresh);
  };
  EXPECT_LT(bestMedian("first post", 500, postFirst), 500);
}

TEST_P(NotificationLatency, WithProbingItIsDeliveredInASecond) {
  const auto probe = [this](const std::string& label) { return publish(label); };
  EXPECT_LT(bestMedian("probed", 1000, probe), 1000);
}

}  // namespace
}  // namespace rvf::network
