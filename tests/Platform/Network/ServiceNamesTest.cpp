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

}  // namespace
}  // namespace rvf
