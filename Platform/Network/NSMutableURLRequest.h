// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "Platform/Export.h"
#include "Platform/Network/NSURLRequest.h"

namespace rvf {

/// A request that can change.
///
/// Thread: one at a time. Lifetime: keeps URL and body.
class RVF_EXPORT NSMutableURLRequest final : public NSURLRequest {
 public:
  using NSURLRequest::NSURLRequest;

  /// A "GET" without body that may take 60 seconds.
  static Ref<NSMutableURLRequest> requestWithURL(Ref<NSURL> url);

  static Class classObject();
  Class isa() const override;

  /// The method is taken as it is, whatever its letters.
  void setURL(Ref<NSURL> url);
  void setHTTPMethod(std::string method);
  /// Absent for no body.
  void setHTTPBody(Ref<NSData> body);
  void setTimeoutInterval(double seconds);
};

}  // namespace rvf
