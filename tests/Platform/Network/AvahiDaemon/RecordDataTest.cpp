// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/AvahiDaemon/RecordData.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <sys/socket.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rvf {
namespace {

using namespace std::string_view_literals;

RecordBytes bytes(std::string_view text) {
  const auto* const data = reinterpret_cast<const std::byte*>(text.data());
  return {data, data + text.size()};
}

TEST(RecordData, LocationIsReadInNetworkOrder) {
  const auto location = locationFromRecord(bytes("\0\0\0\0\x12\x67\5hostA\5local\0"sv));
  ASSERT_TRUE(location);
  EXPECT_EQ(location->host, "hostA.local.");
  EXPECT_EQ(location->port, 0x1267);
}

TEST(RecordData, MalformedLocationIsAbsent) {
  for (const auto text : {""sv, "\0\0\0\0\0\1"sv, "\0\0\0\0\0\1\5host"sv, "\0\0\0\0\0\1\x40"sv}) {
    EXPECT_FALSE(locationFromRecord(bytes(text))) << text.size();
  }
}

TEST(RecordData, AnyLocationBytesAreReadWithoutHarm) {
  EXPECT_TRUE(rc::check([](const std::vector<std::uint8_t>& data) {
    RecordBytes record;
    for (const auto octet : data)
      record.push_back(std::byte{octet});
    const auto location = locationFromRecord(record);
    if (location && !location->host.empty()) RC_ASSERT(location->host.back() == '.');
  }));
}

TEST(RecordData, LocationIsReadAsItWasWritten) {
  const ServiceLocation location{"till-1.local.", 9630};
  EXPECT_EQ(locationFromRecord(recordOfLocation(location)), location);
}

TEST(RecordData, NamesAreWrittenAsLabels) {
  EXPECT_EQ(recordOfPointer("A\\.b._x._tcp.local"), bytes("\3A.b\2_x\4_tcp\5local\0"sv));
  EXPECT_TRUE(recordOfPointer("a..b").empty());
  EXPECT_TRUE(recordOfLocation({"", 1}).empty());
}

TEST(RecordData, AddressesGetThePort) {
  const auto address = addressFromRecord(bytes("\x0A\x63\x00\x01"sv), 9630, 2);
  ASSERT_TRUE(address);
  EXPECT_EQ(address->addressText(), "10.99.0.1");
  EXPECT_EQ(address->port(), 9630);
}

TEST(RecordData, OnlyLinkLocalAddressesGetTheInterface) {
  const auto linkLocal =
      addressFromRecord(bytes("\xFE\x80\0\0\0\0\0\0\0\0\0\0\0\0\0\1"sv), 9630, 7);
  const auto global = addressFromRecord(bytes("\x20\1\x0D\xB8\0\0\0\0\0\0\0\0\0\0\0\1"sv), 9630, 7);
  ASSERT_TRUE(linkLocal && global);
  EXPECT_EQ(linkLocal->scope(), 7u);
  EXPECT_EQ(global->scope(), 0u);
}

TEST(RecordData, AddressesOfOtherLengthsAreAbsent) {
  for (const std::size_t length : {0u, 3u, 5u, 15u, 17u}) {
    EXPECT_FALSE(addressFromRecord(RecordBytes(length), 1, 1)) << length;
  }
}

TEST(RecordData, TextRecordsAreWholeStrings) {
  EXPECT_TRUE(isTextRecord(bytes(""sv)));
  EXPECT_TRUE(isTextRecord(bytes("\0"sv)));
  EXPECT_TRUE(isTextRecord(bytes("\6demo=1\1x"sv)));
  EXPECT_FALSE(isTextRecord(bytes("\7demo=1"sv)));
}

}  // namespace
}  // namespace rvf
