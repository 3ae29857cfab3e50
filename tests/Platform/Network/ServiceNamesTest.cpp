// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/ServiceNames.h"

#include <gmock/gmock.h>

#include <set>

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

TEST(ServiceNames, AUniqueNameHasSixteenRandomCharactersBehindIt) {
  EXPECT_THAT(uniqueServiceName("Till"), testing::MatchesRegex("Till-[0-9a-z]{16}"));
  std::set<std::string> names;
  for (int i = 0; i < 1000; ++i)
    names.insert(uniqueServiceName("Till"));
  EXPECT_EQ(names.size(), 1000U);
}

TEST(ServiceNames, AUniqueNameIsNeverLongerThanALabel) {
  const std::string cut = uniqueServiceName(std::string(63, 'x'));
  EXPECT_EQ(cut.size(), 63U);
  EXPECT_EQ(cut.find('-'), 46U);
  EXPECT_EQ(uniqueServiceName(std::string(45, 'x') + "ü").find('-'), 45U);
}

TEST(ServiceNames, AUniqueNameThatIsTakenAllTheSameIsNumbered) {
  EXPECT_EQ(nextServiceName("Till-5xq0c7k1m9b2h4wz"), "Till-5xq0c7k1m9b2h4wz (2)");
}

}  // namespace
}  // namespace rvf
