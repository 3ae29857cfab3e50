// SPDX-License-Identifier: Apache-2.0
#include "Platform/Network/NameLookup.h"

#include <netdb.h>
#include <sys/socket.h>

#include <memory>
#include <string_view>

#include "Platform/Network/SocketAddress.h"

namespace rvf {
namespace {

NameLookupEntry entryOf(const addrinfo& info) {
  if (const auto address = SocketAddress::fromSockaddr(info.ai_addr, info.ai_addrlen)) {
    return {info.ai_family, address->dataBlock()};
  }
  return {info.ai_family, NSData::dataWithBytes(std::string_view(
                              reinterpret_cast<const char*>(info.ai_addr), info.ai_addrlen))};
}

}  // namespace

NameLookupResult lookUpName(const std::string& host, const std::string& port) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_protocol = IPPROTO_TCP;
  addrinfo* chain = nullptr;
  NameLookupResult result;
  result.code = getaddrinfo(host.c_str(), port.c_str(), &hints, &chain);
  if (result.code != 0) return result;
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owner(chain, &freeaddrinfo);
  for (const addrinfo* info = chain; info; info = info->ai_next) {
    result.entries.push_back(entryOf(*info));
  }
  return result;
}

}  // namespace rvf
