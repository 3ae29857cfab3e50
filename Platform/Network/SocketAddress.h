// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Values/NSData.h"

struct sockaddr;
struct sockaddr_storage;

namespace rvf {

/// An IPv4 or IPv6 address with a port, and the only place that converts between this system's
/// `sockaddr` structures and address blocks.
///
/// An address block is the BSD form of a socket address: byte 0 its length (16 or 28), byte 1 the
/// family (this system's `AF_*`), bytes 2-3 the port in network order; IPv4: the address at 4-7;
/// IPv6: flow information at 4-7, the address at 8-23, the scope at 24-27 in host order.
///
/// Conversions from foreign bytes answer absent where these hold no address.
///
/// Thread: any; an immutable value. Lifetime: refers to nothing.
class RVF_EXPORT SocketAddress final {
 public:
  using IPv4Bytes = std::array<std::uint8_t, 4>;
  using IPv6Bytes = std::array<std::uint8_t, 16>;

  /// Address bytes in network order, the port in host order.
  static SocketAddress withIPv4(IPv4Bytes address, std::uint16_t port) noexcept;
  /// `scope` is the index of the interface that a link-local address belongs to, else 0.
  static SocketAddress withIPv6(IPv6Bytes address, std::uint16_t port,
                                std::uint32_t scope = 0) noexcept;
  /// Reads "192.168.1.10" or "fe80::1" (the forms of `inet_pton`; no brackets, no "%" zone).
  /// An IPv4 address has no scope: there it is ignored.
  static std::optional<SocketAddress> fromText(std::string_view address, std::uint16_t port,
                                               std::uint32_t scope = 0);
  /// Reads an address block. The length byte is not believed, and bytes past the address are
  /// ignored; absent for another family, for too few bytes and for an absent block.
  static std::optional<SocketAddress> fromDataBlock(std::span<const std::byte> block) noexcept;
  static std::optional<SocketAddress> fromDataBlock(const Ref<NSData>& block) noexcept;
  /// Reads a system structure of `length` bytes; absent for another family or too few bytes.
  static std::optional<SocketAddress> fromSockaddr(const sockaddr* address,
                                                   std::size_t length) noexcept;

  int family() const noexcept { return family_; }  ///< `AF_INET` or `AF_INET6`
  bool isIPv6() const noexcept;
  /// 169.254.0.0/16 (RFC 3927) or fe80::/10 (RFC 4291).
  bool isLinkLocal() const noexcept;
  /// In host order.
  std::uint16_t port() const noexcept { return port_; }
  std::uint32_t scope() const noexcept { return scope_; }
  /// "192.168.1.10", "fe80::1": as `inet_ntop` writes it, without port, brackets and scope.
  std::string addressText() const;

  /// The address block.
  Ref<NSData> dataBlock() const;
  std::vector<std::byte> blockBytes() const;
  /// Fills in the system's structure; answers the number of bytes that it takes.
  std::size_t toSockaddr(sockaddr_storage& storage) const noexcept;

  friend auto operator<=>(const SocketAddress&, const SocketAddress&) = default;

 private:
  SocketAddress() = default;

  int family_ = 0;
  IPv6Bytes address_{};  ///< IPv4 in the first four bytes
  std::uint16_t port_ = 0;
  std::array<std::byte, 4> flow_{};  ///< as it stands in the structure
  std::uint32_t scope_ = 0;
};

}  // namespace rvf
