// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/AvahiNames.h"

#include <gtest/gtest.h>

#include <string>

namespace rvf {
namespace {

TEST(AvahiNames, DropOneFinalDot) {
  EXPECT_EQ(withoutFinalDot("local."), "local");
  EXPECT_EQ(withoutFinalDot("local"), "local");
  EXPECT_EQ(withoutFinalDot(""), "");
}

TEST(AvahiNames, InstanceNamesAreLabelsOfUtf8) {
  EXPECT_TRUE(isInstanceName("Till 1 (café) . \\"));
  EXPECT_TRUE(isInstanceName(std::string(63, 'a')));
  EXPECT_FALSE(isInstanceName(std::string(64, 'a')));
  EXPECT_FALSE(isInstanceName(""));
  EXPECT_FALSE(isInstanceName("Till \xFF"));
  EXPECT_FALSE(isInstanceName(std::string("Till\0", 5)));
}

TEST(AvahiNames, OnlyWhatCanBeSentIsAskedFor) {
  const struct {
    ServiceIdentity identity;
    bool isAskable;
  } rows[] = {
      {{"Till", "_till._tcp.", "local."}, true},
      {{"Till", "_till._tcp", "local"}, true},
      {{"Till", "_till._udp.", ""}, true},
      {{"Till", "_till._sctp.", "local."}, false},
      {{"Till", "till", "local."}, false},
      {{"Till", "_x._tcp.", "local."}, false},  // Avahi wants two characters at least {{"Till",
                                                // "_till\xC3._tcp.", "local."}, false},
      {{"", "_till._tcp.", "local."}, false},
      {{"Till", "_till._tcp.", "lo\xFF."}, false},
      {{"Till", "_till._tcp.", "a..b."}, false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(isAskable(row.identity), row.isAskable)
        << row.identity.name << '|' << row.identity.type << '|' << row.identity.domain;
  }
}

}  // namespace
}  // namespace rvf
