// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Platform/Export.h"
#include "Platform/Values/NSData.h"

namespace rvf {

/// One address that a name has.
///
/// Thread: any, a plain value. Lifetime: keeps the address block.
struct NameLookupEntry {
  int family = 0;       ///< this system's AF_*
  Ref<NSData> address;  ///< a socket address block for AF_INET and AF_INET6, else raw bytes
};

/// What a name look-up found, in the resolver's order.
///
/// Thread: any, a plain value. Lifetime: keeps its entries.
struct NameLookupResult {
  int code = 0;  ///< 0, or an EAI_* code beside no entries
  std::vector<NameLookupEntry> entries;
};

/// A way to look a host and port up; blocks.
using NameLookup =
    std::function<NameLookupResult(const std::string& host, const std::string& port)>;

/// Asks the system's resolver for the TCP stream addresses of a host name or address text and a
/// port number or service name (`getaddrinfo`, RFC 3493). Blocks, possibly for many seconds.
/// Thread-safe.
RVF_EXPORT NameLookupResult lookUpName(const std::string& host, const std::string& port);

}  // namespace rvf
