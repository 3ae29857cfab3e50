// SPDX-License-Identifier: Apache-2.0

// How publications get their names, and how they keep them.

#include <string>

#include "Platform/Network/HostName.h"
#include "tests/network/TwoHosts.h"

namespace rvf::network {
namespace {

using PublicationNames = PairTest;

INSTANTIATE_TEST_SUITE_P(Pairs, PublicationNames, everyPair(), nameOfPair);

TEST_P(PublicationNames, ATakenNameIsNumbered) {
  publisher_.publish("till", "Till", kType, 4711);
  publisher_.waitFor({{"event", "published"}, {"name", "Till"}});
  seeker_.browse(kType);
  seeker_.publish("till", "Till", kType, 4712);
  seeker_.waitFor({{"event", "published"}, {"name", "Till (2)"}});
  seeker_.waitFor({{"event", "found"}, {"name", "Till"}});
  seeker_.waitFor({{"event", "found"}, {"name", "Till (2)"}});
}

TEST_P(PublicationNames, AnIdenticalPublicationOfTheSameProcessIsNumbered) {
  publisher_.publish("first", "Till", kType, 4711);
  publisher_.publish("second", "Till", kType, 4711);
  publisher_.waitFor({{"event", "published"}, {"service", "first"}, {"name", "Till"}});
  publisher_.waitFor({{"event", "published"}, {"service", "second"}, {"name", "Till (2)"}});
  publisher_.stop("second");
  seeker_.browse(kType);
  seeker_.waitFor({{"event", "found"}, {"name", "Till"}});
}

TEST_P(PublicationNames, APublicationWithoutANameIsCalledLikeTheMachine) {
  seeker_.browse(kType);
  publisher_.publish("till", "", kType, 4711);
  const Json published = publisher_.waitFor({{"event", "published"}});
  EXPECT_EQ(published["name"], computerName());
  seeker_.waitFor({{"event", "found"}, {"name", published["name"]}});
}

TEST_P(PublicationNames, AChosenNameThatWasJustWithdrawnIsNotUsedAgainAtOnce) {
  seeker_.browse(kType);
  publisher_.publish("first", "", kType, 4711);
  const std::string name = publisher_.waitFor({{"event", "published"}})["name"];
  seeker_.waitFor({{"event", "found"}, {"name", name}});
  publisher_.stop("first");
  publisher_.publish("second", "", kType, 4712);
  seeker_.waitFor({{"event", "found"}, {"name", name + " (2)"}});
}

TEST_P(PublicationNames, ANameLongerThanALabelIsCutWhereACharacterEnds) {
  const std::string base(62, 'x');
  publisher_.publish("till", base + "ü", kType, 4711);
  publisher_.waitFor({{"event", "published"}, {"name", base}});
}

TEST(EmbeddedPublication, OfAForeignDomainIsABadArgument) {
  NetworkHost host("a");
  Probe publisher(host, Backend::embedded);
  publisher.publish("till", "Till", "_rvf-test._tcp", 4711, {{"domain", "shop.example."}});
  EXPECT_EQ(publisher.waitFor({{"event", "didNotPublish"}})["code"], -72004);
}

TEST_P(PublicationNames, AUniqueNameIsAnnouncedWithoutDelay) {
  seeker_.browse(kType);
  seeker_.waitFor({{"event", "willSearch"}});
  publisher_.publish("till", "Till 48f1", kType, 4711, {{"unique", true}});
  seeker_.waitFor({{"event", "found"}, {"name", "Till 48f1"}});
  seeker_.resolve("till", "Till 48f1", kType, 15);
  seeker_.waitFor({{"event", "resolved"}});
}

}  // namespace
}  // namespace rvf::network
