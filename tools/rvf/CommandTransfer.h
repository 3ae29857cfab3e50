// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Network/NSURLRequest.h"
#include "tools/rvf/Failure.h"

namespace rvf::tool {

/// How a transfer ended.
struct TransferResult {
  std::optional<Failure> failure = {};  ///< absent: well
  /// No connection came about, so another address of the same server may still serve.
  bool isUnreachable = false;
};

/// Sends a command request over HTTPS and hands the answer's body on as it arrives, still in its
/// gzip encoding. Certificates are always verified, against `authorityFile` (PEM) if one is named,
/// else against the system's authorities. Blocks; `receive` answers false to stop.
TransferResult sendCommand(const NSURLRequest& request, const std::string& authorityFile,
                           const std::function<bool(std::string_view)>& receive);

}  // namespace rvf::tool
