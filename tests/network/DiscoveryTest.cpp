// SPDX-License-Identifier: Apache-2.0

// What one host sees of another's registrations.

#include <algorithm>
#include <csignal>

#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

using Discovery = PairTest;

INSTANTIATE_TEST_SUITE_P(Pairs, Discovery, everyPair(), nameOfPair);

TEST_P(Discovery, FindsAPublicationWithItsNameTypeAndDomain) {
  seeker_.browse(kType);
  publisher_.publish("till", "Till 1", kType, 4711);
  const Json found = seeker_.waitFor({{"event", "found"}});
  EXPECT_EQ(found["name"], "Till 1");
  EXPECT_EQ(found["type"], "_rvf-test._tcp.");
  EXPECT_EQ(found["domain"], "local.");
}

TEST_P(Discovery, FindsWhatWasPublishedBeforeItBrowsed) {
  publisher_.publish("till", "Till 1", kType, 4711);
  publisher_.waitFor({{"event", "published"}});
  seeker_.browse(kType);
  seeker_.waitFor({{"event", "found"}, {"name", "Till 1"}});
}

TEST_P(Discovery, ReportsOneFindAndOneRemovalForEveryLinkAndProtocol) {
  hosts_.here.connect(hosts_.there, 1);
  seeker_.browse(kType);
  publisher_.publish("till", "Till 1", kType, 4711);
  seeker_.waitFor({{"event", "found"}, {"name", "Till 1"}});
  publisher_.stop("till");
  seeker_.waitFor({{"event", "removed"}, {"name", "Till 1"}});
  // When a later one has come and gone, nothing more of the first is on its way.
  publisher_.publish("other", "Till 2", kType, 4712);
  seeker_.waitFor({{"event", "found"}, {"name", "Till 2"}});
  publisher_.stop("other");
  seeker_.waitFor({{"event", "removed"}, {"name", "Till 2"}});
  for (const Json& event : seeker_.untaken())
    EXPECT_EQ(event["event"], "willSearch") << event;
}

TEST_P(Discovery, ReportsTheRemovalOfAKilledPublisherWhenItsRecordsAreOver) {
  seeker_.browse(kType);
  publisher_.publish("till", "Till 1", kType, 4711, {{"lifetime", 10}});
  seeker_.waitFor({{"event", "found"}, {"name", "Till 1"}});
  publisher_.waitFor({{"event", "published"}});
  publisher_.kill(SIGKILL);
  seeker_.waitFor({{"event", "removed"}, {"name", "Till 1"}}, std::chrono::seconds(15));
}

TEST_P(Discovery, KeepsShortLivedRecordsAliveWhileTheirPublisherLives) {
  seeker_.browse(kType);
  publisher_.publish("till", "Till 1", kType, 4711, {{"lifetime", 2}});
  seeker_.waitFor({{"event", "found"}, {"name", "Till 1"}});
  // Three lifetimes, told by the time-outs of a resolution that finds nothing.
  seeker_.resolve("absent", "Absent", kType, 6);
  seeker_.waitFor({{"event", "didNotResolve"}});
  const auto events = seeker_.untaken();
  EXPECT_TRUE(std::none_of(events.begin(), events.end(),
                           [](const Json& event) { return event["event"] == "removed"; }));
}

TEST_P(Discovery, SeesItsOwnPublications) {
  publisher_.browse(kType);
  publisher_.publish("till", "Till 1", kType, 4711);
  publisher_.waitFor({{"event", "found"}, {"name", "Till 1"}});
  publisher_.stop("till");
  publisher_.waitFor({{"event", "removed"}, {"name", "Till 1"}});
}

TEST_P(Discovery, FindsNamesOutsideASCIIAndWithDotsUnescaped) {
  const std::string name = "Café Süd. Kasse 1\\2 \xF0\x9F\x98\x80";
  seeker_.browse(kType);
  publisher_.publish("till", name, kType, 4711);
  seeker_.waitFor({{"event", "found"}, {"name", name}});
}

TEST_P(Discovery, DeliversTheTXTRecordAndEveryChangeOfIt) {
  publisher_.publish("till", "Till 1", kType, 4711,
                     {{"txt", {{"demo", "1"}, {"flag", nullptr}, {"empty", ""}}}});
  seeker_.monitor("till", "Till 1", kType);
  const Json first = seeker_.waitFor({{"event", "txt"}});
  EXPECT_EQ(first["entries"], Json({{"demo", "1"}, {"flag", nullptr}, {"empty", ""}}));
  publisher_.waitFor({{"event", "published"}});
  publisher_.setTXT("till", {{"demo", "0"}});
  seeker_.waitFor({{"event", "txt"}, {"entries", {{"demo", "0"}}}});
}

TEST_P(Discovery, DeliversTheNewTXTRecordToWhoAsksRightAfterAChange) {
  seeker_.browse(kType);  // keeps what the seeker knows of the network
  publisher_.publish("till", "Till 1", kType, 4711, {{"txt", {{"demo", "1"}}}});
  seeker_.monitor("first", "Till 1", kType);
  seeker_.waitFor({{"event", "txt"}, {"entries", {{"demo", "1"}}}});
  publisher_.waitFor({{"event", "published"}});
  awaitArrival(publisher_, "Till 2");
  publisher_.setTXT("till", {{"demo", "0"}});
  seeker_.waitFor({{"event", "txt"}, {"entries", {{"demo", "0"}}}});
  awaitArrival(publisher_, "Till 3");  // the old record is mostly still known then
  seeker_.monitor("second", "Till 1", kType);
  const Json record = seeker_.waitFor({{"event", "txt"}, {"service", "second"}});
  EXPECT_EQ(record["entries"], Json({{"demo", "0"}}));
}

TEST_P(Discovery, DeliversAnEmptyTXTRecordAsOneWithoutEntries) {
  publisher_.publish("till", "Till 1", kType, 4711);
  seeker_.monitor("till", "Till 1", kType);
  const Json record = seeker_.waitFor({{"event", "txt"}});
  EXPECT_EQ(record["entries"], Json::object());
}

}  // namespace
}  // namespace rvf::network
