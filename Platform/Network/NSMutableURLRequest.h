// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "Platform/Export.h"
#include "Platform/Network/NSURLRequest.h"

namespace rvf {

/// A request that can change.
class RVF_EXPORT NSMutableURLRequest final : public NSURLRequest {
 public:
  using NSURLRequest::NSURLRequest;

  static Ref<NSMutableURLRequest> requestWithURL(Ref<NSURL> url);

  static Class classObject();
  Class isa() const override;

  void setURL(Ref<NSURL> url) { url_ = std::move(url); }
  void setHTTPMethod(std::string method) { method_ = std::move(method); }
  /// Absent for no body.
  void setHTTPBody(Ref<NSData> body) { body_ = std::move(body); }
  void setTimeoutInterval(double seconds) noexcept { timeoutInterval_ = seconds; }
};

}  // namespace rvf
