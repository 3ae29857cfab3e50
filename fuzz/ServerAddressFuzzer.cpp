// SPDX-License-Identifier: Apache-2.0
//
// Splits any bytes as a hand-entered server address: the parts must be parts of it.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "RVFoundation/ServerDiscovery/RVFStaticServer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view address(reinterpret_cast<const char*>(data), size);
  const auto parts = rvf::RVFSplitServerAddress(address);
  const bool isWhole = parts.host == address && parts.port == "9630";
  const bool isSplit = address == std::string(parts.host) + ":" + std::string(parts.port) &&
                       parts.port.find(':') == std::string_view::npos;
  if (!isWhole && !isSplit) std::abort();
  return 0;
}
