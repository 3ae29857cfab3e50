// SPDX-License-Identifier: Apache-2.0
#include "RVFoundation/ServerDiscovery/NSURLRequest-RVFExtensions.h"

#include <utility>

namespace rvf {

Ref<NSMutableURLRequest> NSURLRequest_RVFExtensions::RVF_postCommandWithURL(Ref<NSURL> url) {
  auto request = NSMutableURLRequest::requestWithURL(std::move(url));
  request->setHTTPMethod("POST");
  request->setHTTPBody(NSData::data());
  return request;
}

}  // namespace rvf
