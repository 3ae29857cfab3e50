// SPDX-License-Identifier: Apache-2.0

// A peer on the network that announces what no publisher should: names that are no UTF-8, TXT
// records that are cut, empty or without keys, packets that end in the middle.

#include <string>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

constexpr const char* kType = "_rvf-test._tcp";

class HostileResponder : public testing::TestWithParam<Backend> {
 protected:
  HostileResponder() { probe_.browse(kType); }

  TwoHosts hosts_;
  Probe probe_{hosts_.here, GetParam()};
  Process responder_{hosts_.there.inside({"python3", RVF_HOSTILE_RESPONDER, "10.99.0.2", kType}),
                     hosts_.there.environment()};
};

INSTANTIATE_TEST_SUITE_P(Backends, HostileResponder, everyBackend(), nameOfBackend);

TEST_P(HostileResponder, HidesNoneOfTheServicesThatAreRight) {
  probe_.waitFor({{"event", "found"}, {"name", "Good"}});
  probe_.monitor("good", "Good", kType);
  probe_.waitFor({{"event", "txt"}, {"entries", {{"demo", "1"}}}});
  probe_.resolve("good", "Good", kType, 15);
  EXPECT_EQ(probe_.waitFor({{"event", "resolved"}})["port"], 8001);
}

TEST_P(HostileResponder, OfTwoEntriesOfOneKeyTheFirstCounts) {
  probe_.waitFor({{"event", "found"}, {"name", "Twice"}});
  probe_.monitor("twice", "Twice", kType);
  probe_.waitFor({{"event", "txt"}, {"entries", {{"demo", "1"}}}});
}

TEST_P(HostileResponder, ItsRecordsAreReadAsFarAsTheyGo) {
  for (const std::string name : {"no text", "short entry", "no key", "bytes", "long text"}) {
    probe_.waitFor({{"event", "found"}, {"name", name}});
    probe_.monitor(name, name, kType);
    probe_.resolve(name, name, kType, 15);
    probe_.waitFor({{"event", "resolved"}, {"service", name}});
  }
  probe_.untaken();  // the program still answers
}

}  // namespace
}  // namespace rvf::network
