// SPDX-License-Identifier: Apache-2.0

// What becomes of registrations when links go and come back.

#include <string>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

/// A publication that the seeker has found already.
class Links : public PairTest {
 protected:
  void SetUp() override {
    seeker_.browse(kType);
    publisher_.publish("till", "Till 1", kType, 4711);
    seeker_.waitFor({{"event", "found"}, {"name", "Till 1"}});
    publisher_.waitFor({{"event", "published"}});
  }
};

INSTANTIATE_TEST_SUITE_P(Pairs, Links, everyPair(), nameOfPair);

TEST_P(Links, WhatWasSeenOnALinkThatGoesDownIsRemovedAndFoundAgainWhenItIsBack) {
  hosts_.there.setLink("v0", false);
  seeker_.waitFor({{"event", "removed"}, {"name", "Till 1"}});
  hosts_.there.setLink("v0", true);
  seeker_.waitFor({{"event", "found"}, {"name", "Till 1"}});
}

TEST_P(Links, WhatWasSeenOnALinkThatLosesItsCarrierIsRemoved) {
  hosts_.here.setLink("v0", false);
  seeker_.waitFor({{"event", "removed"}, {"name", "Till 1"}});
  hosts_.here.setLink("v0", true);
  seeker_.waitFor({{"event", "found"}, {"name", "Till 1"}});
}

TEST_P(Links, ALinkThatAppearsIsPublishedOn) {
  seeker_.resolve("till", "Till 1", kType, 0);
  hosts_.here.connect(hosts_.there, 1);
  for (bool isReached = false; !isReached;) {
    const Json report = seeker_.waitFor({{"event", "resolved"}});
    for (const Json& address : report["addresses"]) {
      isReached = isReached || address["address"] == "10.99.1.1";
    }
  }
}

using SeveralLinks = PairTest;

INSTANTIATE_TEST_SUITE_P(Pairs, SeveralLinks, everyPair(), nameOfPair);

TEST_P(SeveralLinks, LosingOneOfTwoIsNoRemoval) {
  hosts_.here.connect(hosts_.there, 1);
  seeker_.browse(kType);
  publisher_.publish("first", "Till 1", kType, 4711);
  seeker_.waitFor({{"event", "found"}, {"name", "Till 1"}});
  publisher_.waitFor({{"event", "published"}, {"name", "Till 1"}});
  // Announcements are repeated after a second: by the time that two others were announced, the
  // first was seen on both links.
  for (const std::string name : {"Till 2", "Till 3"}) {
    publisher_.publish(name, name, kType, 4712);
    seeker_.waitFor({{"event", "found"}, {"name", name}});
    publisher_.waitFor({{"event", "published"}, {"name", name}});
  }
  hosts_.there.setLink("v0", false);
  // What comes over the other link afterwards comes after everything the loss could have caused.
  publisher_.publish("last", "Till 4", kType, 4713);
  seeker_.waitFor({{"event", "found"}, {"name", "Till 4"}});
  for (const Json& event : seeker_.untaken()) {
    EXPECT_FALSE(event["event"] == "removed" && event["name"] == "Till 1") << event;
  }
}

}  // namespace
}  // namespace rvf::network
