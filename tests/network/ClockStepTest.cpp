// SPDX-License-Identifier: Apache-2.0

// What becomes of publications and searches when the wall clock, on which the embedded stack's
// timers depend, is set. A daemon minds its own.

#include <string>
#include <tuple>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

constexpr const char* kType = "_rvf-test._tcp";
constexpr int kTwoHours = 7200;

using Case = std::tuple<int, Backend>;

std::string nameOfStep(const testing::TestParamInfo<Case>& info) {
  const std::string direction = std::get<int>(info.param) < 0 ? "Back" : "Forward";
  return direction + "WithPeerOn" + nameOf(std::get<Backend>(info.param));
}

/// A probe on the embedded stack with a clock to set, and a peer on either back end.
class ClockStep : public testing::TestWithParam<Case> {
 protected:
  int step() const { return std::get<int>(GetParam()); }
  Backend backendOfPeer() const { return std::get<Backend>(GetParam()); }

  TwoHosts hosts_{Backend::embedded, backendOfPeer()};
  Probe probe_{hosts_.here, Backend::embedded};
  Probe peer_{hosts_.there, backendOfPeer()};
};

INSTANTIATE_TEST_SUITE_P(Directions, ClockStep,
                         testing::Combine(testing::Values(-kTwoHours, kTwoHours), everyBackend()),
                         nameOfStep);

TEST_P(ClockStep, DoesNotKeepAPublicationFromBeingAnnounced) {
  peer_.browse(kType);
  probe_.publish("till", "Till 1", kType, 4711);
  probe_.waitFor({{"event", "willPublish"}});
  probe_.stepClock(step());
  probe_.waitFor({{"event", "published"}, {"name", "Till 1"}});
  peer_.waitFor({{"event", "found"}, {"name", "Till 1"}});
  peer_.resolve("till", "Till 1", kType, 15);
  peer_.waitFor({{"event", "resolved"}, {"port", 4711}});
}

TEST_P(ClockStep, LosesNeitherWhatWasPublishedNorWhatWasFound) {
  probe_.browse(kType);
  peer_.browse(kType);
  probe_.publish("till", "Till 1", kType, 4711);
  peer_.publish("till", "Till 2", kType, 4712);
  probe_.waitFor({{"event", "found"}, {"name", "Till 2"}});
  peer_.waitFor({{"event", "found"}, {"name", "Till 1"}});
  probe_.stepClock(step());
  // What comes afterwards shows that the search has gone on.
  peer_.publish("later", "Till 3", kType, 4713);
  probe_.waitFor({{"event", "found"}, {"name", "Till 3"}});
  probe_.resolve("peer", "Till 2", kType, 15);
  probe_.waitFor({{"event", "resolved"}, {"port", 4712}});
  // A stack that takes long to start anew has told of a removal; then it tells that it found again.
  bool isListed = true;
  for (const Json& event : probe_.untaken()) {
    if (event.value("name", "") != "Till 2") continue;
    if (event["event"] == "removed") isListed = false;
    if (event["event"] == "found") isListed = true;
  }
  if (!isListed) probe_.waitFor({{"event", "found"}, {"name", "Till 2"}});
}

}  // namespace
}  // namespace rvf::network
