// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/SocketAddress.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <rapidcheck.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cstring>

namespace rvf {
namespace {

using Block = std::vector<std::byte>;

Block blockOf(std::initializer_list<unsigned> bytes) {
  Block block;
  for (const unsigned byte : bytes)
    block.push_back(static_cast<std::byte>(byte));
  return block;
}

constexpr SocketAddress::IPv6Bytes kFe801{0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};

Block fe801Block(std::uint32_t scope) {
  Block block = blockOf({28, AF_INET6, 0x25, 0x9E, 0, 0, 0, 0});
  for (const std::uint8_t byte : kFe801)
    block.push_back(static_cast<std::byte>(byte));
  block.resize(28);
  std::memcpy(block.data() + 24, &scope, sizeof scope);
  return block;
}

TEST(SocketAddress, WritesAnIPv4BlockOfSixteenBytes) {
  const Block expected =
      blockOf({16, AF_INET, 0x25, 0x9E, 192, 168, 1, 10, 0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(SocketAddress::withIPv4({192, 168, 1, 10}, 9630).blockBytes(), expected);
}

TEST(SocketAddress, WritesAnIPv6BlockOfTwentyEightBytesWithTheScopeInHostOrder) {
  EXPECT_EQ(SocketAddress::withIPv6(kFe801, 9630, 4).blockBytes(), fe801Block(4));
}

TEST(SocketAddress, DataBlockHoldsTheBlockBytes) {
  const auto address = SocketAddress::withIPv6(kFe801, 9630, 4);
  EXPECT_TRUE(std::ranges::equal(address.dataBlock()->bytes(), address.blockBytes()));
}

TEST(SocketAddress, ReadsEveryFieldOfAnIPv4Block) {
  const auto address = SocketAddress::fromDataBlock(
      blockOf({16, AF_INET, 0x9C, 0x40, 10, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0}));
  ASSERT_TRUE(address);
  EXPECT_EQ(address->family(), AF_INET);
  EXPECT_EQ(address->port(), 40000);
  EXPECT_EQ(address->addressText(), "10.0.0.5");
  EXPECT_EQ(address->scope(), 0U);
}

TEST(SocketAddress, ReadsEveryFieldOfAnIPv6Block) {
  const auto address = SocketAddress::fromDataBlock(fe801Block(7));
  ASSERT_TRUE(address);
  EXPECT_EQ(address->family(), AF_INET6);
  EXPECT_TRUE(address->isIPv6());
  EXPECT_EQ(address->port(), 9630);
  EXPECT_EQ(address->addressText(), "fe80::1");
  EXPECT_EQ(address->scope(), 7U);
}

TEST(SocketAddress, KeepsTheFlowInformation) {
  Block block = fe801Block(0);
  block[5] = std::byte{0xAB};
  EXPECT_EQ(SocketAddress::fromDataBlock(block)->blockBytes(), block);
}

TEST(SocketAddress, IgnoresTheLengthByteAndBytesPastTheAddress) {
  Block block = fe801Block(4);
  block[0] = std::byte{0};
  block.resize(128);
  EXPECT_EQ(SocketAddress::fromDataBlock(block), SocketAddress::withIPv6(kFe801, 9630, 4));
}

TEST(SocketAddress, ABlockThatHoldsNoAddressIsAbsent) {
  struct Row {
    const char* what;
    Block block;
  };
  Block shortIPv6 = fe801Block(4);
  shortIPv6.pop_back();
  const Row rows[] = {
      {"no bytes", {}},
      {"one byte", blockOf({16})},
      {"IPv4 a byte short", blockOf({16, AF_INET, 0, 80, 10, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0})},
      {"IPv6 a byte short", shortIPv6},
      {"local socket", blockOf({16, AF_UNIX, 0, 80, 10, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0})},
      {"IPv6 family of another system", blockOf({28, 30, 0, 80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                                 0,  0,  0, 0,  0, 0, 0, 0, 0, 1, 0, 0, 0, 0})},
  };
  for (const Row& row : rows)
    EXPECT_FALSE(SocketAddress::fromDataBlock(row.block)) << row.what;
  EXPECT_FALSE(SocketAddress::fromDataBlock(Ref<NSData>()));
}

TEST(SocketAddress, ReadsTheSystemsIPv4Structure) {
  sockaddr_in system{};
  system.sin_family = AF_INET;
  system.sin_port = htons(9630);
  system.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  EXPECT_EQ(SocketAddress::fromSockaddr(reinterpret_cast<const sockaddr*>(&system), sizeof system),
            SocketAddress::withIPv4({127, 0, 0, 1}, 9630));
}

TEST(SocketAddress, ReadsTheSystemsIPv6StructureWithFlowAndScope) {
  sockaddr_in6 system{};
  system.sin6_family = AF_INET6;
  system.sin6_port = htons(9630);
  system.sin6_flowinfo = htonl(5);
  system.sin6_scope_id = 4;
  std::memcpy(&system.sin6_addr, kFe801.data(), kFe801.size());
  Block expected = fe801Block(4);
  expected[7] = std::byte{5};
  const auto address =
      SocketAddress::fromSockaddr(reinterpret_cast<const sockaddr*>(&system), sizeof system);
  ASSERT_TRUE(address);
  EXPECT_EQ(address->blockBytes(), expected);
}

TEST(SocketAddress, AStructureOfAnotherFamilyOrCutOffIsAbsent) {
  sockaddr_storage storage{};
  const auto* system = reinterpret_cast<const sockaddr*>(&storage);
  storage.ss_family = AF_UNIX;
  EXPECT_FALSE(SocketAddress::fromSockaddr(system, sizeof storage));
  storage.ss_family = AF_INET;
  EXPECT_FALSE(SocketAddress::fromSockaddr(system, sizeof(sockaddr_in) - 1));
  storage.ss_family = AF_INET6;
  EXPECT_FALSE(SocketAddress::fromSockaddr(system, sizeof(sockaddr_in6) - 1));
  EXPECT_FALSE(SocketAddress::fromSockaddr(system, 1));
  EXPECT_FALSE(SocketAddress::fromSockaddr(nullptr, sizeof storage));
}

TEST(SocketAddress, WritesTheSystemsStructures) {
  sockaddr_storage storage;
  const auto ipv4 = SocketAddress::withIPv4({10, 0, 0, 5}, 80);
  EXPECT_EQ(ipv4.toSockaddr(storage), sizeof(sockaddr_in));
  EXPECT_EQ(SocketAddress::fromSockaddr(reinterpret_cast<sockaddr*>(&storage), sizeof(sockaddr_in)),
            ipv4);
  const auto ipv6 = SocketAddress::withIPv6(kFe801, 80, 4);
  EXPECT_EQ(ipv6.toSockaddr(storage), sizeof(sockaddr_in6));
  EXPECT_EQ(
      SocketAddress::fromSockaddr(reinterpret_cast<sockaddr*>(&storage), sizeof(sockaddr_in6)),
      ipv6);
}

TEST(SocketAddress, ReadsAddressText) {
  EXPECT_EQ(SocketAddress::fromText("192.168.1.10", 80, 3),
            SocketAddress::withIPv4({192, 168, 1, 10}, 80));
  EXPECT_EQ(SocketAddress::fromText("fe80::1", 80, 3), SocketAddress::withIPv6(kFe801, 80, 3));
}

TEST(SocketAddress, TextThatIsNoAddressIsAbsent) {
  using namespace std::string_view_literals;
  for (const auto text : {""sv, "host"sv, "10.0.0"sv, "[fe80::1]"sv, "fe80::1%4"sv, "10.0.0.5 "sv,
                          "10.0.0.5\0x"sv, "\xFF"sv})
    EXPECT_FALSE(SocketAddress::fromText(text, 80)) << text;
}

TEST(SocketAddress, KnowsLinkLocalAddresses) {
  struct Row {
    const char* text;
    bool isLinkLocal;
  };
  for (const Row& row : {Row{"169.254.1.2", true},
                         {"169.253.1.2", false},
                         {"10.0.0.5", false},
                         {"fe80::1", true},
                         {"febf::1", true},
                         {"fec0::1", false},
                         {"::1", false}})
    EXPECT_EQ(SocketAddress::fromText(row.text, 0)->isLinkLocal(), row.isLinkLocal) << row.text;
}

TEST(SocketAddress, BlocksReadBackToTheSameAddress) {
  EXPECT_TRUE(
      rc::check([](std::array<std::uint8_t, 16> bytes, std::uint16_t port, std::uint32_t scope) {
        const auto ipv6 = SocketAddress::withIPv6(bytes, port, scope);
        RC_ASSERT(SocketAddress::fromDataBlock(ipv6.dataBlock()) == ipv6);
        RC_ASSERT(SocketAddress::fromText(ipv6.addressText(), port, scope) == ipv6);
        const auto ipv4 = SocketAddress::withIPv4({bytes[0], bytes[1], bytes[2], bytes[3]}, port);
        RC_ASSERT(SocketAddress::fromDataBlock(ipv4.dataBlock()) == ipv4);
        RC_ASSERT(SocketAddress::fromText(ipv4.addressText(), port) == ipv4);
      }));
}

TEST(SocketAddress, AnyBytesAreReadWithoutHarm) {
  EXPECT_TRUE(rc::check([](const std::vector<std::uint8_t>& bytes) {
    const auto address = SocketAddress::fromDataBlock(std::as_bytes(std::span(bytes)));
    if (address) RC_ASSERT(SocketAddress::fromDataBlock(address->dataBlock()) == address);
  }));
}

}  // namespace
}  // namespace rvf
