// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NameLookup.h"

#include <gtest/gtest.h>
#include <netdb.h>
#include <sys/socket.h>

#include "Platform/Network/SocketAddress.h"

namespace rvf {
namespace {

struct Row {
  std::string host;
  std::string port;
  int code;
  std::string addressText;
  int portNumber;
  std::uint32_t scope;
};

class NameLookupTable : public ::testing::TestWithParam<Row> {};

TEST_P(NameLookupTable, AnswersAsTheSystemsResolver) {
  const Row& row = GetParam();
  const NameLookupResult result = lookUpName(row.host, row.port);
  ASSERT_EQ(result.code, row.code) << row.host << " port " << row.port;
  if (row.code != 0) return;
  ASSERT_EQ(result.entries.size(), 1U);
  const auto address = SocketAddress::fromDataBlock(result.entries[0].address);
  ASSERT_TRUE(address);
  EXPECT_EQ(address->addressText(), row.addressText);
  EXPECT_EQ(address->port(), row.portNumber);
  EXPECT_EQ(address->scope(), row.scope);
  EXPECT_EQ(address->family(), result.entries[0].family);
}

INSTANTIATE_TEST_SUITE_P(
    Table, NameLookupTable,
    ::testing::Values(Row{"127.0.0.1", "9630", 0, "127.0.0.1", 9630, 0},
                      Row{"127.0.0.1", "", 0, "127.0.0.1", 0, 0},
                      Row{"127.0.0.1", "99999", 0, "127.0.0.1", 34463, 0},
                      Row{"010.0.0.5", "1", 0, "8.0.0.5", 1, 0},
                      Row{"fe80::1%lo", "1", 0, "fe80::1", 1, 1},
                      Row{"::1", "9630", 0, "::1", 9630, 0},
                      Row{"127.0.0.1", "-1", EAI_SERVICE, "", 0, 0},
                      Row{"127.0.0.1", "no-such-service", EAI_SERVICE, "", 0, 0},
                      Row{"fe80:", "1", EAI_NONAME, "", 0, 0}, Row{"", "1", EAI_NONAME, "", 0, 0}));

}  // namespace
}  // namespace rvf
