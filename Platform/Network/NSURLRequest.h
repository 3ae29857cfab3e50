// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "Platform/Export.h"
#include "Platform/Network/NSURL.h"
#include "Platform/Runtime/NSObject.h"
#include "Platform/Values/NSData.h"

namespace rvf {

/// What to ask of a URL, for whoever carries it out.
///
/// Thread: any, if it is no mutable one. Lifetime: keeps URL and body.
class RVF_EXPORT NSURLRequest : public NSObject {
 public:
  /// A "GET" without body that may take 60 seconds.
  explicit NSURLRequest(Ref<NSURL> url);

  /// A "GET" without body that may take 60 seconds.
  static Ref<NSURLRequest> requestWithURL(Ref<NSURL> url);

  static Class classObject();
  Class isa() const override;

  /// The object that it was made with, no copy.
  const Ref<NSURL>& URL() const noexcept { return url_; }
  const std::string& HTTPMethod() const noexcept { return method_; }
  /// Absent for no body, which differs from an empty one.
  const Ref<NSData>& HTTPBody() const noexcept { return body_; }
  /// Seconds.
  double timeoutInterval() const noexcept { return timeoutInterval_; }

  /// Whether URL, method, body and time-out are equal.
  bool isEqual(const NSObject* other) const override;
  std::size_t hash() const override;

 private:
  friend class NSMutableURLRequest;
  Ref<NSURL> url_;
  std::string method_;
  Ref<NSData> body_;
  double timeoutInterval_;
};

}  // namespace rvf
