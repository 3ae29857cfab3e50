// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/SocketAddress.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstring>

namespace rvf {
namespace {

constexpr std::size_t kIPv4BlockLength = 16;
constexpr std::size_t kIPv6BlockLength = 28;

constexpr std::size_t kFamilyOffset = 1;
constexpr std::size_t kPortOffset = 2;
constexpr std::size_t kIPv4AddressOffset = 4;
constexpr std::size_t kIPv6FlowOffset = 4;
constexpr std::size_t kIPv6AddressOffset = 8;
constexpr std::size_t kIPv6ScopeOffset = 24;

/// Copies the bytes of `field` out of `block` at `offset`.
template <class Field>
void read(std::span<const std::byte> block, std::size_t offset, Field& field) noexcept {
  std::memcpy(&field, block.data() + offset, sizeof field);
}

template <class Field>
void write(std::vector<std::byte>& block, std::size_t offset, const Field& field) noexcept {
  std::memcpy(block.data() + offset, &field, sizeof field);
}

/// The structure at the start of `bytes`, which may lie anywhere, or absent if it is cut off.
template <class Structure>
std::optional<Structure> structureIn(const sockaddr* bytes, std::size_t length) noexcept {
  if (length < sizeof(Structure)) return std::nullopt;
  Structure structure;
  std::memcpy(&structure, bytes, sizeof structure);
  return structure;
}

}  // namespace

SocketAddress SocketAddress::withIPv4(IPv4Bytes address, std::uint16_t port) noexcept {
  SocketAddress result;
  result.family_ = AF_INET;
  result.port_ = port;
  std::ranges::copy(address, result.address_.begin());
  return result;
}

SocketAddress SocketAddress::withIPv6(IPv6Bytes address, std::uint16_t port,
                                      std::uint32_t scope) noexcept {
  SocketAddress result;
  result.family_ = AF_INET6;
  result.port_ = port;
  result.address_ = address;
  result.scope_ = scope;
  return result;
}

std::optional<SocketAddress> SocketAddress::fromText(std::string_view address, std::uint16_t port,
                                                     std::uint32_t scope) {
  // inet_pton stops at a zero byte, which no address holds.
  if (address.find('\0') != std::string_view::npos) return std::nullopt;
  const std::string text(address);
  IPv4Bytes ipv4;
  if (inet_pton(AF_INET, text.c_str(), ipv4.data()) == 1) return withIPv4(ipv4, port);
  IPv6Bytes ipv6;
  if (inet_pton(AF_INET6, text.c_str(), ipv6.data()) == 1) return withIPv6(ipv6, port, scope);
  return std::nullopt;
}

std::optional<SocketAddress> SocketAddress::fromDataBlock(
    std::span<const std::byte> block) noexcept {
  if (block.size() < kIPv4BlockLength) return std::nullopt;
  SocketAddress result;
  result.family_ = std::to_integer<int>(block[kFamilyOffset]);
  in_port_t port = 0;
  read(block, kPortOffset, port);
  result.port_ = ntohs(port);
  if (result.family_ == AF_INET) {
    IPv4Bytes address;
    read(block, kIPv4AddressOffset, address);
    std::ranges::copy(address, result.address_.begin());
    return result;
  }
  if (result.family_ != AF_INET6 || block.size() < kIPv6BlockLength) return std::nullopt;
  read(block, kIPv6FlowOffset, result.flow_);
  read(block, kIPv6AddressOffset, result.address_);
  read(block, kIPv6ScopeOffset, result.scope_);
  return result;
}

std::optional<SocketAddress> SocketAddress::fromDataBlock(const Ref<NSData>& block) noexcept {
  return block ? fromDataBlock(block->bytes()) : std::nullopt;
}

std::optional<SocketAddress> SocketAddress::fromSockaddr(const sockaddr* address,
                                                         std::size_t length) noexcept {
  if (!address || length < sizeof address->sa_family) return std::nullopt;
  sa_family_t family = 0;
  std::memcpy(&family, &address->sa_family, sizeof family);
  SocketAddress result;
  result.family_ = family;
  if (family == AF_INET) {
    const auto ipv4 = structureIn<sockaddr_in>(address, length);
    if (!ipv4) return std::nullopt;
    result.port_ = ntohs(ipv4->sin_port);
    std::memcpy(result.address_.data(), &ipv4->sin_addr, sizeof ipv4->sin_addr);
    return result;
  }
  const auto ipv6 = family == AF_INET6 ? structureIn<sockaddr_in6>(address, length) : std::nullopt;
  if (!ipv6) return std::nullopt;
  result.port_ = ntohs(ipv6->sin6_port);
  std::memcpy(result.flow_.data(), &ipv6->sin6_flowinfo, sizeof ipv6->sin6_flowinfo);
  std::memcpy(result.address_.data(), &ipv6->sin6_addr, sizeof ipv6->sin6_addr);
  result.scope_ = ipv6->sin6_scope_id;
  return result;
}

bool SocketAddress::isIPv6() const noexcept {
  return family_ == AF_INET6;
}

bool SocketAddress::isLinkLocal() const noexcept {
  if (isIPv6()) return address_[0] == 0xFE && (address_[1] & 0xC0) == 0x80;
  return address_[0] == 169 && address_[1] == 254;
}

std::string SocketAddress::addressText() const {
  std::array<char, INET6_ADDRSTRLEN> text{};
  inet_ntop(family_, address_.data(), text.data(), text.size());
  return text.data();
}

Ref<NSData> SocketAddress::dataBlock() const {
  return std::make_shared<NSData>(blockBytes());
}

std::vector<std::byte> SocketAddress::blockBytes() const {
  const std::size_t length = isIPv6() ? kIPv6BlockLength : kIPv4BlockLength;
  std::vector<std::byte> block(length);
  block[0] = static_cast<std::byte>(length);
  block[kFamilyOffset] = static_cast<std::byte>(family_);
  write(block, kPortOffset, htons(port_));
  if (isIPv6()) {
    write(block, kIPv6FlowOffset, flow_);
    write(block, kIPv6AddressOffset, address_);
    write(block, kIPv6ScopeOffset, scope_);
  } else {
    std::memcpy(block.data() + kIPv4AddressOffset, address_.data(), sizeof(IPv4Bytes));
  }
  return block;
}

std::size_t SocketAddress::toSockaddr(sockaddr_storage& storage) const noexcept {
  storage = {};
  if (isIPv6()) {
    sockaddr_in6 ipv6{};
    ipv6.sin6_family = AF_INET6;
    ipv6.sin6_port = htons(port_);
    std::memcpy(&ipv6.sin6_flowinfo, flow_.data(), sizeof ipv6.sin6_flowinfo);
    std::memcpy(&ipv6.sin6_addr, address_.data(), sizeof ipv6.sin6_addr);
    ipv6.sin6_scope_id = scope_;
    std::memcpy(&storage, &ipv6, sizeof ipv6);
    return sizeof ipv6;
  }
  sockaddr_in ipv4{};
  ipv4.sin_family = AF_INET;
  ipv4.sin_port = htons(port_);
  std::memcpy(&ipv4.sin_addr, address_.data(), sizeof ipv4.sin_addr);
  std::memcpy(&storage, &ipv4, sizeof ipv4);
  return sizeof ipv4;
}

}  // namespace rvf
