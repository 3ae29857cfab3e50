// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/ServiceNames.h"

#include <gtest/gtest.h>

namespace rvf {
namespace {

TEST(ServiceNames, FullNamesAreEscaped) {
  const struct {
    ServiceIdentity identity;
    const char* name;
  } rows[] = {
      {{"Till", "_till._tcp.", "local."}, "Till._till._tcp.local"},
      {{"Till", "_till._tcp", "local"}, "Till._till._tcp.local"},
      {{"Till", "_till._tcp.", ""}, "Till._till._tcp.local"},
      {{"A.b\\c", "_till._tcp.", "local."}, "A\\.b\\\\c._till._tcp.local"},
      {{"Till 1", "_till._tcp.", "local."}, "Till\\0321._till._tcp.local"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(fullServiceName(row.identity), row.name) << row.name;
}

TEST(ServiceNames, MalformedPartsMakeNoFullName) {
  EXPECT_FALSE(fullServiceName({"Till", "till", "local."}));
  EXPECT_FALSE(fullServiceName({std::string(64, 'a'), "_till._tcp.", "local."}));
}

TEST(ServiceNames, TheFinalDotIsAddedOnce) {
  EXPECT_EQ(withFinalDot("local"), "local.");
  EXPECT_EQ(withFinalDot("local."), "local.");
  EXPECT_EQ(withFinalDot(""), "");
}

TEST(ServiceNames, TypesAreTwoLabelsOrASubtype) {
  for (const char* type : {"_till._tcp", "_till._tcp.", "_t._udp", "_new._sub._till._tcp."}) {
    EXPECT_TRUE(isServiceType(type)) << type;
  }
  for (const char* type : {"", ".", "_tcp", "till._tcp", "_till._xyz", "_till", "_till..", "_._tcp",
                           "_till._tcp..", "_a.b._tcp", "._tcp"}) {
    EXPECT_FALSE(isServiceType(type)) << type;
  }
}

TEST(ServiceNames, TextIsCutWhereACharacterEnds) {
  EXPECT_EQ(cutToBytes("abc", 3), "abc");
  EXPECT_EQ(cutToBytes("abc", 2), "ab");
  EXPECT_EQ(cutToBytes("aü", 2), "a");
  EXPECT_EQ(cutToBytes("a😀", 4), "a");
  EXPECT_EQ(cutToBytes("ü", 0), "");
}

TEST(ServiceNames, ATakenNameIsNumbered) {
  const struct {
    std::string name;
    std::string next;
  } rows[] = {
      {"Till", "Till (2)"},
      {"Till (2)", "Till (3)"},
      {"Till (9)", "Till (10)"},
      {"Till (1)", "Till (1) (2)"},
      {"Till (02)", "Till (02) (2)"},
      {"Till (x)", "Till (x) (2)"},
      {"Till(2)", "Till(2) (2)"},
      {" (2)", " (2) (2)"},
      {"Till (999999999)", "Till (999999999) (2)"},
      {"", " (2)"},
      {std::string(63, 'x'), std::string(59, 'x') + " (2)"},
      {std::string(58, 'x') + "üü", std::string(58, 'x') + " (2)"},
      {std::string(59, 'x') + " (9)", std::string(58, 'x') + " (10)"},
  };
  for (const auto& [name, next] : rows)
    EXPECT_EQ(nextServiceName(name), next) << name;
}

}  // namespace
}  // namespace rvf
