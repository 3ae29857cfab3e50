// SPDX-License-Identifier: Apache-2.0

// What one host sees of another's registrations.

#include <csignal>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

using Discovery = PairTest;

INSTANTIATE_TEST_SUITE_P(Pairs, Discovery, everyPair(), nameOfPair);

TEST_P(Discovery, FindsAPublicationOnceWithItsNameTypeAndDomain) {
  seeker_.browse(kType);
  publisher_.publish("till", "Till 1", kType, 4711);
  const Json found = seeker_.waitFor({{"event", "found"}});
  EXPECT_EQ(found["name"], "Till 1");
  EXPECT_EQ(found["type"], "_rvf-test._tcp.");
  EXPECT_EQ(found["domain"], "local.");
}

}  // namespace
}  // namespace rvf::network
