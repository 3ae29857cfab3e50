// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NameClaim.h"

#include <gtest/gtest.h>

namespace rvf {
namespace {

using Names = NameClaim::Names;

TEST(NameClaim, ANameIsTakenWhileItIsClaimed) {
  const auto claim = NameClaim::take({"Claim A", "_till._tcp.", "local."}, Names::given);
  ASSERT_NE(claim, nullptr);
  EXPECT_EQ(NameClaim::take({"Claim A", "_till._tcp.", "local."}, Names::given), nullptr);
}

TEST(NameClaim, NamesCompareWithoutRegardToASCIICaseAndTheDefaultDomainIsLocal) {
  const auto claim = NameClaim::take({"Claim Ä", "_till._tcp.", "local."}, Names::given);
  EXPECT_EQ(NameClaim::take({"claim Ä", "_Till._tcp.", ""}, Names::given), nullptr);
}

TEST(NameClaim, OtherTypesAndDomainsAreOtherNames) {
  const auto claim = NameClaim::take({"Claim B", "_till._tcp.", "local."}, Names::given);
  EXPECT_NE(NameClaim::take({"Claim B", "_desk._tcp.", "local."}, Names::given), nullptr);
  EXPECT_NE(NameClaim::take({"Claim B", "_till._tcp.", "example.org."}, Names::given), nullptr);
}

TEST(NameClaim, AGivenNameIsFreeAsSoonAsItIsWithdrawn) {
  const ServiceIdentity identity{"Claim C", "_till._tcp.", "local."};
  EXPECT_NE(NameClaim::take(identity, Names::given), nullptr);
  EXPECT_NE(NameClaim::take(identity, Names::given), nullptr);
}

TEST(NameClaim, AChosenNameRestsAfterItsWithdrawal) {
  const ServiceIdentity identity{"Claim D", "_till._tcp.", "local."};
  const auto before = NameClaim::Clock::now();
  EXPECT_NE(NameClaim::take(identity, Names::chosen), nullptr);
  EXPECT_EQ(NameClaim::take(identity, Names::chosen, before), nullptr);
  const auto after = NameClaim::Clock::now() + NameClaim::kRest;
  EXPECT_NE(NameClaim::take(identity, Names::chosen, after), nullptr);
}

}  // namespace
}  // namespace rvf
